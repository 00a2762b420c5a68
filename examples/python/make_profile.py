#!/usr/bin/env python3
"""Makes a profile of four inks out of an ICC profile and nothing else: make_profile.py FRAME.icc GLOSSY.icc"""

import argparse
import pathlib

import numpy as np
import nvxprofile
from nvxprofile import Channel, Curve

INKS = {1: "Cyan", 2: "Magenta", 3: "Yellow", 4: "Black"}
GAMMA = {1: 0.72, 2: 0.80, 3: 0.90, 4: 0.66}
POINTS = 33
WHOLE = 65535


def main() -> None:
    arguments = argparse.ArgumentParser(description=__doc__)
    arguments.add_argument("frame", type=pathlib.Path, help="the ICC profile around it")
    arguments.add_argument("target", type=pathlib.Path)
    options = arguments.parse_args()

    profile = nvxprofile.Profile.create(options.frame.read_bytes())
    profile.info.update(
        model_code="1234",
        media_code="55",
        default_media_name="Glossy film",
        media_names=[(9, "Glossy film"), (17, "光沢フィルム")],
        create_module="make_profile.py",
        maker="Example",
        scan_resolution=720,
        feed_resolution=1080,
    )

    # How much ink each level lays down, and where in these curves the inks together are gray.
    level = np.linspace(0, 1, POINTS)
    profile.curves["linearization"] = [
        Curve(ink, np.rint(WHOLE * level ** GAMMA[ink]).astype(np.uint16), name=name) for ink, name in INKS.items()
    ]
    profile.curves["gray-balance"] = [Curve(ink, np.arange(POINTS), name=name) for ink, name in INKS.items()]
    profile.curves["multi-ink-limit"] = [Curve(ink, [WHOLE * 9 // 10], name=name) for ink, name in INKS.items()]

    # From CMYK to the four inks: black takes the place of what the three others share.
    grid = np.linspace(0, 255, 9)
    cyan, magenta, yellow, black = np.meshgrid(grid, grid, grid, grid, indexing="ij")
    shared = np.minimum(np.minimum(cyan, magenta), yellow) / 2
    inks = np.stack([cyan - shared, magenta - shared, yellow - shared, np.minimum(black + shared, 255)], axis=-1)
    channels = [Channel(ink, name=name) for ink, name in INKS.items()]
    profile.set_table(np.rint(inks).astype(np.uint8), inputs=channels, outputs=channels)

    profile.media.update({"heater": np.array([45, 50, 40]), "feed-speed": np.array([120])})
    profile.save(options.target)
    print(profile)


if __name__ == "__main__":
    main()
