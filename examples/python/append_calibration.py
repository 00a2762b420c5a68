#!/usr/bin/env python3
"""Adds a calibration that takes back a gain of the dots in the middle tones: append_calibration.py GLOSSY.icc NAME"""

import argparse
import datetime
import pathlib

import numpy as np
import nvxprofile
from nvxprofile import Curve


def main() -> None:
    arguments = argparse.ArgumentParser(description=__doc__)
    arguments.add_argument("profile", type=pathlib.Path)
    arguments.add_argument("name", help="at most 20 characters")
    arguments.add_argument("--gain", type=float, default=0.05, help="how much too dark the middle tones are")
    options = arguments.parse_args()

    with nvxprofile.open(options.profile) as profile:
        curves = []
        for curve in profile.curves["linearization"].curves():
            level = np.linspace(0, 1, len(curve.samples))
            less = 1 - options.gain * 4 * level * (1 - level)
            samples = np.rint(curve.samples * less).astype(curve.samples.dtype)
            curves.append(Curve(curve.ink, samples, curve.extend_info, name=curve.name))
        now = datetime.datetime.now(datetime.timezone.utc)
        calibration = profile.history.append(options.name, now, linearization=curves)
        profile.save(options.profile)
        print(f"{options.profile}: {calibration}, {len(profile.history)} in all")


if __name__ == "__main__":
    main()
