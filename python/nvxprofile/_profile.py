"""One profile as an object."""

from __future__ import annotations

import json
import os
from types import TracebackType
from typing import Any, Dict, List, Mapping, NamedTuple, NoReturn, Optional, Sequence, Tuple, Type, Union

import numpy as np
import numpy.typing as npt

from . import _core, _pictures
from ._arrays import BytesLike, Samples, array_of, bytes_of, need
from ._curves import Curve, Curves, curves_of
from ._entries import Entries
from ._errors import ProfileError
from ._history import History
from ._info import Info
from ._settings import (
    LampPattern,
    LampSettings,
    MaskBlock,
    MaskRule,
    Masks,
    Media,
    SpecialColorPattern,
    SpecialColors,
)

PathLike = Union[str, "os.PathLike[str]"]


class Channel(NamedTuple):
    """A channel of the colour separation table."""

    code: int
    """Ink colour code, or that of an input."""
    attribute: int = 0
    name: str = ""
    """At most 127 bytes in the ANSI code page."""


def _channels(channels: Sequence[Union[Channel, int]]) -> List[Channel]:
    return [channel if isinstance(channel, tuple) else Channel(channel) for channel in channels]


def _plain_name(name: str) -> bytes:
    """As files have it, which may be any bytes."""
    if need(name, str) != os.path.basename(name) or name in ("", os.curdir, os.pardir) or "\0" in name:
        raise ValueError(f"{name!r} is no name of a file")
    return os.fsencode(name)


