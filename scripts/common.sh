# Sourced by the other scripts: says what is done, and installs what is missing.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
jobs=$(nproc)

say() { printf '\n== %s\n' "$*"; }

# What makes a command one of the superuser: nothing for him, sudo for others.
privilege() { [ "$(id -u)" -eq 0 ] || echo sudo; }

# Debian packages: each is installed only if it is not there yet. Who may install nothing is told what is missing.
need() {
  local missing=()
  local package
  for package in "$@"; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || missing+=("$package")
  done
  [ ${#missing[@]} -eq 0 ] && return 0
  local sudo why
  sudo=$(privilege)
  if ! command -v apt-get >/dev/null; then
    why="there is no apt-get here"
  elif [ -n "$sudo" ] && ! command -v sudo >/dev/null; then
    why="you are not root and there is no sudo"
  else
    say "Installing ${missing[*]}"
    if $sudo apt-get update -qq &&
       $sudo env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null; then
      return 0
    fi
    why="apt-get could not install them"
  fi
  echo "Missing, as $why: ${missing[*]}" >&2
  exit 1
}

# MAJOR.MINOR.PATCH, out of nvxprofile/version.h on standard input.
version_of() { sed -n 's/^#define NVXPROFILE_VERSION_[A-Z]* //p' | paste -sd .; }

build_packages=(g++ cmake ninja-build pkg-config libcli11-dev nlohmann-json3-dev libfmt-dev node-d3)
profile_packages=(icc-profiles-free colord-data libgs-common)
test_packages=(libgtest-dev libgmock-dev liblcms2-dev python3-jsonschema argyll)
python_packages=(python3-dev pybind11-dev python3-numpy python3-pytest python3-pip python3-setuptools python3-wheel mypy
                 python3-matplotlib)
docs_packages=(doxygen mkdocs)
report_packages=(chromium chromium-driver python3-selenium liblcms2-utils poppler-utils libgs-common)

# Every real ICC profile of the profile packages.
profiles() { find /usr/share/color/icc -type f \( -iname '*.icc' -o -iname '*.icm' \) | sort; }
