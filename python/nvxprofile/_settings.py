"""Settings of the medium, print masks, lamp and special colours."""

from __future__ import annotations

from dataclasses import dataclass, field
from typing import (
    TYPE_CHECKING,
    Any,
    Dict,
    Iterator,
    List,
    Mapping,
    MutableMapping,
    NoReturn,
    Optional,
    Sequence,
    Tuple,
)

import numpy as np
import numpy.typing as npt

from ._arrays import array_of, bytes_of
from ._curves import Curve

if TYPE_CHECKING:
    from . import _core

ANY = -1
"""A condition that every value fits."""

# Names as `nvxprofile get` has them, with the numbers of their blocks.
MEDIA_SETTINGS = {
    "correct": 1,
    "heater": 2,
    "wave": 3,
    "feed-speed": 4,
    "wave-form": 5,
    "dot-size": 6,
    "pass-density": 7,
    "pass-mask": 8,
    "uv-mode": 9,
    "top-blower": 10,
    "feed-direction": 11,
}


class Media(MutableMapping[str, "npt.NDArray[np.int32]"]):
    """The device settings of the medium by name (``nvxprofile.MEDIA_SETTINGS``), as read-only views of ``int32``.

    ``media["heater"] = [45, 45, 40, 40]`` writes: 1 to 16 values for heater, dot-size and uv-mode, 16 for pass-density,
    8 for pass-mask, 1 for all others (ProfileError). A single number is an array of one.
    """

    __slots__ = ("_core",)

    def __init__(self, core: "_core.Profile") -> None:
        self._core = core

    def __getitem__(self, name: str) -> npt.NDArray[np.int32]:
        values = self._core.media(MEDIA_SETTINGS[name])
        if values is None:
            raise KeyError(name)
        return values

    def __setitem__(self, name: str, values: npt.ArrayLike) -> None:
        array: npt.NDArray[Any] = np.atleast_1d(array_of(values))
        if array.ndim != 1:
            raise ValueError("a setting is one row of numbers")
        if array.dtype.kind not in "ui":
            raise TypeError(f"a setting is whole numbers, not {array.dtype}")
        if array.min() < -(2**31) or array.max() >= 2**31:
            raise ValueError("a setting is numbers of 32 bits")
        self._core.set_media(MEDIA_SETTINGS[name], array.tolist())

    def __delitem__(self, name: str) -> None:
        if not self._core.remove_media(MEDIA_SETTINGS[name]):
            raise KeyError(name)

    def __contains__(self, name: object) -> bool:
        return name in MEDIA_SETTINGS and self._core.media(MEDIA_SETTINGS[str(name)]) is not None

    def __iter__(self) -> Iterator[str]:
        return iter([name for name in MEDIA_SETTINGS if name in self])

    def __len__(self) -> int:
        return sum(name in self for name in MEDIA_SETTINGS)

    def __eq__(self, other: object) -> bool:
        if not isinstance(other, Media):
            return NotImplemented
        return self._lists() == other._lists()

    def _lists(self) -> Dict[str, List[int]]:
        return {name: values.tolist() for name, values in self.items()}

    def __repr__(self) -> str:
        return f"<Media: {', '.join(f'{name} {values}' for name, values in self._lists().items()) or 'none'}>"


def _freeze(value: Any) -> Any:
    """Lists as tuples, so that equal values are equal however they came about."""
    return tuple(map(_freeze, value)) if isinstance(value, (list, tuple)) else value


class _Frozen:
    # Fields that are bytes, out of whatever holds some.
    _BYTES: Tuple[str, ...] = ()

    def __post_init__(self) -> None:
        for name, value in vars(self).items():
            object.__setattr__(self, name, bytes_of(value).tobytes() if name in self._BYTES else _freeze(value))


class _FrozenDict(Dict[int, bytes]):
    """What has been read does not take what would not be written."""

    def _refuse(self, *_: Any, **__: Any) -> NoReturn:
        raise TypeError("it is a copy, and takes no changes: make a dictionary of it, and write that")

    __setitem__ = __delitem__ = __ior__ = update = setdefault = pop = popitem = clear = _refuse  # type: ignore

    def __reduce__(self) -> Any:
        return type(self), (dict(self),)


