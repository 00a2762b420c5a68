import json
import pathlib
from typing import Any, Dict

import nvxprofile
import pytest

SOURCES = pathlib.Path(__file__).resolve().parents[2]
FRAME = pathlib.Path("/usr/share/color/icc/ghostscript/default_cmyk.icc")


@pytest.fixture(scope="session")
def document() -> Dict[str, Any]:
    """A printer profile that has something in every part."""
    result: Dict[str, Any] = json.loads((SOURCES / "examples" / "uv_film.json").read_text())
    return result


@pytest.fixture(scope="session")
def profile_bytes(document: Dict[str, Any]) -> bytes:
    return nvxprofile.build(document, SOURCES / "examples", "film.icc").to_bytes("film.icc")


@pytest.fixture
def profile(profile_bytes: bytes) -> nvxprofile.Profile:
    return nvxprofile.Profile.from_bytes(profile_bytes, "film.icc")
