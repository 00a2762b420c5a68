"""The parts of a profile as mappings, sequences and arrays."""

import dataclasses
import datetime
from typing import Any

import numpy as np
import nvxprofile
import pytest
from nvxprofile import Channel, Curve, Profile

TIME = datetime.datetime(2024, 5, 6, 7, 8, 9, tzinfo=datetime.timezone.utc)


def reloaded(profile: Profile) -> Profile:
    return Profile.from_bytes(profile.to_bytes(), "film.icc")


def test_queries_and_sets_agree(profile: Profile) -> None:
    for ink in range(1, 7):
        linearization, balance = profile.linearization(ink), profile.gray_balance(ink)
        assert linearization is not None and balance is not None
        assert linearization.dtype == np.uint16 and linearization.shape == profile.curves["linearization"][ink].shape
        assert np.shares_memory(linearization, profile.curves["linearization"][ink])
        merged = profile.merged_gray_balance(ink)
        wanted = linearization[np.minimum(balance, len(linearization) - 1)]
        assert merged is not None and np.array_equal(merged, wanted)
    assert profile.linearization(99) is None and profile.black_generation() is None


def test_a_curve_set_is_a_mapping(profile: Profile) -> None:
    curves = profile.curves["variable"]
    first = next(iter(curves))
    assert isinstance(first, tuple) and curves[first[0]] is not None and 99 not in curves
    count = len(curves)
    curves[first] = np.array([1, 2, 3], dtype=">i8")
    curves[99] = [7, 8]
    curves[99, 5] = range(4)
    assert len(curves) == count + 2 and curves[99].tolist() == [7, 8]
    again = reloaded(profile).curves["variable"]
    assert [again[first].tolist(), again[99, 5].tolist()] == [[1, 2, 3], [0, 1, 2, 3]]
    assert again.curve((99, 5)).extend_info == 5
    del again[99]
    assert (99, 0) not in again and (99, 5) in again
    with pytest.raises(KeyError):
        del again[98]
    assert set(profile.curves) >= {"linearization", "variable"} and "ucr" not in profile.curves
    profile.curves["ucr"][0, 2] = [0, 5, 9]
    removal = profile.under_color_removal()
    assert removal is not None and removal.tolist() == [0, 5, 9] and "ucr" in profile.curves
    profile.curves["ink-limit"] = profile.curves["linearization"]
    assert profile.curves["ink-limit"].curves() == profile.curves["linearization"].curves()
    del profile.curves["ink-limit"]
    assert profile.ink_limit(1) is None
    with pytest.raises(KeyError):
        profile.curves["no such kind"]


def test_samples_are_whole_numbers_that_fit(profile: Profile) -> None:
    curves = profile.curves["linearization"]
    wrong: Any
    for wrong in ([0.5], [True], ["1"]):
        with pytest.raises(TypeError):
            curves[1] = wrong
    for wrong in ([-1], [65536], [[1, 2], [3, 4]], 5):
        with pytest.raises(ValueError):
            curves[1] = wrong
    with pytest.raises(TypeError):
        curves[300] = [1]  # no ink code
    assert Curve(1, np.zeros(2, np.uint8)).samples.dtype == np.uint8


def test_the_table_has_an_axis_for_each_input(profile: Profile) -> None:
    table = profile.table
    assert table is not None and table.dtype == np.uint8
    assert table.shape == (9,) * len(profile.table_inputs) + (len(profile.table_outputs),)
    assert len(profile.table_inputs) == 4 and len(profile.table_outputs) == 6
    changed = table.copy()
    changed[1, 2, 3, 4] = [1, 2, 3, 4, 5, 6]
    inputs = profile.table_inputs
    profile.table = changed
    assert profile.table_inputs == inputs
    # The last axis is that of the outputs, the first that of the slowest input.
    index = ((1 * 9 + 2) * 9 + 3) * 9 + 4
    entry = profile.to_dict()["entries"][list(profile.entries).index("chroma")]
    assert "payload" in entry and np.array_equal(profile.table.reshape(-1, 6)[index], [1, 2, 3, 4, 5, 6])
    assert bytes([1, 2, 3, 4, 5, 6]) in profile.entries["chroma"].data.tobytes()

    red, green, blue = np.indices((2, 2, 2), dtype=np.uint8)
    cube = np.stack([red, green, blue, 255 - red], axis=-1)
    profile.set_table(cube, [10, 11, 12], [Channel(1, name="Cyan"), 2, 3, 4])
    again = reloaded(profile)
    assert again.table is not None and np.array_equal(again.table, cube)
    assert again.table_outputs[0] == Channel(1, 0, "Cyan") and [c.code for c in again.table_inputs] == [10, 11, 12]
    with pytest.raises(ValueError):
        profile.table = cube[:, :, :1]
    with pytest.raises(ValueError):
        profile.table = cube[..., :3]
    with pytest.raises(TypeError):
        profile.table = cube.astype(float)


