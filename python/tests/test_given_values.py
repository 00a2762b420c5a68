"""What is given is what a profile says from then on, or is refused: nothing is cut, rounded or passed over."""

import array
import dataclasses
import datetime
import decimal
import fractions
import os
import pathlib
import pickle
from typing import Any, Callable, Dict, Sequence

import numpy as np
import nvxprofile
import pytest
from conftest import FRAME, SOURCES
from nvxprofile import Curve, LampPattern, LampSettings, MaskRule, Masks, Profile

FIVE: Any = 5
NOW = datetime.datetime(2024, 5, 6, tzinfo=datetime.timezone.utc)
SPECIAL = nvxprofile.SpecialColors


def set_to(name: str, value: Any) -> Callable[[Profile], None]:
    return lambda profile: setattr(profile, name, value)


@pytest.mark.parametrize(
    "fraction", [np.float32(1.5), decimal.Decimal("1.5"), fractions.Fraction(3, 2), np.array([1.5]), 1.5, "1"], ids=repr
)
def test_numbers_are_whole(profile: Profile, fraction: Any) -> None:
    takers: Sequence[Callable[[], object]] = [
        lambda: profile.linearization(fraction),
        lambda: profile.lamp(1, 5, 9, fraction),
        lambda: profile.info.update(scan_resolution=fraction),
        lambda: profile.info.update(database_key=(1, 2, 3, 4, fraction)),
        lambda: profile.curves["linearization"].put(Curve(fraction, [1, 2])),
        lambda: profile.set_table(np.zeros((2, 1), np.uint8), [fraction], [1]),
        lambda: profile.history.append("new", NOW, fraction),
        lambda: profile.history.remove(fraction),
        lambda: setattr(profile, "lamp_patterns", [LampPattern((1, 2, 3, fraction))]),
        lambda: setattr(profile, "masks", Masks([MaskRule(fraction)])),
    ]
    before = profile.to_dict()
    for number, take in enumerate(takers):
        with pytest.raises(TypeError):
            take()
        assert profile.to_dict() == before, number


def test_numbers_of_numpy_are_numbers(profile: Profile) -> None:
    curves = profile.curves["linearization"]
    ink: Any
    for ink in np.arange(1, 4, dtype=np.uint8):
        assert np.shares_memory(curves[ink], curves[int(ink)]) and profile.linearization(ink) is not None
        key: Any = (ink, np.int64(7))
        assert (ink, 0) in curves and key not in curves
    ink = np.int64(200)
    curves[ink] = [1, 2]
    assert curves[200].tolist() == [1, 2] and ink + 1 not in curves
    profile.info.update(scan_resolution=np.uint32(2**32 - 1))
    assert profile.info.scan_resolution == 2**32 - 1


def test_masks_of_arrays_are_not_dropped(profile: Profile) -> None:
    masked: Any = np.ma.array([1, 2], mask=[0, 1], dtype=np.uint8)  # type: ignore[no-untyped-call]
    takers: Sequence[Callable[[], object]] = [
        lambda: Curve(1, masked),
        lambda: profile.media.__setitem__("heater", masked),
        lambda: profile.set_table(masked.reshape(2, 1), [1], [1]),
        lambda: setattr(profile, "icc", masked),
    ]
    for take in takers:
        with pytest.raises(ValueError, match="masked"):
            take()
    assert Curve(1, masked.filled(3)).samples.tolist() == [1, 3]


def test_bytes_are_bytes(profile: Profile) -> None:
    data = FRAME.read_bytes()
    for fine in (bytearray(data), memoryview(data), memoryview(b"".join(bytes((b, 0)) for b in data))[::2]):
        setattr(profile, "replacement_icc", fine)
        assert profile.replacement_icc is not None and profile.replacement_icc.tobytes() == data
    wide = memoryview(b"1234").cast("I")
    wrong: Any
    for wrong in (5, "text", [1, 2], None, np.zeros(4, np.uint16), array.array("H", [1, 2]), wide):
        with pytest.raises(TypeError):
            profile.replacement_icc = wrong
        with pytest.raises(TypeError):
            MaskRule(1, parameters=wrong)
        with pytest.raises(TypeError):
            Masks(patterns={1: wrong})


