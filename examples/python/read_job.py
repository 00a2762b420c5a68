#!/usr/bin/env python3
"""Reads all that a print job needs of a profile: read_job.py GLOSSY.icc"""

import argparse
import pathlib
import sys

import nvxprofile


def main() -> None:
    arguments = argparse.ArgumentParser(description=__doc__)
    arguments.add_argument("profile", type=pathlib.Path)
    options = arguments.parse_args()

    try:
        profile = nvxprofile.open(options.profile)
    except nvxprofile.ProfileError as error:
        for finding in error.findings:
            print(f"{finding.severity} at {finding.offset}: {finding.place}: {finding.rule}", file=sys.stderr)
        sys.exit(f"{options.profile}: {error}")

    info = profile.info
    print(f"{info.media_name}: {info.scan_resolution} x {info.feed_resolution} dpi")

    # A calibration of the printer counts more than the linearization that the profile was made with.
    newest = profile.history.newest
    if newest is not None:
        print(f"calibrated: {newest.name}, {newest.time}")
    for ink, _ in profile.curves["linearization"]:
        calibrated = newest.query("linearization", ink) if newest is not None else None
        curve = calibrated if calibrated is not None else profile.linearization(ink)
        limit = profile.multi_ink_limit(ink)
        gray = profile.merged_gray_balance(ink)
        if curve is not None:
            print(f"ink {ink}: {len(curve)} samples from {curve[0]} to {curve[-1]}", end="")
            print("" if limit is None else f", limit {limit[-1]}", end="")
            print("" if gray is None else f", gray to {gray[-1]}")

    table = profile.table
    if table is not None:
        codes = [channel.code for channel in profile.table_outputs]
        print(f"separation: {table.ndim - 1} inputs on {table.shape[0]} points, paper {table[(0,) * (table.ndim - 1)]}")
        print(f"  outputs: inks {codes}")
    for name, values in profile.media.items():
        print(f"{name}: {values.tolist()}")
    if profile.icc is not None:
        print(f"ICC profile: {profile.icc.size} bytes")


if __name__ == "__main__":
    main()
