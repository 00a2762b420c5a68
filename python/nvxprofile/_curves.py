"""Curves, in sets by kind."""

from __future__ import annotations

from typing import (
    TYPE_CHECKING,
    Any,
    Callable,
    Iterable,
    Iterator,
    List,
    Mapping,
    MutableMapping,
    Optional,
    Tuple,
    Union,
)

import numpy as np
import numpy.typing as npt

from ._arrays import Samples, need, samples_of

if TYPE_CHECKING:
    from . import _core

CURVE_KINDS = (
    "ink-limit",
    "variable-ink-limit",
    "variable",
    "light-ink",
    "linearization",
    "gray-balance",
    "ucr",
    "multi-ink-limit",
)

Key = Union[int, Tuple[int, int]]
CurveTuple = Tuple[int, int, int, int, int, int, str, Samples]


class Curve:
    """One curve with all that a profile says of it.

    Read from a profile, ``samples`` is a read-only view of the profile's memory. A curve of your own takes any row of
    whole numbers: arrays of ``uint8`` and ``uint16`` keep their width, all else becomes ``uint16``.
    """

    __slots__ = ("ink", "extend_info", "slot", "display_rgb", "min", "max", "name", "samples")

    ink: int
    """Ink colour code, 0 to 255."""
    extend_info: int
    """The second key of the curve."""
    slot: int
    display_rgb: int
    min: int
    max: int
    name: str
    """At most 91 bytes in the ANSI code page are written."""
    samples: Samples
    """Shape (number of samples,), from the lightest level to the fullest; uint8 to 255 or uint16 to 65535."""

    def __init__(
        self,
        ink: int,
        samples: npt.ArrayLike,
        extend_info: int = 0,
        *,
        slot: int = 0,
        display_rgb: int = 0,
        min: int = 0,
        max: int = 0,
        name: str = "",
    ) -> None:
        self.ink = ink
        self.extend_info = extend_info
        self.slot = slot
        self.display_rgb = display_rgb
        self.min = min
        self.max = max
        self.name = name
        self.samples = samples_of(samples)

    @classmethod
    def _of(cls, fields: CurveTuple) -> "Curve":
        curve = cls.__new__(cls)
        (curve.ink, curve.extend_info, curve.slot, curve.display_rgb, curve.min, curve.max, curve.name) = fields[:7]
        curve.samples = fields[7]
        return curve

    def _tuple(self) -> CurveTuple:
        samples = samples_of(self.samples)
        return (self.ink, self.extend_info, self.slot, self.display_rgb, self.min, self.max, self.name, samples)

    def __eq__(self, other: object) -> bool:
        if not isinstance(other, Curve):
            return NotImplemented
        mine, others = self._tuple(), other._tuple()
        return mine[:7] == others[:7] and mine[7].dtype == others[7].dtype and np.array_equal(mine[7], others[7])

    __hash__ = None  # type: ignore[assignment]

    def __repr__(self) -> str:
        title = f" {self.name!r}" if self.name else ""
        return f"<Curve of ink {self.ink}{title}: {len(self.samples)} samples of {self.samples.dtype}>"


def curves_of(curves: Union[Iterable[Curve], Mapping[Any, npt.ArrayLike]], extend_info: int = 0) -> List[CurveTuple]:
    """The curves of a list, or of a dictionary of samples by ink or by (ink, extend_info)."""
    if isinstance(curves, CurveMap):
        curves = curves.curves()
    if isinstance(curves, Mapping):
        curves = [
            Curve(key[0], samples, key[1]) if isinstance(key, tuple) else Curve(key, samples, extend_info)
            for key, samples in curves.items()
        ]
    return [need(curve, Curve)._tuple() for curve in curves]


def _plain(key: object) -> object:
    """A key in numbers of Python: those of NumPy make an array of a pair that they are compared with."""
    if isinstance(key, tuple):
        return tuple(map(_plain, key))
    return key.item() if isinstance(key, np.generic) else key


