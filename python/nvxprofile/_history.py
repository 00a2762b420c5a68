"""The calibration history."""

from __future__ import annotations

import datetime
from typing import TYPE_CHECKING, Any, Iterable, Iterator, List, Mapping, Optional, Sequence, Tuple, Union, overload

import numpy.typing as npt

from ._arrays import Samples, seconds_of, time_of
from ._curves import Curve, CurveMap, curves_of

if TYPE_CHECKING:
    from . import _core

CALIBRATION_KINDS = ("ink-limit", "linearization", "gray-balance")
# What queries for the ink limit of a calibration look for.
_INK_LIMIT_EXTEND_INFO = 12

CurveList = Union[Iterable[Curve], Mapping[Any, npt.ArrayLike]]


class CalibrationCurves(Mapping[str, CurveMap]):
    """The curve sets of a calibration, read-only: ``"ink-limit"``, ``"linearization"``, ``"gray-balance"``."""

    __slots__ = ("_core", "_code")

    def __init__(self, core: "_core.Profile", code: int) -> None:
        self._core = core
        self._code = code

    def __getitem__(self, kind: str) -> CurveMap:
        if kind not in CALIBRATION_KINDS:
            raise KeyError(kind)
        core, code = self._core, self._code
        return CurveMap(lambda: core.calibration_curves(code, kind))

    def __iter__(self) -> Iterator[str]:
        return iter(CALIBRATION_KINDS)

    def __len__(self) -> int:
        return len(CALIBRATION_KINDS)


class Calibration:
    """A calibration of the history, read-only. What it is called does not follow later changes; its curves are looked
    up by its code when they are asked for."""

    __slots__ = ("_core", "_fields")

    def __init__(self, core: "_core.Profile", fields: Tuple[int, str, int, int]) -> None:
        self._core = core
        self._fields = fields

    @property
    def code(self) -> int:
        """Names the calibration for as long as it is in the history."""
        return self._fields[0]

    @property
    def name(self) -> str:
        """What it is called."""
        return self._fields[1]

    @property
    def value(self) -> int:
        """A number that its maker gave it."""
        return self._fields[2]

    @property
    def time(self) -> Optional[datetime.datetime]:
        """In UTC; None for a time outside of the years 1 to 9999."""
        return time_of(self._fields[3])

    @property
    def curves(self) -> CalibrationCurves:
        """The curves by kind, as ``calibration.curves["linearization"][1]``."""
        return CalibrationCurves(self._core, self.code)

    def query(self, kind: str, ink: int) -> Optional[Samples]:
        """The curve that a print job takes of the kind for the ink, as a view; None if there is none, and for codes of
        2**31 or more, which print jobs cannot ask for.
        """
        if kind not in CALIBRATION_KINDS:
            raise KeyError(kind)
        return self._core.calibration_curve(self.code, kind, ink)

    def __eq__(self, other: object) -> bool:
        if not isinstance(other, Calibration):
            return NotImplemented
        return self._core is other._core and self.code == other.code

    def __hash__(self) -> int:
        return hash(self.code)

    def __repr__(self) -> str:
        time = self.time.isoformat(" ") if self.time else "no time"
        return f"<Calibration {self.code} {self.name!r}, {time}>"


class History(Sequence[Calibration]):
    """The calibrations of a profile from the oldest entry to the newest; ``history[-1]`` was added last."""

    __slots__ = ("_core",)

    def __init__(self, core: "_core.Profile") -> None:
        self._core = core

    def _all(self) -> List[Calibration]:
        return [Calibration(self._core, fields) for fields in self._core.calibrations()]

    @overload
    def __getitem__(self, index: int) -> Calibration: ...

    @overload
    def __getitem__(self, index: slice) -> Sequence[Calibration]: ...

    def __getitem__(self, index: Union[int, slice]) -> Union[Calibration, Sequence[Calibration]]:
        return self._all()[index]

    def __len__(self) -> int:
        return len(self._core.calibrations())

    def __delitem__(self, index: int) -> None:
        """Removes the calibration at a position; IndexError if there is none."""
        if isinstance(index, slice):
            raise TypeError("calibrations are removed one by one")
        self._core.remove_calibration(self[index].code)

    @property
    def newest(self) -> Optional[Calibration]:
        """The one that print jobs go by: the greatest time after 1970; None if there is none."""
        code = self._core.newest_calibration()
        return None if code is None else self.by_code(code)

    def by_code(self, code: int) -> Calibration:
        """The calibration of a code; KeyError if there is none."""
        for calibration in self._all():
            if calibration.code == code:
                return calibration
        raise KeyError(code)

    def append(
        self,
        name: str,
        time: datetime.datetime,
        value: int = 0,
        *,
        ink_limit: CurveList = (),
        linearization: CurveList = (),
        gray_balance: CurveList = (),
    ) -> Calibration:
        """Adds a calibration and gives it back.

        ``name`` has at most 20 characters, ``time`` a time zone and whole seconds: what is less is cut off. Curves are
        lists of ``Curve``, or samples by ink or by (ink, extend_info); ink limits by ink alone get the extend_info 12,
        which queries look for. Sets without curves are left out.
        """
        code = self._core.add_calibration(
            name,
            value,
            seconds_of(time),
            curves_of(ink_limit, _INK_LIMIT_EXTEND_INFO),
            curves_of(linearization),
            curves_of(gray_balance),
        )
        return self.by_code(code)

    def remove(self, code: int) -> None:
        """Removes the calibration of a code; KeyError if there is none."""
        if not self._core.remove_calibration(code):
            raise KeyError(code)

    def __repr__(self) -> str:
        return f"<History of {len(self)} calibrations>"
