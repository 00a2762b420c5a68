#!/usr/bin/env python3
"""Runs what the guide shows. The commands of a page (```sh) run one after the other in a folder of their own that has a
copy of examples/; where a block of ```text follows, it is what they end by saying. Programs (```cpp) are compiled
against the library, with warnings as errors; those with a main answer for a profile. A block of another language is not
looked at. Arguments: the tool, the folder of the sources, that of the library, the compiler, and what it is given
besides."""
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

tool, sources, libraries, compiler, *flags = sys.argv[1:]
flags = [flag for flag in flags if flag]
sources = pathlib.Path(sources).resolve()
libraries = pathlib.Path(libraries).resolve()
faults = []


def blocks_of(page):
    """Language, text and line of each fenced block."""
    found = re.finditer(r"^```(\w*)\n(.*?)^```$", page, flags=re.S | re.M)
    return [(match[1], match[2], page.count("\n", 0, match.start()) + 1) for match in found]


def run_commands(name, blocks, folder):
    # One shell for the whole page, so that what a block exports holds for those behind it.
    script = ["set -eo pipefail"]
    shown = {}
    for number, (language, text, line) in enumerate(blocks):
        if language != "sh":
            continue
        script += [f"at={line}", "{", text.rstrip("\n"), f"}} > {folder.name}.{number}"]
        if number + 1 < len(blocks) and blocks[number + 1][0] == "text":
            shown[number] = (blocks[number + 1][1], line)
    script.insert(1, f"trap 'echo \"line $at: status $?\" >&2' ERR")
    # The outputs lie beside the folder, so that no recipe meets them.
    text = "\n".join(script).replace(f"> {folder.name}.", f"> ../{folder.name}.")
    ran = subprocess.run(["bash", "-c", text], cwd=folder, capture_output=True, text=True, check=False)
    if ran.returncode != 0:
        faults.append(f"{name}: {ran.stderr.strip()}")
        return 0
    for number, (expected, line) in shown.items():
        said = (folder.parent / f"{folder.name}.{number}").read_text(encoding="utf-8")
        if not ("\n" + said).endswith("\n" + expected):
            faults.append(f"{name}, line {line}: says\n{said}and not\n{expected}")
    return text.count("\nat=")


def run_programs(name, blocks, folder):
    count = 0
    for language, text, line in blocks:
        if language != "cpp":
            continue
        count += 1
        runs = "int main(" in text
        if not runs:
            head, body = re.match(r"((?:#[^\n]*\n|\n)*)(.*)", text, flags=re.S).groups()
            text = f"{head}int main() {{\n{body}return 0;\n}}\n"
        program = folder / f"program{line}"
        program.with_suffix(".cpp").write_text(text, encoding="utf-8")
        built = subprocess.run(
            [compiler, "-std=c++20", "-Wall", "-Wextra", "-Werror", *([] if runs else ["-Wno-unused"]), *flags, program.with_suffix(".cpp"), "-o", program,
             f"-I{sources / 'include'}", f"-L{libraries}", "-lnvxprofile", f"-Wl,-rpath,{libraries}"],
            capture_output=True, text=True, check=False)
        if built.returncode != 0:
            faults.append(f"{name}, line {line}: {built.stderr.strip()}")
            continue
        if not runs:
            continue
        profile = folder / "given.icc"
        subprocess.run([tool, "build", "examples/printer_profile.json", "-o", profile], cwd=sources, check=True)
        arguments = [profile] + ([folder / "written.icc"] if "argc != 3" in text else [])
        ran = subprocess.run([program, *arguments], capture_output=True, text=True, check=False)
        if ran.returncode != 0:
            faults.append(f"{name}, line {line}: status {ran.returncode}: {ran.stderr.strip()}")
        elif "argc != 3" in text and subprocess.run([tool, "validate", arguments[1]], stdout=subprocess.DEVNULL, check=False).returncode != 0:
            faults.append(f"{name}, line {line}: what it wrote is unsound")
    return count


def main():
    commands = programs = 0
    with tempfile.TemporaryDirectory() as work:
        place = pathlib.Path(work) / "bin"
        place.mkdir()
        (place / "nvxprofile").symlink_to(pathlib.Path(tool).resolve())
        os.environ["PATH"] = f"{place}:{os.environ['PATH']}"
        for page in [sources / "README.md", *sorted((sources / "docs/guide").glob("*.md"))]:
            blocks = blocks_of(page.read_text(encoding="utf-8"))
            folder = pathlib.Path(work) / page.stem
            shutil.copytree(sources / "examples", folder / "examples")
            commands += run_commands(page.name, blocks, folder)
            programs += run_programs(page.name, blocks, folder)
    print("\n".join(faults) if faults else f"{commands} blocks of commands and {programs} programs do what the guide says.")
    return 1 if faults or commands == 0 or programs == 0 else 0


sys.exit(main())
