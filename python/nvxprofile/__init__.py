"""Device profiles of a wide-format inkjet printing chain: open, look at, change, make and save them.

    import nvxprofile

    with nvxprofile.open("glossy.icc") as p:
        curve = p.linearization(1)                    # a read-only NumPy view, or None
        p.curves["linearization"][1] = curve // 2     # writes into the profile
        p.save("lighter.icc")

docs/python.md is the guide; ``help(nvxprofile.Profile)`` tells of views, changes and errors.
"""

from ._arrays import Samples
from ._core import KINDS as ENTRY_KINDS
from ._core import VERSION as __version__
from ._curves import CURVE_KINDS, Curve, CurveMap, Curves, CurveSet
from ._entries import Entries, Entry
from ._errors import Finding, ProfileError
from ._history import CALIBRATION_KINDS, Calibration, CalibrationCurves, History
from ._info import Info, MediaName
from ._profile import Channel, Profile, build, open
from ._settings import (
    ANY,
    MEDIA_SETTINGS,
    LampPattern,
    LampSettings,
    MaskBlock,
    MaskRule,
    Masks,
    Media,
    SpecialColorPattern,
    SpecialColors,
)

__all__ = [
    "ANY",
    "CALIBRATION_KINDS",
    "CURVE_KINDS",
    "Calibration",
    "CalibrationCurves",
    "Channel",
    "Curve",
    "CurveMap",
    "CurveSet",
    "Curves",
    "ENTRY_KINDS",
    "Entries",
    "Entry",
    "Finding",
    "History",
    "Info",
    "LampPattern",
    "LampSettings",
    "MEDIA_SETTINGS",
    "MaskBlock",
    "MaskRule",
    "Masks",
    "Media",
    "MediaName",
    "Profile",
    "ProfileError",
    "Samples",
    "SpecialColorPattern",
    "SpecialColors",
    "__version__",
    "build",
    "open",
]
