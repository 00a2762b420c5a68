"""Opening, saving and looking at profiles as a whole."""

import copy
import datetime
import json
import pathlib
import pickle
from typing import Any, Dict, List

import numpy as np
import nvxprofile
import pytest
from conftest import FRAME, SOURCES
from nvxprofile import Profile, ProfileError

CORPUS = sorted(path for path in (SOURCES / "fuzz").glob("*/*/*") if path.is_file())


def test_a_saved_profile_says_what_was_written(profile: Profile, tmp_path: pathlib.Path) -> None:
    path = tmp_path / "Füllung \udcff.icc"  # any bytes make a name
    created = profile.info.created
    profile.curves["linearization"][1] = [0, 30000, 65535]
    profile.info.update(maker="Example", scan_resolution=1440)
    profile.save(path)
    assert profile.info.updated is not None and profile.info.updated.year >= 2020
    with nvxprofile.open(path) as again:
        assert again.curves["linearization"][1].tolist() == [0, 30000, 65535]
        assert again.curves["linearization"].curve(1).name == "Cyan"
        assert (again.info.maker, again.info.scan_resolution, again.info.created) == ("Example", 1440, created)
        assert again.info.file_name == path.name
        assert again.format == "printer-profile" and again.is_whole
    assert again.closed and "closed" in repr(again) and "closed" in again._repr_html_()
    with pytest.raises(ValueError, match="closed"):
        again.linearization(1)


