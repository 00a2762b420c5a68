"""What a profile says about itself."""

from __future__ import annotations

import datetime
from typing import TYPE_CHECKING, Any, Dict, Generic, NamedTuple, Optional, Tuple, Type, TypeVar, Union, overload

from ._arrays import seconds_of, time_of

if TYPE_CHECKING:
    from . import _core

T = TypeVar("T")


class MediaName(NamedTuple):
    """The name of the medium in one language."""

    language: int
    """Primary language number: 9 English, 17 Japanese."""
    text: str
    """At most 64 UTF-16 units."""


def _from_core(name: str, value: Any) -> Any:
    if name in ("created", "updated"):
        return time_of(value)
    if name == "media_names":
        return tuple(MediaName(*pair) for pair in value)
    return value


def _to_core(name: str, value: Any) -> Any:
    return seconds_of(value) if name == "created" and value is not None else value


class _Fact(Generic[T]):
    """A field that follows from others, or from a save."""

    def __set_name__(self, owner: type, name: str) -> None:
        self._name = name

    @overload
    def __get__(self, info: None, owner: Type["Info"]) -> "_Fact[T]": ...

    @overload
    def __get__(self, info: "Info", owner: Type["Info"]) -> T: ...

    def __get__(self, info: Optional["Info"], owner: Type["Info"]) -> Union["_Fact[T]", T]:
        if info is None:
            return self
        value: T = _from_core(self._name, info._core.info()[self._name])
        return value


class _Field(_Fact[T]):
    """A field that printer profiles take."""

    def __set__(self, info: "Info", value: T) -> None:
        info.update(**{self._name: value})


class Info:
    """What a profile says about itself: ``p.info.maker`` reads, ``p.info.maker = "..."`` writes into the profile.

    Printer profiles alone are written to (ProfileError), by a text that its field holds whole (ProfileError) and a
    number that its field can have (TypeError). ``update`` changes several fields at once, or none if one is refused.
    The codes of model and medium are read with all their digits, zeros in front. ``created`` has whole seconds: what is
    less is cut off. None is no time, and makes a save take the present.
    """

    __slots__ = ("_core",)

    file_name = _Fact[str]()
    major_version = _Fact[int]()
    minor_version = _Fact[int]()
    updated = _Fact[Optional[datetime.datetime]]()
    media_name = _Fact[str]()
    rendering_scan = _Fact[int]()
    rendering_feed = _Fact[int]()
    expand = _Fact[int]()
    printer_comment = _Fact[str]()
    output_fourth_value = _Fact[int]()

    created = _Field[Optional[datetime.datetime]]()
    model_code = _Field[str]()
    model_sub_code = _Field[str]()
    internal_code = _Field[str]()
    media_code = _Field[str]()
    default_media_name = _Field[str]()
    media_names = _Field[Tuple[MediaName, ...]]()
    revision = _Field[str]()
    create_module = _Field[str]()
    maker = _Field[str]()
    scan_resolution = _Field[int]()
    feed_resolution = _Field[int]()
    colorset_code = _Field[int]()
    ink_type_code = _Field[int]()
    ink_maker_code = _Field[int]()
    ink_version = _Field[int]()
    dot_type = _Field[int]()
    halftone_code = _Field[int]()
    separate_way_code = _Field[int]()
    output_third_value = _Field[int]()
    database_key = _Field[Tuple[int, int, int, int, int]]()

    def __init__(self, core: "_core.Profile") -> None:
        self._core = core

    def update(self, **fields: Any) -> None:
        """Changes these fields, all or none. Of an unknown name, and of a field that is worked out: AttributeError."""
        for name in fields:
            if not isinstance(vars(Info).get(name), _Field):
                raise AttributeError(f"{name!r} is no field that can be written")
        self._core.set_info({name: _to_core(name, value) for name, value in fields.items()})

    def to_dict(self) -> Dict[str, Any]:
        """All fields by name."""
        return {name: _from_core(name, value) for name, value in self._core.info().items()}

    def __repr__(self) -> str:
        lines = (f"  {name}={value!r}" for name, value in self.to_dict().items())
        return "<Info\n" + "\n".join(lines) + ">"