def test_calibrations_are_appended_found_and_removed(profile: Profile) -> None:
    count = len(profile.history)
    added = profile.history.append(
        "May", TIME, 5, ink_limit={1: [0, 100]}, linearization=[Curve(1, [0, 9, 99], name="Cyan")]
    )
    history = reloaded(profile).history
    assert len(history) == count + 1 and history[-1].code == added.code and history[-1] in history
    last = history[-1]
    assert (last.name, last.value, last.time) == ("May", 5, TIME)
    assert last.curves["linearization"].curve(1).name == "Cyan"
    limit = last.query("ink-limit", 1)
    assert limit is not None and limit.tolist() == [0, 100] and list(last.curves["ink-limit"]) == [(1, 12)]
    assert last.query("gray-balance", 1) is None and not last.curves["gray-balance"]
    assert history.newest is not None and history.newest.time is not None
    assert history.newest.time == max(calibration.time for calibration in history if calibration.time)
    assert [calibration.code for calibration in history[count:]] == [added.code]
    del history[-1]
    assert len(history) == count
    with pytest.raises(KeyError):
        history.by_code(added.code)
    with pytest.raises(KeyError):
        history.remove(added.code)
    with pytest.raises(IndexError):
        history[count]


def test_media_settings_are_a_mapping(profile: Profile) -> None:
    media = profile.media
    media["feed-direction"] = 1
    media["heater"] = np.array([45, -50])
    again = reloaded(profile).media
    assert again["heater"].tolist() == [45, -50] and again["feed-direction"].dtype == np.int32
    del again["heater"]
    assert "heater" not in again and "no such" not in again
    with pytest.raises(KeyError):
        again["heater"]
    with pytest.raises(KeyError):
        again["no such"] = 1
    with pytest.raises(ValueError):
        again["heater"] = 2**31
    with pytest.raises(TypeError):
        again["heater"] = 1.5


def test_masks_lamp_and_special_colours_come_back_as_they_were_written(profile: Profile) -> None:
    masks, lamp, colors = profile.masks, profile.lamp_patterns, profile.special_colors
    assert masks is not None and masks.rules and lamp and colors is not None and colors.patterns
    rule = nvxprofile.MaskRule(8, 2, 1, [3, 4], b"parameters", [77])
    profile.masks = nvxprofile.Masks([rule, *masks.rules], {77: b"pattern", **masks.patterns})
    settings = nvxprofile.LampSettings((5, 6), [[1, 2], [3]])
    profile.lamp_patterns = [nvxprofile.LampPattern((1, 2, 3, 300), settings), *lamp]
    sets = [[Curve(9, [0, 7])], *colors.curve_sets]
    pattern = nvxprofile.SpecialColorPattern((41, nvxprofile.ANY), [9], level=2, density=30, curve_set=0)
    shifted = [
        dataclasses.replace(other, curve_set=None if other.curve_set is None else other.curve_set + 1)
        for other in colors.patterns
    ]
    profile.special_colors = nvxprofile.SpecialColors(colors.profile_color_type, [pattern, *shifted], sets)

    again = reloaded(profile)
    assert again.masks == profile.masks and again.masks is not None and again.masks.rules[0].parameters == b"parameters"
    packed = again.packed_mask(8, 2, 1, [3, 4])
    assert packed is not None and b"pattern" in packed and again.packed_mask(1000) is None
    assert again.lamp(1, 2, 3, 355) == settings and again.lamp_patterns[0].conditions == (1, 2, 3, 300)
    assert again.recommended_level(41, 5, [9]) == 2 and again.recommended_density(41, 5, 9) == 30
    dots = again.variable_dot_curve(41, 5, 9, 0)
    assert dots is not None and dots.tolist() == [0, 7]
    assert again.special_colors == profile.special_colors

    again.set_fixed_lamp(nvxprofile.LampSettings((1, 2), [[3] * 131, [4] * 131]))
    fixed = reloaded(again).lamp(9, 9, 9, 9)
    assert fixed == nvxprofile.LampSettings((1, 2), [[3] * 131, [4] * 131]) and again.lamp_patterns == ()


def test_mappings_are_compared_by_what_they_hold(profile: Profile) -> None:
    other = profile.copy()
    parts = ("curves", "media", "entries")
    assert all(getattr(profile, part) == getattr(other, part) for part in parts)
    assert profile.history[0].curves == other.history[0].curves
    curve = other.curves["linearization"].curve(1)
    curve.slot += 1
    other.curves["linearization"].put(curve)
    other.media["heater"] = [1]
    assert not any(getattr(profile, part) == getattr(other, part) for part in parts)
    assert profile.curves["linearization"] != other.curves["linearization"]
    assert profile.entries["linearization"] != other.entries["linearization"] != 5
    assert profile.entries["chroma"] == other.entries["chroma"]
    assert profile.curves["variable"] == other.curves["variable"]


def test_entries_are_bytes_by_name(profile: Profile) -> None:
    other = profile.copy()
    data = profile.entries["linearization"].data
    other.curves["linearization"].clear()
    other.entries["linearization"] = data
    assert other.curves["linearization"].curves() == profile.curves["linearization"].curves()
    entry = profile.entries["linearization"]
    assert (entry.kind, entry.routes, entry.complete, entry.is_understood) == (6, (4,), True, True)
    del other.entries["linearization"]
    assert "linearization" not in other.entries and other.linearization(1) is None
    with pytest.raises(KeyError):
        other.entries["no such"] = b""
    with pytest.raises(TypeError):
        other.icc = np.zeros(128, np.uint16)