class Profile:
    """A device profile: opened (``nvxprofile.open``), made (``Profile.create``, ``nvxprofile.build``) or out of bytes.

    **Arrays.** What reading gives as arrays are read-only views of the profile's own memory, without a copy. A view
    never changes and never ends: it shows the profile as it was when it was asked for, and keeps that memory alive for
    as long as it lives, also when the profile is changed, closed or gone. Changes make this so: while views are alive
    they work on a copy of the profile, which takes the place of the state that the views show; without views they work
    in place. Many small changes are therefore quicker without views at hand. To hold values without the profile, copy
    them: ``view.copy()``.

    **Changes** are written into memory; ``save`` writes the file. Each happens as a whole, or raises and leaves the
    profile as it was. What ``curves``, ``history``, ``media``, ``info`` and ``entries`` give look into the profile and
    show its present state.

    **Errors.** ``ProfileError`` for what files and profiles are not or cannot hold, with place, rule and findings;
    ``TypeError`` and ``ValueError`` for arguments that mean nothing; ``KeyError`` and ``IndexError`` as in all mappings
    and sequences; ``ValueError`` after ``close``. Queries give None for what is missing.

    **Threads.** Files are read and written, and documents made, with the interpreter free for others. A save writes
    the state that it began with.
    """

    __slots__ = ("_core", "__weakref__")

    def __init__(self, core: _core.Profile) -> None:
        if not isinstance(core, _core.Profile):
            raise TypeError("profiles come from nvxprofile.open and nvxprofile.build, Profile.create and from_bytes")
        self._core = core

    # --- Coming and going ---

    @classmethod
    def open(cls, path: PathLike) -> "Profile":
        """Loads a file of any format. It is read once and not kept open. ProfileError if it does not load."""
        return cls(_core.open(os.fspath(path)))

    @classmethod
    def from_bytes(cls, data: BytesLike, name: str = "profile") -> "Profile":
        """Loads a file that is in memory. A name that ends in ".icc" is taken for that of an ICC profile."""
        return cls(_core.from_bytes(bytes_of(data).tobytes(), os.fsencode(name)))

    @classmethod
    def create(cls, icc: BytesLike) -> "Profile":
        """A new printer profile of the current generation around the bytes of an ICC profile, which are copied."""
        return cls(_core.create(bytes_of(icc).tobytes()))

    def save(self, path: PathLike) -> None:
        """Writes all of the profile in its format: beside the target, and over it at the end.

        Printer profiles keep their time of creation and get the present as that of their update, and in the file their
        ICC profile takes its name as description; plain ICC profiles stay as they are byte for byte. ProfileError, with
        the old file as it was, for what no file can carry, a text-headed profile, and a profile of which the load left
        something out (``is_whole``).
        """
        self._core.save(os.fspath(path))

    def to_bytes(self, name: str = "profile.icc") -> bytes:
        """What ``save`` would write into a file of that name. The profile stays as it is."""
        return self._core.to_bytes(_plain_name(name))

    def copy(self) -> "Profile":
        """A profile of its own that says the same. Also ``copy.copy`` and ``copy.deepcopy``."""
        return type(self)(self._core.clone())

    def close(self) -> None:
        """Lets the profile go; views of it live on. Everything that asks the profile from then on is a ValueError."""
        self._core.close()

    @property
    def closed(self) -> bool:
        """True after ``close``."""
        return self._core.closed

    def __enter__(self) -> "Profile":
        return self

    def __exit__(
        self,
        kind: Optional[Type[BaseException]],
        error: Optional[BaseException],
        trace: Optional[TracebackType],
    ) -> None:
        self.close()

    def __copy__(self) -> "Profile":
        return self.copy()

    def __deepcopy__(self, memo: Any) -> "Profile":
        return self.copy()

    def __reduce_ex__(self, protocol: Any) -> NoReturn:
        raise TypeError("a profile cannot be pickled: send to_bytes() and load them with Profile.from_bytes")

    # --- As a whole ---

    @property
    def format(self) -> str:
        """``"printer-profile"`` (the current generation), ``"container"``, ``"text-1"``, ``"text-2"`` or ``"icc"``."""
        return self._core.format

    @property
    def is_whole(self) -> bool:
        """False if the load left something of the file out. ``save`` refuses to drop it for good."""
        return self._core.is_whole

    def accept_loss(self) -> None:
        """Tells ``save`` that what the profile holds is all that is wanted."""
        self._core.accept_loss()

    @property
    def info(self) -> Info:
        """What the profile says about itself, to be read and written: ``p.info.scan_resolution`` in dots per inch."""
        return Info(self._core)

    @property
    def entries(self) -> Entries:
        """The entries as such, by name."""
        return Entries(self._core)

    def to_dict(self) -> Dict[str, Any]:
        """The profile as a JSON document, as ``nvxprofile dump`` writes it (docs/profile_document.md)."""
        document: Dict[str, Any] = json.loads(self._core.document())
        return document

    # --- Curves ---

    @property
    def curves(self) -> Curves:
        """The curve sets by kind: ``p.curves["linearization"][1]`` is a view, and assigning an array to it writes."""
        return Curves(self._core)

    def ink_limit(self, ink: int) -> Optional[Samples]:
        """What a print job takes as the ink limit of an ink colour code.

        This and the queries below give views of shape (samples,), ``uint8`` or ``uint16``; None where the entry or the
        curve is missing or has no samples. Profiles of the older generations know some inks by other codes, which is
        taken care of.
        """
        return self._core.ink_limit(ink)

    def linearization(self, ink: int) -> Optional[Samples]:
        """The linearization of an ink."""
        return self._core.linearization(ink)

    def gray_balance(self, ink: int) -> Optional[Samples]:
        """The gray balance of an ink: each sample is an index into its linearization."""
        return self._core.gray_balance(ink)

    def merged_gray_balance(self, ink: int) -> Optional[Samples]:
        """The linearization looked up at each gray balance sample; an array of its own, no view."""
        return self._core.merged_gray_balance(ink)

    def light_ink(self, ink: int) -> Optional[Samples]:
        """The part of an ink in the separation into light and full inks."""
        return self._core.light_ink(ink)

    def multi_ink_limit(self, ink: int, extend_info: int = 0) -> Optional[Samples]:
        """The limit of an ink among several; an extend_info of 0 is the ink's first curve."""
        return self._core.multi_ink_limit(ink, extend_info)

    def variable(self, ink: int, extend_info: int = 0) -> Optional[Samples]:
        """The variable dots of an ink; an extend_info of 0 is the ink's first curve."""
        return self._core.variable(ink, extend_info)

    def variable_ink_limit(self, ink: int, extend_info: int = 0) -> Optional[Samples]:
        """The ink limit of variable dots; an extend_info of 0 is the curve of 5."""
        return self._core.variable_ink_limit(ink, extend_info)

    def under_color_removal(self) -> Optional[Samples]:
        """The under colour removal."""
        return self._core.under_color_removal()

    def black_generation(self) -> Optional[Samples]:
        """The black generation."""
        return self._core.black_generation()

    @property
    def history(self) -> History:
        """The calibrations from the oldest entry to the newest: ``p.history[-1].curves["linearization"][1]``."""
        return History(self._core)

    # --- Separation table and ICC profiles ---

    @property
    def table(self) -> Optional[npt.NDArray[np.uint8]]:
        """The colour separation table, a view of shape grid x ... x grid x outputs with an axis of grid points for each
        input: ``p.table[c, m, y, k]`` are the inks of a node, 0 to 255. The first axis is the slowest of the file's
        order; which input that is, is a matter between the maker of the table and its user. None without one.

        Assigning an array keeps the channels of the table that is there, whose numbers must fit (ValueError);
        ``set_table`` gives channels too.
        """
        table = self._core.table()
        return None if table is None else table[2]

    @table.setter
    def table(self, samples: npt.ArrayLike) -> None:
        former = self._core.table()
        if former is None:
            raise ValueError("there is no table whose channels could stay: use set_table")
        self.set_table(samples, *(list(map(Channel._make, channels)) for channels in former[:2]))

    @property
    def table_inputs(self) -> Tuple[Channel, ...]:
        """The input channels of the table, in the order of its axes; empty without one."""
        table = self._core.table()
        return () if table is None else tuple(map(Channel._make, table[0]))

    @property
    def table_outputs(self) -> Tuple[Channel, ...]:
        """The channels along the last axis of the table; empty without one."""
        table = self._core.table()
        return () if table is None else tuple(map(Channel._make, table[1]))

    def set_table(
        self,
        samples: npt.ArrayLike,
        inputs: Sequence[Union[Channel, int]],
        outputs: Sequence[Union[Channel, int]],
    ) -> None:
        """Makes this the separation table: ``uint8`` of shape grid x ... x grid x outputs, an axis for each input.
        Channels are ``Channel``s or codes. ValueError for a shape that does not fit them, TypeError for other numbers.
        """
        array = array_of(samples)
        if array.dtype != np.uint8:
            raise TypeError(f"a table has samples of 8 bits, not {array.dtype}")
        grid = array.shape[0] if array.ndim > 1 else 0
        if array.shape != (grid,) * len(inputs) + (len(outputs),) or array.size == 0 or grid == 0:
            raise ValueError(
                f"shape {array.shape} is not one axis of equal length for each of {len(inputs)} inputs, and one of "
                f"{len(outputs)} outputs"
            )
        self._core.set_table(_channels(inputs), _channels(outputs), grid, np.ascontiguousarray(array))

    @property
    def icc(self) -> Optional[npt.NDArray[np.uint8]]:
        """The bytes of the ICC profile, a view; None without one. Assigning bytes replaces it."""
        return self._core.icc()

    @icc.setter
    def icc(self, data: BytesLike) -> None:
        self._core.set_entry_bytes("icc", bytes_of(data))

    @property
    def replacement_icc(self) -> Optional[npt.NDArray[np.uint8]]:
        """The bytes of the replacement ICC profile alone, a view; None without one. Assigning bytes replaces it."""
        return self._core.replacement_icc()

    @replacement_icc.setter
    def replacement_icc(self, data: BytesLike) -> None:
        self._core.set_entry_bytes("replacement-icc", bytes_of(data))

    # --- Settings ---

    @property
    def media(self) -> Media:
        """The device settings of the medium: ``p.media["heater"]``."""
        return Media(self._core)

    @property
    def mask_blocks(self) -> Sequence[MaskBlock]:
        """The mask blocks of fixed shape; empty without. Assigning a list replaces them. A printer profile has either
        these or ``masks``."""
        return tuple(MaskBlock(*fields) for fields in self._core.mask_blocks())

    @mask_blocks.setter
    def mask_blocks(self, blocks: Sequence[MaskBlock]) -> None:
        blocks = [need(block, MaskBlock) for block in blocks]
        self._core.set_mask_blocks([(block.type, list(block.values), block.data) for block in blocks])

    @property
    def masks(self) -> Optional[Masks]:
        """The print masks with patterns; None without. Assigning replaces them."""
        fields = self._core.masks()
        return None if fields is None else Masks._of(fields)

    @masks.setter
    def masks(self, masks: Masks) -> None:
        rules = [need(rule, MaskRule) for rule in need(masks, Masks).rules]
        self._core.set_masks(
            [(rule._condition(), rule.parameters, list(rule.patterns)) for rule in rules], list(masks.patterns.items())
        )

    def packed_mask(
        self, pass_count: int, special_colorset: int = 0, print_method: int = 0, layer_colors: Sequence[int] = ()
    ) -> Optional[bytes]:
        """Parameters and patterns of a condition as the printer takes them; None if no rule has it."""
        return self._core.packed_mask(MaskRule(pass_count, special_colorset, print_method, layer_colors)._condition())

    @property
    def supports_mask_version(self) -> bool:
        """False for mask blocks of a version from 4.1 on, and without any."""
        return self._core.supports_mask_version

    def lamp(self, *conditions: int) -> Optional[LampSettings]:
        """The settings of the UV lamp under four conditions; None where no pattern fits."""
        if len(conditions) != 4:
            raise TypeError(f"a lamp goes by 4 conditions, not {len(conditions)}")
        fields = self._core.lamp(conditions)
        return None if fields is None else LampSettings._of(fields)

    @property
    def lamp_patterns(self) -> Sequence[LampPattern]:
        """The patterns of the lamp, of which the first that fits wins; empty for a fixed table, which answers under all
        conditions. Assigning a list replaces all tables of the lamp."""
        return tuple(
            LampPattern((first, second, third, fourth), LampSettings._of(settings))
            for (first, second, third, fourth), settings in self._core.lamp_patterns()
        )

    @lamp_patterns.setter
    def lamp_patterns(self, patterns: Sequence[LampPattern]) -> None:
        patterns = [need(pattern, LampPattern) for pattern in patterns]
        self._core.set_lamp_patterns(
            [(pattern.conditions, need(pattern.settings, LampSettings)._tuple()) for pattern in patterns]
        )

    def set_fixed_lamp(self, settings: LampSettings) -> None:
        """Replaces all tables of the lamp by the fixed one: two splits of 131 values (ProfileError)."""
        self._core.set_fixed_lamp(need(settings, LampSettings)._tuple())

    @property
    def special_colors(self) -> Optional[SpecialColors]:
        """The table of special colours; None without. Assigning replaces it."""
        fields = self._core.special_colors()
        return None if fields is None else SpecialColors._of(fields)

    @special_colors.setter
    def special_colors(self, table: SpecialColors) -> None:
        patterns = [need(pattern, SpecialColorPattern)._tuple() for pattern in need(table, SpecialColors).patterns]
        sets = [curves_of(curves) for curves in table.curve_sets]
        self._core.set_special_colors(table.profile_color_type, patterns, sets)

    def recommended_density(self, condition1: int, condition2: int, ink: int) -> Optional[int]:
        """The recommended density of an ink under two conditions; None where nothing is."""
        return self._core.recommended_density((condition1, condition2), ink)

    def recommended_level(self, condition1: int, condition2: int, colors: Sequence[int]) -> Optional[int]:
        """The recommended level for colours in any order, from 0; None where nothing is."""
        return self._core.recommended_level((condition1, condition2), list(colors))

    def variable_dot_curve(self, condition1: int, condition2: int, ink: int, extend_info: int) -> Optional[Samples]:
        """The variable dot curve of an ink under two conditions, a view; None where there is none."""
        return self._core.variable_dot_curve((condition1, condition2), ink, extend_info)

    # --- To be looked at ---

    def __repr__(self) -> str:
        if self.closed:
            return "<nvxprofile.Profile, closed>"
        info = self.info.to_dict()
        parts = [self.format]
        if info["media_name"]:
            parts.append(f"medium {info['media_name']!r}")
        if info["scan_resolution"]:
            parts.append(f"{info['scan_resolution']} x {info['feed_resolution']} dpi")
        parts.append("entries " + (", ".join(self.entries) or "none"))
        if len(self.history):
            parts.append(f"calibrations {len(self.history)}")
        return f"<nvxprofile.Profile {info['file_name']!r}: {'; '.join(parts)}>"

    def _repr_html_(self) -> str:
        return _pictures.html_of(self)

    def plot(self, kinds: Optional[Sequence[str]] = None) -> Any:
        """The curves of these kinds, or of all, as a ``matplotlib.figure.Figure`` with one plot for each kind.

        ImportError where matplotlib is not installed, KeyError for a kind that there is not.
        """
        return _pictures.plot_of(self, list(self.curves) if kinds is None else kinds)


def open(path: PathLike) -> Profile:
    """Loads a profile of any format from a file: ``with nvxprofile.open("glossy.icc") as p: ...``"""
    return Profile.open(path)


def build(document: Mapping[str, Any], folder: PathLike = ".", name: Optional[str] = None) -> Profile:
    """Makes the profile of a JSON document, as ``nvxprofile build`` does (docs/profile_document.md).

    Files that the document names are looked up from ``folder`` and read; ``name`` is that of the file that it would be,
    by default one that suits the format. For a wrong document ProfileError, whose ``place`` is a JSON pointer; for what
    JSON cannot say TypeError or ValueError.
    """
    text = json.dumps(document, allow_nan=False, ensure_ascii=False).encode()
    return Profile(_core.build(text, os.fspath(folder) or ".", b"" if name is None else _plain_name(name)))
