"""Arrays for the library out of what callers have."""

from __future__ import annotations

import datetime
from typing import Any, Optional, Type, TypeVar, Union

import numpy as np
import numpy.typing as npt

Samples = Union["npt.NDArray[np.uint8]", "npt.NDArray[np.uint16]"]
BytesLike = Union[bytes, bytearray, memoryview, "npt.NDArray[np.uint8]"]

T = TypeVar("T")

_EPOCH = datetime.datetime(1970, 1, 1, tzinfo=datetime.timezone.utc)


def need(value: object, kind: Type[T]) -> T:
    """The value, or TypeError for one of another kind."""
    if not isinstance(value, kind):
        raise TypeError(f"a {kind.__name__} is needed, not {value!r}")
    return value


def array_of(values: npt.ArrayLike) -> npt.NDArray[Any]:
    """The array; ValueError for one with masked numbers, which would lose their mask."""
    if np.ma.is_masked(values):  # type: ignore[no-untyped-call]
        raise ValueError("some numbers are masked: fill them first")
    return np.asarray(values)


def samples_of(values: npt.ArrayLike) -> Samples:
    """Samples of a curve: arrays of 8 or 16 bits as they are, other whole numbers from 0 to 65535 as 16 bits."""
    array = array_of(values)
    if array.ndim != 1:
        raise ValueError(f"samples are one row of numbers, not an array of {array.ndim} dimensions")
    if array.size == 0 and array.dtype.kind == "f":
        array = array.astype(np.uint16)
    if array.dtype.kind not in "ui":
        raise TypeError(f"samples are whole numbers, not {array.dtype}: round them first")
    if array.dtype == np.uint8:
        return np.ascontiguousarray(array, dtype=np.uint8)
    if array.dtype != np.uint16 and array.size and (array.min() < 0 or array.max() > 0xFFFF):
        raise ValueError("samples are numbers from 0 to 65535")
    return np.ascontiguousarray(array, dtype=np.uint16)


def bytes_of(data: BytesLike) -> npt.NDArray[np.uint8]:
    """The bytes as an array of them; no text, and no numbers that are wider."""
    if isinstance(data, np.ndarray):
        if data.dtype != np.uint8:
            raise TypeError(f"bytes are needed, not {data.dtype}")
        return np.ascontiguousarray(array_of(data)).reshape(-1)
    view = memoryview(data)
    if view.itemsize != 1:
        raise TypeError(f"bytes are needed, not items of {view.itemsize}")
    return np.frombuffer(view if view.contiguous else view.tobytes(), dtype=np.uint8)


def time_of(seconds: Optional[int]) -> Optional[datetime.datetime]:
    """The moment in UTC; None for none and for one outside of the years 1 to 9999."""
    try:
        return None if seconds is None else _EPOCH + datetime.timedelta(seconds=seconds)
    except OverflowError:
        return None


def seconds_of(time: datetime.datetime) -> int:
    """Seconds since 1970, what is less than one cut off. A time without a time zone could mean any: ValueError."""
    if need(time, datetime.datetime).tzinfo is None:
        raise ValueError("a time needs a time zone, such as datetime.timezone.utc")
    return (time - _EPOCH) // datetime.timedelta(seconds=1)