@dataclass(frozen=True)
class MaskBlock(_Frozen):
    """A mask block of fixed shape: a type from 1 to 6, and as many values and bytes as the type has."""

    _BYTES = ("data",)

    type: int
    values: Sequence[int] = ()
    data: bytes = b""


@dataclass(frozen=True)
class MaskRule(_Frozen):
    """The masks of one printing condition. Of several rules with one condition the first wins."""

    _BYTES = ("parameters",)

    pass_count: int = 0
    special_colorset: int = 0
    print_method: int = 0
    layer_colors: Sequence[int] = ()
    """At most 10, read in ascending order."""
    parameters: bytes = b""
    patterns: Sequence[int] = ()
    """IDs of patterns, at most 15."""

    def _condition(self) -> Tuple[int, int, int, Sequence[int]]:
        return (self.pass_count, self.special_colorset, self.print_method, list(self.layer_colors))


@dataclass(frozen=True)
class Masks(_Frozen):
    """Print masks with their patterns by ID."""

    rules: Sequence[MaskRule] = ()
    patterns: Mapping[int, bytes] = field(default_factory=dict)

    def __post_init__(self) -> None:
        super().__post_init__()
        patterns = {number: bytes_of(data).tobytes() for number, data in self.patterns.items()}
        object.__setattr__(self, "patterns", _FrozenDict(patterns))

    @classmethod
    def _of(cls, fields: Tuple[Any, Any]) -> "Masks":
        rules = [
            MaskRule(pass_count, special_colorset, print_method, layer_colors, parameters, patterns)
            for (pass_count, special_colorset, print_method, layer_colors), parameters, patterns in fields[0]
        ]
        return cls(rules, dict(fields[1]))


@dataclass(frozen=True)
class LampSettings(_Frozen):
    """Settings of the UV lamp under one condition."""

    head: Tuple[int, int] = (0, 0)
    splits: Sequence[Sequence[int]] = ()
    rest: Sequence[int] = ()
    """What a table holds behind its splits; empty in a sound one, and never written."""

    @classmethod
    def _of(cls, fields: Tuple[Any, Any, Any]) -> "LampSettings":
        head, splits, rest = fields
        return cls((head[0], head[1]), splits, rest)

    def _tuple(self) -> Tuple[Any, Any, Any]:
        return (self.head, [list(split) for split in self.splits], [])


@dataclass(frozen=True)
class LampPattern(_Frozen):
    """Settings under four conditions. ``ANY`` fits every value; a hundred in the fourth, such as 300, fits 300 to 399.
    """

    conditions: Tuple[int, int, int, int] = (ANY, ANY, ANY, ANY)
    settings: LampSettings = LampSettings()


@dataclass(frozen=True)
class SpecialColorPattern(_Frozen):
    """What is recommended for colours under two conditions. ``ANY`` fits every value; a hundred in the first, such as
    300, fits 300 to 399.
    """

    conditions: Tuple[int, int] = (ANY, ANY)
    colors: Sequence[int] = ()
    """Ink codes, or ``ANY``; read in ascending order, ``ANY`` last."""
    level: int = 0
    """Counts from 0."""
    density: int = 0
    curve_set: Optional[int] = None
    """Index into the curve sets of the table."""

    def _tuple(self) -> Tuple[Any, ...]:
        return (self.conditions, list(self.colors), self.level, self.density, self.curve_set)


@dataclass(frozen=True)
class SpecialColors(_Frozen):
    """The table of special colours. The samples of all curves of a set take equally many bytes (ProfileError)."""

    profile_color_type: int = 0
    patterns: Sequence[SpecialColorPattern] = ()
    curve_sets: Sequence[Sequence[Curve]] = ()

    @classmethod
    def _of(cls, fields: Tuple[int, Any, Any]) -> "SpecialColors":
        patterns = [SpecialColorPattern((first, second), *rest) for (first, second), *rest in fields[1]]
        return cls(fields[0], patterns, [[Curve._of(curve) for curve in curves] for curves in fields[2]])