def test_an_error_tells_place_rule_and_findings(profile: Profile, profile_bytes: bytes, tmp_path: pathlib.Path) -> None:
    with pytest.raises(ProfileError) as caught:
        Profile.from_bytes(profile_bytes[: len(profile_bytes) // 2], "half.icc")
    error = caught.value
    assert error.rule and error.rule in str(error) and error.findings[0].rule == error.rule
    assert error.findings[0].severity == "error"
    twin = pickle.loads(pickle.dumps(error))
    assert (twin.rule, twin.findings, str(twin)) == (error.rule, error.findings, str(error))
    with pytest.raises(ProfileError, match="opened"):
        nvxprofile.open("/nowhere")
    del profile.entries["icc"]
    with pytest.raises(ProfileError, match="ICC"):
        profile.save(tmp_path / "glossy.icc")
    assert not list(tmp_path.iterdir())


def test_documents_go_both_ways(document: Dict[str, Any], profile: Profile) -> None:
    told = profile.to_dict()
    assert nvxprofile.build(json.loads(json.dumps(told)), name="film.icc").to_dict()["entries"] == told["entries"]
    wrong = copy.deepcopy(document)
    wrong["entries"][1]["payload"]["curves"][0]["samples"][3] = -1
    with pytest.raises(ProfileError) as caught:
        nvxprofile.build(wrong, SOURCES / "examples")
    assert caught.value.place == "/entries/1/payload/curves/0/samples/3"
    for name in ("../outside.icc", "", "..", "a\0b"):
        with pytest.raises(ValueError):
            nvxprofile.build(document, SOURCES / "examples", name)
    for strange in (float("nan"), "\ud800"):
        with pytest.raises(ValueError):
            nvxprofile.build({"nvxprofile": strange})


def look_at_all(profile: Profile) -> List[object]:
    seen: List[object] = [profile.info.to_dict(), profile.to_dict(), repr(profile), profile._repr_html_()]
    seen += [(entry.name, entry.data.tobytes()) for entry in profile.entries.values()]
    seen += [profile.lamp_patterns, profile.masks, profile.mask_blocks, profile.special_colors]
    seen += [values.tolist() for values in profile.media.values()]
    seen += [(curve._tuple()[:7], curve.samples.tolist()) for set in profile.curves.values() for curve in set.curves()]
    for calibration in profile.history:
        seen += [repr(calibration), [curves.curves() for curves in calibration.curves.values()]]
    seen.append(None if profile.table is None else profile.table.tobytes())
    return seen


def test_files_of_all_kinds_are_refused_or_read_whole(monkeypatch: pytest.MonkeyPatch) -> None:
    """Hostile files among them. A copy says the same, and looking at a profile parses nothing anew."""
    monkeypatch.setenv("NVXPROFILE_PROFILE_DIR", str(SOURCES / "examples" / "legacy"))
    formats = set()
    for path in [FRAME, *CORPUS]:
        for name in ("profile", "profile.icc", "profile.qpf"):
            try:
                profile = Profile.from_bytes(path.read_bytes(), name)
            except ProfileError:
                continue
            formats.add(profile.format)
            held = [curve.samples for set in profile.curves.values() for curve in set.curves()]
            values = [view.tobytes() for view in held]
            twin = copy.copy(profile)
            assert twin.format == profile.format and look_at_all(profile) == look_at_all(twin), path
            assert [view.tobytes() for view in held] == values, path
            again = [curve.samples for set in profile.curves.values() for curve in set.curves()]
            assert all(np.shares_memory(one, other) for one, other in zip(held, again) if one.size), path
    assert formats == {"icc", "printer-profile", "container", "text-1", "text-2"}


def test_a_profile_is_made_by_its_makers_and_not_pickled(profile: Profile) -> None:
    with pytest.raises(TypeError, match="pickled: send to_bytes"):
        pickle.dumps(profile)
    with pytest.raises(TypeError, match="nvxprofile.open"):
        Profile(object())  # type: ignore[arg-type]
    made = Profile.create(FRAME.read_bytes())
    assert made.icc is not None and made.icc.tobytes() == FRAME.read_bytes()
    assert made.table is None and made.table_inputs == () and made.masks is None and not made.curves


def test_info_takes_every_field_that_can_be_written(profile: Profile) -> None:
    info = profile.info
    values: Dict[str, object] = {
        "model_code": "4321",
        "model_sub_code": "21",
        "internal_code": "43",
        "media_code": "987654321",
        "default_media_name": "Film",
        "revision": "R7",
        "create_module": "module",
        "maker": "Example",
        "created": datetime.datetime(2020, 1, 2, 3, tzinfo=datetime.timezone.utc),
        "media_names": (nvxprofile.MediaName(9, "Film"), nvxprofile.MediaName(17, "光沢")),
        "database_key": (5, 4, 3, 2, 1),
    }
    writable = [name for name, field in vars(type(info)).items() if hasattr(field, "__set__") and name != "_core"]
    values.update({name: 100 + i for i, name in enumerate(writable) if name not in values})
    assert sorted(values) == sorted(writable)
    info.update(**values)
    again = Profile.from_bytes(profile.to_bytes(), "film.icc").info
    # What special colours of type 1 make of it.
    values["separate_way_code"] = 3
    assert {name: getattr(again, name) for name in writable} == values


def test_info_refuses_what_is_no_field_and_no_value(profile: Profile) -> None:
    info = profile.info
    with pytest.raises(AttributeError):
        setattr(info, "file_name", "x")
    with pytest.raises(AttributeError, match="no_such"):
        info.update(no_such=1)
    with pytest.raises(TypeError, match="scan_resolution"):
        info.scan_resolution = -1
    with pytest.raises(ValueError, match="time zone"):
        info.created = datetime.datetime(2020, 1, 1)


def test_a_notebook_shows_curves_and_no_foreign_markup(profile: Profile) -> None:
    profile.info.default_media_name = "<script>"
    profile.info.media_names = ()
    profile.curves["linearization"].put(nvxprofile.Curve(1, [0, 65535], name="<b>Cyan"))
    html = profile._repr_html_()
    assert "<script>" not in html and "<b>" not in html and "&lt;b&gt;Cyan" in html
    assert html.count("<polyline") == sum(len(curves) for curves in profile.curves.values())
    assert 'points="8.0,152.0 212.0,8.0"' in html
    assert "film.icc" in repr(profile) and "linearization" in repr(profile)


def test_plots_show_each_kind(profile: Profile, monkeypatch: pytest.MonkeyPatch, tmp_path: pathlib.Path) -> None:
    pyplot = pytest.importorskip("matplotlib.pyplot")
    pyplot.switch_backend("agg")
    figure = profile.plot(["linearization", "gray-balance"])
    assert [axes.get_title() for axes in figure.axes] == ["linearization", "gray-balance"]
    assert len(figure.axes[0].lines) == len(profile.curves["linearization"])
    for ink, name in ((1, r"$\frac$"), (2, "_hidden")):
        profile.curves["linearization"].put(nvxprofile.Curve(ink, [0, 65535], name=name))
    strange = profile.plot(["linearization"])
    strange.savefig(tmp_path / "strange.png")
    assert len(strange.axes[0].get_legend().get_texts()) == len(profile.curves["linearization"])
    pyplot.close("all")
    monkeypatch.setitem(__import__("sys").modules, "matplotlib.pyplot", None)
    with pytest.raises(ImportError, match="install"):
        profile.plot()