class CurveMap(Mapping[Key, Samples]):
    """The curves of a set as views of their samples, by ``ink`` or by ``(ink, extend_info)``.

    An ink alone means its first curve, as in the queries of a print job, but for ``Profile.variable_ink_limit``. The
    keys that it is walked by are pairs, in the order of the profile. What is not there is a KeyError. Sets are equal if
    their curves are, with all that is said of them and in the same order.
    """

    __slots__ = ("_read",)

    def __init__(self, read: Callable[[], List[CurveTuple]]) -> None:
        self._read = read

    def curves(self) -> List[Curve]:
        """All curves in their order."""
        return [Curve._of(fields) for fields in self._read()]

    def curve(self, key: Key) -> Curve:
        """The curve of a key with its name and all else; KeyError if there is none."""
        found = self._find(key)
        if found is None:
            raise KeyError(key)
        return found

    def _find(self, key: object) -> Optional[Curve]:
        key = _plain(key)
        for fields in self._read():
            if key == fields[0] or key == fields[:2]:
                return Curve._of(fields)
        return None

    def __getitem__(self, key: Key) -> Samples:
        return self.curve(key).samples

    def get(self, key: Key, default: Any = None) -> Any:
        """The samples of a key, or the default if there is no such curve."""
        found = self._find(key)
        return default if found is None else found.samples

    def __iter__(self) -> Iterator[Tuple[int, int]]:
        return iter([fields[:2] for fields in self._read()])

    def __len__(self) -> int:
        return len(self._read())

    def __eq__(self, other: object) -> bool:
        # Arrays have no truth that dictionaries of them could be compared by.
        if not isinstance(other, CurveMap):
            return NotImplemented
        return self.curves() == other.curves()

    def __repr__(self) -> str:
        inks = ", ".join(str(key[0]) if key[1] == 0 else str(key) for key in (fields[:2] for fields in self._read()))
        return f"<{type(self).__name__} of inks {inks}>" if inks else f"<{type(self).__name__}, empty>"


class CurveSet(CurveMap, MutableMapping[Key, Samples]):
    """A set of curves of a profile, to be read and written.

    ``curves[1] = samples`` copies the samples into the profile: into the place of the curve of that key, whose name and
    other fields stay, or behind all others. The entry comes into being with its first curve. ``del curves[1]`` removes
    one; the entry stays. Printer profiles take samples of 16 bits alone (ProfileError). ``update`` is a change for each
    key, ``replace`` is one for all.
    """

    __slots__ = ("_core", "_kind")

    def __init__(self, core: "_core.Profile", kind: str) -> None:
        super().__init__(lambda: core.curves(kind))
        self._core = core
        self._kind = kind

    def put(self, curve: Curve) -> None:
        """Writes a curve with all its fields in the place of the one with its ink and extend_info, or at the end."""
        self._core.set_curve(self._kind, need(curve, Curve)._tuple())

    def replace(self, curves: Union[Iterable[Curve], Mapping[Any, npt.ArrayLike]]) -> None:
        """Makes these the curves of the set, in this order. Two of one ink and extend_info are a ProfileError."""
        self._core.set_curves(self._kind, curves_of(curves))

    def __setitem__(self, key: Key, samples: npt.ArrayLike) -> None:
        curve = self._find(key)
        if curve is None:
            ink, extend_info = key if isinstance(key, tuple) else (key, 0)
            curve = Curve(ink, (), extend_info)
        curve.samples = samples_of(samples)
        self.put(curve)

    def __delitem__(self, key: Key) -> None:
        curve = self.curve(key)
        self._core.remove_curve(self._kind, curve.ink, curve.extend_info)

    def clear(self) -> None:
        """Leaves the entry without curves, if there is one."""
        if len(self):
            self.replace([])


class Curves(MutableMapping[str, CurveSet]):
    """The curve sets of a profile by kind: ``"linearization"``, ``"ink-limit"`` and so on (``nvxprofile.CURVE_KINDS``).

    It is walked by the kinds that the profile holds. Every kind can be asked for: one that is missing is an empty set,
    and appears with the first curve that is put into it. Assigning a list of curves, or a dictionary of samples by ink,
    makes these the curves of the set; ``del`` removes the entry, and so does ``pop``, whose set is empty from then on.
    """

    __slots__ = ("_core",)

    def __init__(self, core: "_core.Profile") -> None:
        self._core = core

    def __getitem__(self, kind: str) -> CurveSet:
        if kind not in CURVE_KINDS:
            raise KeyError(kind)
        return CurveSet(self._core, kind)

    def __setitem__(self, kind: str, curves: Union[Iterable[Curve], Mapping[Any, npt.ArrayLike]]) -> None:
        self[kind].replace(curves)

    def __delitem__(self, kind: str) -> None:
        if kind not in self:
            raise KeyError(kind)
        self._core.remove_entry(kind)

    def __contains__(self, kind: object) -> bool:
        return kind in CURVE_KINDS and self._core.has(str(kind))

    def __iter__(self) -> Iterator[str]:
        return iter([kind for kind in CURVE_KINDS if self._core.has(kind)])

    def __len__(self) -> int:
        return sum(self._core.has(kind) for kind in CURVE_KINDS)

    def __repr__(self) -> str:
        return "<Curves: " + (", ".join(f"{kind} ({len(self[kind])})" for kind in self) or "none") + ">"
