"""The package as others get it: annotations, examples, and the wheel."""

import ast
import os
import pathlib
import subprocess
import sys

import nvxprofile
import pytest
from conftest import FRAME, SOURCES
from nvxprofile import _core

EXAMPLES = SOURCES / "examples" / "python"


def run(*command: object, **environment: str) -> str:
    # Not from here, where another package of the name may lie.
    parts, environment = [str(part) for part in command], {**os.environ, **environment}
    result = subprocess.run(parts, capture_output=True, text=True, cwd="/", env=environment)
    assert result.returncode == 0, result.stdout + result.stderr
    return result.stdout


def test_annotations_hold(tmp_path: pathlib.Path) -> None:
    pytest.importorskip("mypy")
    package = pathlib.Path(nvxprofile.__file__).parent
    checked = [package, *sorted(EXAMPLES.glob("*.py")), SOURCES / "python" / "tests"]
    run(sys.executable, "-m", "mypy", "--strict", f"--cache-dir={tmp_path}", *checked, MYPYPATH=str(package.parent))


def test_stubs_name_what_the_module_has() -> None:
    stub = ast.parse((SOURCES / "python" / "nvxprofile" / "_core.pyi").read_text())
    (profile,) = (node for node in stub.body if isinstance(node, ast.ClassDef))
    for body, owner in ((stub.body, _core), (profile.body, _core.Profile)):
        named = {node.name for node in body if isinstance(node, (ast.FunctionDef, ast.ClassDef))}
        assert named == {name for name in vars(owner) if not name.startswith("_") and not name.isupper()}


def test_examples_make_a_profile_calibrate_it_and_read_it(tmp_path: pathlib.Path) -> None:
    glossy = tmp_path / "glossy.icc"
    run(sys.executable, EXAMPLES / "make_profile.py", FRAME, glossy)
    with nvxprofile.open(glossy) as made:
        assert sorted(made.curves) == ["gray-balance", "linearization", "multi-ink-limit"]
        assert made.table is not None and made.table.shape == (9, 9, 9, 9, 4)
    run(sys.executable, EXAMPLES / "append_calibration.py", glossy, "May", "--gain", "0.1")
    with nvxprofile.open(glossy) as calibrated:
        assert [calibration.name for calibration in calibrated.history] == ["May"]
        former, latest = calibrated.linearization(1), calibrated.history[-1].query("linearization", 1)
        assert former is not None and latest is not None and former.shape == latest.shape
        assert (latest[1:-1] < former[1:-1]).all()
    told = run(sys.executable, EXAMPLES / "read_job.py", glossy)
    assert "May" in told and "ink 4" in told and "9 points" in told


@pytest.mark.skipif("NVXPROFILE_BUILD_FOLDER" not in os.environ, reason="needs the folder that CMake builds in")
def test_the_wheel_stands_alone(tmp_path: pathlib.Path) -> None:
    pip = [sys.executable, "-m", "pip", "--quiet", "--disable-pip-version-check"]
    build = [*pip, "wheel", "--no-build-isolation", "--no-deps", "--no-index", "--wheel-dir", tmp_path, SOURCES]
    run(*build)
    (wheel,) = tmp_path.glob("nvxprofile-*.whl")
    target = tmp_path / "site"
    run(*pip, "install", "--no-deps", "--no-index", "--target", target, wheel)
    names = {path.name for path in (target / "nvxprofile").iterdir()}
    assert {"__init__.py", "py.typed", "_core.pyi"} <= names
    script = "import nvxprofile as n, sys; print(n.__file__, n.open(sys.argv[1]).format, n.__version__)"
    told = run(sys.executable, "-c", script, FRAME, PYTHONPATH=str(target)).split()
    assert told == [str(target / "nvxprofile" / "__init__.py"), "icc", nvxprofile.__version__]
    (module,) = (target / "nvxprofile").glob("_core*.so")
    assert "nvxprofile" not in run("ldd", module).replace(str(module), "")
