"""What arrays show never changes and never ends."""

import datetime
import gc
import os
import pathlib
import threading
from typing import Any, Callable, Dict, List

import numpy as np
import nvxprofile
import pytest
from conftest import SOURCES
from nvxprofile import Curve, Profile

NOW = datetime.datetime.now(datetime.timezone.utc)
View = Any  # an array


def need(view: View) -> View:
    assert view is not None
    return view


VIEWS: Dict[str, Callable[[Profile], View]] = {
    "query": lambda p: need(p.linearization(1)),
    "extended query": lambda p: need(p.variable(1, 4)),
    "set": lambda p: p.curves["gray-balance"][2],
    "curve": lambda p: p.curves["multi-ink-limit"].curves()[0].samples,
    "table": lambda p: need(p.table),
    "media": lambda p: p.media["heater"],
    "icc": lambda p: need(p.icc),
    "entry": lambda p: p.entries["linearization"].data,
    "calibration": lambda p: p.history[-1].curves["linearization"][1],
    "calibration query": lambda p: need(p.history[0].query("linearization", 1)),
    "special colours": lambda p: getattr(p.special_colors, "curve_sets")[0][0].samples,
    "slice": lambda p: need(p.table)[1:, ::2][..., 0],
}


def zeroed(view: View) -> View:
    return np.zeros_like(view)


CHANGES: Dict[str, Callable[[Profile], object]] = {
    "curve": lambda p: p.curves["linearization"].update({1: zeroed(p.curves["linearization"][1])}),
    "all curves": lambda p: p.curves["gray-balance"].replace([Curve(2, np.arange(5, dtype=np.uint16))]),
    "limits": lambda p: p.curves["multi-ink-limit"].clear(),
    "variable": lambda p: p.curves.pop("variable"),
    "table": lambda p: p.set_table(zeroed(need(p.table)), p.table_inputs, p.table_outputs),
    "media": lambda p: p.media.__setitem__("heater", [1, 2, 3, 4]),
    "calibration": lambda p: p.history.remove(p.history[0].code),
    "history": lambda p: p.history.append("new", NOW, linearization={1: [0, 9]}),
    "special colours": lambda p: setattr(p, "special_colors", nvxprofile.SpecialColors()),
    "entry": lambda p: p.entries.clear(),
    "info": lambda p: p.info.update(maker="other"),
    "bytes": lambda p: p.to_bytes(),
    "document": lambda p: p.to_dict(),
    "close": lambda p: p.close(),
}


@pytest.mark.parametrize("change", [*CHANGES, "save"])
def test_views_outlive_every_change(
    profile: Profile, change: str, document: Dict[str, Any], tmp_path: pathlib.Path
) -> None:
    views = {name: take(profile) for name, take in VIEWS.items()}
    # Copied by the C library, where a sanitizer looks.
    before = {name: view.tobytes() for name, view in views.items()}
    CHANGES.get(change, lambda p: p.save(tmp_path / "saved.icc"))(profile)
    gc.collect()
    # Whatever was freed is likely to be given to these.
    hungry = [nvxprofile.build(document, SOURCES / "examples") for _ in range(3)]
    for name, view in views.items():
        assert view.tobytes() == before[name], name
    del profile, hungry
    gc.collect()
    for name, view in views.items():
        assert view.tobytes() == before[name], name


@pytest.mark.parametrize("state", ["loaded", "saved", "copied", "changed"])
@pytest.mark.parametrize("name", VIEWS)
def test_a_view_is_the_memory_itself_and_read_only(
    profile: Profile, name: str, state: str, tmp_path: pathlib.Path
) -> None:
    if state == "saved":
        profile.save(tmp_path / "saved.icc")
    if state == "copied":
        profile = profile.copy()
    if state == "changed":
        profile.history.append("new", NOW, linearization={1: [1, 2]})
        profile.curves["linearization"][1] = [1, 2]
        profile.media["heater"] = 5
        profile.special_colors = profile.special_colors
    view = VIEWS[name](profile)
    assert np.shares_memory(view, VIEWS[name](profile))
    with pytest.raises(ValueError):
        view.flags.writeable = True
    with pytest.raises(ValueError):
        view[...] = 0


def test_a_change_is_seen_by_new_views_alone(profile: Profile) -> None:
    curves = profile.curves["linearization"]
    former = curves[1]
    values = former.copy()
    for step in range(1, 20):
        curves[1] = np.full(33, step, np.uint16)
        latest = curves[1]
        assert latest.tolist() == [step] * 33 and not np.shares_memory(former, latest)
    assert np.array_equal(former, values)
    curves[1] = former[::-1]  # out of the profile's own memory, backwards
    assert np.array_equal(curves[1], values[::-1])


@pytest.mark.parametrize("hold", [False, True], ids=["in place", "beside views"])
def test_a_refused_change_changes_nothing(profile: Profile, hold: bool) -> None:
    document = profile.to_dict()
    held = [take(profile) for take in VIEWS.values()] if hold else []
    twins = [Curve(1, [1, 2]), Curve(1, [3, 4])]
    refused: List[Callable[[], object]] = [
        lambda: profile.curves["linearization"].replace(twins),
        lambda: profile.curves["linearization"].put(Curve(1, [1, 2], name="x" * 92)),
        lambda: profile.curves["linearization"].put(Curve(1, np.zeros(4, np.uint8))),
        lambda: profile.media.__setitem__("pass-density", [1, 2]),
        lambda: profile.history.append("x" * 21, NOW),
        lambda: profile.info.update(scan_resolution=1, maker="x" * 33),
        lambda: setattr(profile, "icc", b"no ICC profile"),
        lambda: setattr(profile, "mask_blocks", [nvxprofile.MaskBlock(7)]),
        lambda: profile.entries.__setitem__("chroma", b"abc"),
    ]
    for number, change in enumerate(refused):
        with pytest.raises(nvxprofile.ProfileError):
            change()
        assert profile.to_dict() == document, number
    del held


def test_threads_save_read_and_change_one_profile(profile: Profile, tmp_path: pathlib.Path) -> None:
    """Whatever a reader or a save sees is one of the states that a writer has made."""
    failures: List[BaseException] = []

    def guard(work: Callable[[int], None]) -> Callable[[], None]:
        def run() -> None:
            try:
                for step in range(30):
                    work(step)
            except BaseException as error:
                failures.append(error)

        return run

    def write(step: int) -> None:
        profile.curves["linearization"] = {ink: np.full(9, step, np.uint16) for ink in range(1, 5)}

    def read(step: int) -> None:
        curves = profile.curves["linearization"].curves()
        gc.collect()
        assert len({tuple(curve.samples) for curve in curves}) == 1

    def save(step: int) -> None:
        path = tmp_path / f"{threading.get_ident()}.icc"
        profile.save(path)
        saved = nvxprofile.open(path).curves["linearization"]
        assert len({tuple(curve.samples) for curve in saved.curves()}) == 1

    write(0)
    threads = [threading.Thread(target=guard(work)) for work in (write, save, save, read)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert not failures


def test_others_run_while_a_file_is_read(tmp_path: pathlib.Path, profile_bytes: bytes) -> None:
    """The reader waits for the other end of a pipe, which is opened only if the interpreter is free meanwhile."""
    pipe = tmp_path / "pipe"
    os.mkfifo(pipe)
    ends: List[object] = []

    def read() -> None:
        try:
            ends.append(nvxprofile.open(pipe))
        except nvxprofile.ProfileError as error:
            ends.append(error)

    reader = threading.Thread(target=read)
    reader.start()
    with open(pipe, "wb"):
        pass
    reader.join()
    assert len(ends) == 1
