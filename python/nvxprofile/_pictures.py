"""Profiles as pictures: HTML with inline SVG for notebooks, and matplotlib where it is installed."""

from __future__ import annotations

import importlib
from html import escape
from typing import TYPE_CHECKING, Any, List, Sequence

import numpy as np

from ._curves import Curve

if TYPE_CHECKING:
    from ._profile import Profile

_WIDTH, _HEIGHT, _MARGIN = 220, 160, 8
_MOST_POINTS = 128
_NAMED = {
    "light cyan": "#66c2e0",
    "light magenta": "#e58ab8",
    "cyan": "#0093d0",
    "magenta": "#d6006e",
    "yellow": "#d9b400",
    "black": "#222222",
    "gray": "#888888",
    "red": "#d62728",
    "green": "#2ca02c",
    "blue": "#1f4fd6",
    "orange": "#ff7f0e",
    "violet": "#7b3fb5",
}
_CYCLE = ("#0093d0", "#d6006e", "#d9b400", "#222222", "#2ca02c", "#ff7f0e", "#7b3fb5", "#8c564b")


def _color(curve: Curve, position: int) -> str:
    name = curve.name.lower()
    named = (color for word, color in _NAMED.items() if word in name)
    return next(named, _CYCLE[position % len(_CYCLE)])


def _title(curve: Curve) -> str:
    name = curve.name or f"ink {curve.ink}"
    return f"{name} ({curve.extend_info})" if curve.extend_info else name


def _label(curve: Curve) -> str:
    """The title for matplotlib, which sets formulas between dollars and leaves out what begins with an underscore."""
    return " " * curve.name.startswith("_") + _title(curve).replace("$", r"\$")


def _points(curve: Curve) -> str:
    count = len(curve.samples)
    shown = np.unique(np.linspace(0, count - 1, min(count, _MOST_POINTS)).round().astype(int))
    x = _MARGIN + shown / max(count - 1, 1) * (_WIDTH - 2 * _MARGIN)
    y = _HEIGHT - _MARGIN - curve.samples[shown] / np.iinfo(curve.samples.dtype).max * (_HEIGHT - 2 * _MARGIN)
    return " ".join(f"{a:.1f},{b:.1f}" for a, b in zip(x, y))


def _svg(curves: Sequence[Curve]) -> str:
    inner = f'width="{_WIDTH - 2 * _MARGIN}" height="{_HEIGHT - 2 * _MARGIN}"'
    parts = [
        f'<svg xmlns="http://www.w3.org/2000/svg" width="{_WIDTH}" height="{_HEIGHT}" role="img">',
        f'<rect x="{_MARGIN}" y="{_MARGIN}" {inner} fill="white" stroke="#ccc"/>',
    ]
    for position, curve in enumerate(curves):
        if len(curve.samples):
            line = f'fill="none" stroke="{_color(curve, position)}" stroke-width="1.5" points="{_points(curve)}"'
            parts.append(f"<polyline {line}><title>{escape(_title(curve))}</title></polyline>")
    return "".join(parts) + "</svg>"


def html_of(profile: "Profile") -> str:
    if profile.closed:
        return f"<div>{escape(repr(profile))}</div>"
    info = profile.info
    rows = [
        ("format", profile.format),
        ("medium", info.media_name),
        ("resolution", f"{info.scan_resolution} × {info.feed_resolution} dpi"),
        ("entries", ", ".join(profile.entries)),
        ("calibrations", str(len(profile.history))),
    ]
    table = "".join(f"<tr><th style='text-align:left'>{name}</th><td>{escape(text)}</td></tr>" for name, text in rows)
    figures = "".join(
        f"<figure style='display:inline-block;margin:4px'>{_svg(curves.curves())}"
        f"<figcaption>{escape(kind)}</figcaption></figure>"
        for kind, curves in profile.curves.items()
    )
    return f"<div><strong>{escape(info.file_name) or 'profile'}</strong><table>{table}</table>{figures}</div>"


def plot_of(profile: "Profile", kinds: Sequence[str]) -> Any:
    try:
        pyplot = importlib.import_module("matplotlib.pyplot")
    except ImportError as error:
        raise ImportError("plots need matplotlib: install it, as with `pip install matplotlib`") from error
    shown: List[str] = [kind for kind in kinds if len(profile.curves[kind])]
    columns = min(max(len(shown), 1), 3)
    rows = (max(len(shown), 1) + columns - 1) // columns
    figure, axes = pyplot.subplots(rows, columns, squeeze=False, figsize=(4 * columns, 3 * rows), layout="constrained")
    for place in axes.flat[len(shown) :]:
        place.set_axis_off()
    for place, kind in zip(axes.flat, shown):
        for position, curve in enumerate(profile.curves[kind].curves()):
            level = np.linspace(0, 1, len(curve.samples))
            whole = np.iinfo(curve.samples.dtype).max
            place.plot(level, curve.samples / whole, color=_color(curve, position), label=_label(curve))
        place.set_title(kind)
        place.set_xlim(0, 1)
        place.set_ylim(0, 1)
        place.legend(fontsize="x-small")
    return figure
