"""Entries as such."""

from __future__ import annotations

from typing import TYPE_CHECKING, Iterator, List, MutableMapping, NamedTuple, Tuple

import numpy as np
import numpy.typing as npt

from ._arrays import BytesLike, bytes_of

if TYPE_CHECKING:
    from . import _core


class Entry(NamedTuple):
    """An entry as it stands in the profile."""

    kind: int
    """The number of its type."""
    name: str
    """Such as "ink-limit"."""
    routes: Tuple[int, ...]
    data: npt.NDArray[np.uint8]
    """Its bytes, a read-only view."""
    complete: bool
    option_info: int
    label: str
    is_understood: bool
    """The parsed form says all that the bytes say, but for reserved ones and those behind the form, which no reader
    looks at; true for kinds that have none."""

    def _values(self) -> Tuple[object, ...]:
        return (*self[:3], self.data.tobytes(), *self[4:])

    def __eq__(self, other: object) -> bool:
        if not isinstance(other, Entry):
            return NotImplemented
        return self._values() == other._values()

    def __ne__(self, other: object) -> bool:
        return not self == other

    def __hash__(self) -> int:
        return hash(self._values())


class Entries(MutableMapping[str, Entry]):
    """The entries of a profile by name (``nvxprofile.ENTRY_KINDS``), in the order of their arrival.

    ``entries["linearization"].data`` is a view of the bytes. ``entries["linearization"] = data`` replaces them by a
    whole form of the kind (ProfileError), or adds the entry; ``del`` removes it. Bytes behind the form say nothing, and
    may go with the next change, save or load.
    """

    __slots__ = ("_core",)

    def __init__(self, core: "_core.Profile") -> None:
        self._core = core

    def _all(self) -> List[Entry]:
        return [Entry(*fields) for fields in self._core.entries()]

    def __getitem__(self, name: str) -> Entry:
        for entry in self._all():
            if entry.name == name:
                return entry
        raise KeyError(name)

    def __setitem__(self, name: str, data: BytesLike) -> None:  # type: ignore[override]
        self._core.set_entry_bytes(name, bytes_of(data))

    def __delitem__(self, name: str) -> None:
        if not self._core.remove_entry(name):
            raise KeyError(name)

    def __iter__(self) -> Iterator[str]:
        return iter([entry.name for entry in self._all()])

    def __len__(self) -> int:
        return len(self._core.entries())

    def __repr__(self) -> str:
        return "<Entries: " + (", ".join(self) or "none") + ">"