def test_a_file_name_is_any_bytes(profile: Profile, tmp_path: pathlib.Path, monkeypatch: pytest.MonkeyPatch) -> None:
    monkeypatch.setenv("SOURCE_DATE_EPOCH", "1700000000")
    for name in ("a\udcff.icc", os.fsdecode(b"\xed\xa0\x80\xed\xb3\xbf.icc"), "\U0001d4b3.icc"):
        profile.save(tmp_path / name)
        saved = (tmp_path / name).read_bytes()
        assert profile.to_bytes(name) == saved and Profile.from_bytes(saved, name).info.file_name == name


def test_what_is_read_takes_no_change_that_is_not_written(profile: Profile) -> None:
    calibration, masks = profile.history[0], profile.masks
    assert masks is not None
    changes: Sequence[Callable[[], object]] = [
        lambda: setattr(calibration, "name", "other"),
        lambda: setattr(calibration, "time", NOW),
        lambda: getattr(profile.lamp_patterns, "append")(LampPattern()),
        lambda: getattr(profile.mask_blocks, "append")(1),
    ]
    for change in changes:
        with pytest.raises(AttributeError):
            change()
    for attempt in ("__setitem__", "setdefault"):
        with pytest.raises(TypeError, match="copy"):
            getattr(masks.patterns, attempt)(1, b"x")
    assert pickle.loads(pickle.dumps(masks)) == masks and dataclasses.asdict(masks)["patterns"] == masks.patterns
    given: Dict[int, bytes] = {1: b"x"}
    own = Masks([], given)
    given[2] = b"y"
    assert own.patterns == {1: b"x"}


@pytest.mark.parametrize(
    "change",
    [
        set_to("masks", None),
        set_to("masks", Masks([FIVE])),
        set_to("mask_blocks", [FIVE]),
        set_to("lamp_patterns", [LampSettings()]),
        set_to("lamp_patterns", [LampPattern(settings=FIVE)]),
        set_to("special_colors", None),
        set_to("special_colors", SPECIAL(patterns=[FIVE])),
        set_to("special_colors", SPECIAL(curve_sets=[[FIVE]])),
        lambda profile: profile.set_fixed_lamp(FIVE),
        lambda profile: profile.curves["linearization"].put(FIVE),
        lambda profile: profile.curves["linearization"].replace([FIVE]),
        lambda profile: profile.history.append("new", FIVE),
        lambda profile: profile.history.__delitem__(slice(2)),
        lambda profile: profile.info.update(created=5),
        lambda profile: profile.info.update(ink_version=NOW),
        lambda profile: profile.to_bytes(FIVE),
    ],
)
def test_what_means_nothing_is_a_type_error(profile: Profile, change: Callable[[Profile], object]) -> None:
    before = profile.to_dict()
    with pytest.raises(TypeError):
        change(profile)
    assert profile.to_dict() == before


def test_a_curve_without_samples_can_be_written_again(profile: Profile) -> None:
    curves = profile.curves["linearization"]
    curves[1] = []
    curves.put(curves.curve(1))
    curves.replace(curves.curves())
    again = Profile.from_bytes(profile.to_bytes(), "film.icc").curves["linearization"].curve(1)
    assert again.samples.dtype == np.uint16 and again.name == "Cyan" and profile.linearization(1) is None


def test_no_time_of_creation_is_none(profile: Profile) -> None:
    info = profile.info
    info.created = None
    assert info.created is None
    with pytest.raises(nvxprofile.ProfileError, match="creation"):
        info.created = datetime.datetime(1970, 1, 1, tzinfo=datetime.timezone.utc)
    assert info.created is None and nvxprofile.build(profile.to_dict(), SOURCES / "examples").info.created is not None
