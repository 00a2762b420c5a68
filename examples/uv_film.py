#!/usr/bin/env python3
"""Writes uv_film.json: a profile of six inks for a UV printer that has something in every part, with plausible curves."""
import base64
import json
import math
import pathlib

INKS = [(1, "Cyan"), (2, "Magenta"), (3, "Yellow"), (4, "Black"), (5, "Light cyan"), (6, "Light magenta")]
GAMMA = {1: 0.72, 2: 0.80, 3: 0.90, 4: 0.66, 5: 0.95, 6: 1.02}
LIMIT = {1: 0.88, 2: 0.84, 3: 0.80, 4: 0.75, 5: 0.92, 6: 0.92}
WHOLE = 65535


def samples(count, curve, whole=WHOLE):
    return [round(whole * min(max(curve(i / (count - 1)), 0), 1)) for i in range(count)]


def curves(count, curve, whole=WHOLE, inks=INKS, **attributes):
    return [
        {"inkID": ink, "inkName": name, **attributes, "samples": samples(count, lambda x: curve(ink, x), whole)}
        for ink, name in inks
    ]


def smoothstep(low, high, x):
    t = min(max((x - low) / (high - low), 0), 1)
    return t * t * (3 - 2 * t)


def linearized(ink, x, drift=0.0):
    """A dot gain curve; with drift the printer lays down more or less ink in the middle tones."""
    return x ** (1 / GAMMA[ink] if ink > 4 else GAMMA[ink]) + drift * math.sin(math.pi * x) * x


def balanced(ink, x):
    """Where in the linearization the inks together are gray."""
    pull = {1: 0.0, 2: -0.05, 3: -0.07, 4: 0.02, 5: 0.01, 6: -0.04}[ink]
    return x + pull * math.sin(math.pi * x)


def dot(extend, x):
    """Small dots make room for middle ones, and these for large ones."""
    small, middle = smoothstep(0.0, 0.3, x) * (1 - smoothstep(0.3, 0.6, x)), smoothstep(0.25, 0.6, x) * (
        1 - smoothstep(0.65, 0.95, x)
    )
    return {3: small * 0.9, 4: middle * 0.8, 5: smoothstep(0.55, 1.0, x)}[extend]


def light(ink, x):
    start = 0.35 if ink in (1, 5) else 0.45
    if ink < 5:
        return smoothstep(start, 1.0, x)
    return 0.75 * (smoothstep(0.0, start + 0.2, x) - smoothstep(start + 0.2, 1.0, x))


def separation():
    """CMYK to six inks on 9 points: black takes over in the shadows, light inks in the highlights."""
    grid = 9
    nodes = bytearray()
    for c, m, y, k in (
        (a, b, d, e) for a in range(grid) for b in range(grid) for d in range(grid) for e in range(grid)
    ):
        cmy = [v / (grid - 1) for v in (c, m, y)]
        gray = min(cmy)
        taken = 0.75 * gray * smoothstep(0.3, 1.0, gray)
        black = min(1.0, k / (grid - 1) + 0.85 * gray * smoothstep(0.35, 1.0, gray))
        left = [(v - taken) * (1 - 0.6 * black) for v in cmy]
        lights = [light(5, v) * (1 - black) for v in left[:2]]
        deep = [left[0] * smoothstep(0.15, 0.9, left[0]), left[1] * smoothstep(0.15, 0.9, left[1]), left[2]]
        nodes += bytes(round(255 * min(max(v, 0), 1)) for v in (*deep, black, *lights))
    inputs = [(1, "Cyan"), (2, "Magenta"), (3, "Yellow"), (4, "Black")]
    channel = lambda code, name: {"channelCode": code, "channelAttribute": 0, "channelName": name}
    return {
        "gridCount": grid,
        "inputChannels": [channel(*c) for c in inputs],
        "outputChannels": [channel(*c) for c in INKS],
        "samples": base64.b64encode(nodes).decode(),
    }


def calibrations():
    """A printer that slowly lays down more ink, and was serviced after the fifth calibration."""
    start, month = 1736164800, 30 * 86400
    children = [{"type": "calibration-target", "payload": {"createTime": start}}]
    drifts = [0.0, 0.018, 0.031, 0.052, 0.078, 0.006, 0.015, 0.024]
    names = ["First", "February", "March", "April", "May", "After service", "July", "August"]
    for code, (drift, name) in enumerate(zip(drifts, names)):
        share = {1: 1.0, 2: 0.6, 3: 0.35, 4: 0.8, 5: 1.2, 6: 0.9}
        moved = lambda ink, x: linearized(ink, x, drift * share[ink])
        children.append(
            {
                "type": "calibration",
                "optionInfo": code,
                "containerData": {"value": 1, "time": start + code * month + code % 3 * 86400, "name": name},
                "payload": {
                    "entries": [
                        {"type": "calibration-linearization", "payload": {"curves": curves(65, moved)}},
                        {
                            "type": "calibration-ink-limit",
                            "payload": {
                                "curves": curves(17, lambda ink, x: min(x, LIMIT[ink] - drift / 2), extendInfo=12)
                            },
                        },
                    ]
                },
            }
        )
    return {"nextID": len(names), "entries": children}


def lamp():
    patterns = [((1, -1, -1, 1200), (5, 4)), ((2, -1, 3, 1250), (4, 4)), ((-1, -1, -1, -1), (3,))]
    head, store = [0, 0], []
    for conditions, splits in patterns:
        block = [100 + 10 * i for i in range(sum(splits) + 2)]
        head += [0, 0, *conditions, 0, 0, 0, 0, len(block) - 2, len(splits), *splits, *[0] * (2 - len(splits))]
        store += block
    head[0] = 4 * len(head)
    return {"entries": [{"usedType": 2, "patternCount": len(patterns), "parameters": [head, store]}]}


def mask_pattern(number, of):
    """The points of one pass out of a dispersed order of 64 by 64."""

    def order(x, y):
        value = 0
        for bit in range(6):
            value = value << 2 | (((x >> bit & 1) ^ (y >> bit & 1)) << 1 | (y >> bit & 1))
        return value

    bits = [of * order(x, y) // 4096 == number for y in range(64) for x in range(64)]
    return base64.b64encode(
        bytes(sum(bit << (7 - i) for i, bit in enumerate(bits[at : at + 8])) for at in range(0, 4096, 8))
    ).decode()


def masks():
    header = {"versionMajor": 2, "versionMinor": 0, "reserved": [0, 0]}
    conditions = [(4, 0, 100, [], [1, 2, 3, 4]), (8, 2, 200, [5, 9], [1, 3, 5]), (8, 2, 300, [5, 7, 9], [2, 4, 5])]
    records = [
        {
            "pass": p,
            "specialColorsetCode": s,
            "printMethod": m,
            "layerColors": colors,
            "usePatternIDs": ids,
            "paramData": base64.b64encode(bytes(range(16 + p))).decode(),
        }
        for p, s, m, colors, ids in conditions
    ]
    patterns = [{"maskPatternID": i + 1, "maskPattern": mask_pattern(i, 4)} for i in range(4)]
    patterns.append({"maskPatternID": 5, "maskPattern": mask_pattern(0, 2)})
    return {"weftHeader": header, "maskParameters": records, "maskPatterns": patterns}


def special():
    sets = [
        {
            "usedType": 4,
            "curves": [
                {
                    "inkID": ink,
                    "inkName": name,
                    "extendInfo": extend,
                    "samples": samples(33, lambda x: dot(extend, x) * full),
                }
                for extend in (3, 4, 5)
            ],
        }
        for ink, name, full in ((20, "White", 1.0), (21, "Clear", 0.7))
    ]
    set_bytes = sum(32 + len(s["curves"]) * (4 + 132 + 66) for s in sets)
    patterns = [((200, -1), (20, 0), (3, 100, 1)), ((300, -1), (20, 21), (2, 80, 2)), ((-1, -1), (-1, 0), (1, 60, 0))]
    head, store = [0, 0, len(sets), set_bytes], []
    for conditions, colors, recommendation in patterns:
        head += [0, 0, *conditions, 2, *colors]
        store += [0, 0, *recommendation]
    head[0] = 4 * len(head)
    return {
        "profileColorType": 1,
        "entries": [{"usedType": 1, "patternCount": len(patterns), "parameters": [head, store], "curvesVD": sets}],
    }


def entry(kind, payload, label=""):
    return {"type": kind, **({"label": label} if label else {}), "payload": payload}


DOCUMENT = {
    "nvxprofile": 1,
    "format": "printer-profile",
    "record": {
        "ScanResolution": 1200,
        "FeedResolution": 1200,
        "DotType": 2,
        "ColorsetCode": 4,
        "InkTypeCode": 7,
        "InkMakerCode": 1,
        "InkVersion": 2,
        "LayoutNumber": 3,
        "CreateTimeValue": 1736164800,
        "Binary": {
            "ModelNumber": 2160,
            "ModelSubNumber": 3,
            "InternalNumber": 1,
            "MediaNumber": 312,
            "DefaultMediaName": "Glossy adhesive vinyl",
            "CreateModule": "example v2.0",
            "MakerText": "Example",
            "StoredRevisionCode": "0003",
            "MediaInfo": [
                {"Language": 9, "Name": "Glossy adhesive vinyl"},
                {"Language": 7, "Name": "Selbstklebefolie, glänzend weiß"},
                {"Language": 17, "Name": "光沢塩ビフィルム(粘着)"},
            ],
        },
    },
    "entries": [
        {"type": "icc", "label": "CMYK frame", "file": "/usr/share/color/icc/ghostscript/default_cmyk.icc"},
        entry("linearization", {"curves": curves(256, linearized)}, "linearization"),
        entry("gray-balance", {"curves": curves(256, balanced, whole=255)}, "gray balance"),
        entry(
            "multi-ink-limit",
            {
                "curves": curves(33, lambda ink, x: min(x, LIMIT[ink]), extendInfo=12)
                + curves(33, lambda ink, x: x, extendInfo=14)
            },
            "ink limits",
        ),
        entry("light-ink", {"curves": curves(65, light, inks=[INKS[i] for i in (0, 4, 1, 5)])}, "light inks"),
        entry(
            "variable",
            {
                "curves": [
                    c
                    for extend in (3, 4, 5)
                    for c in curves(65, lambda ink, x: dot(extend, x) * (1 - 0.04 * ink), extendInfo=extend)
                ]
            },
            "variable dots",
        ),
        entry("chroma", separation(), "separation"),
        entry(
            "media-property",
            {
                "mediaProperties": [
                    {"usedType": kind, "parameterMax": len(values), "parameters": values}
                    for kind, values in (
                        (1, [12]),
                        (2, [38, 42, 40, 35]),
                        (3, [2]),
                        (4, [180]),
                        (5, [1]),
                        (6, [4, 8, 14]),
                        (9, [2]),
                        (10, [30]),
                        (11, [1]),
                    )
                ]
            },
        ),
        entry("calibration-history", calibrations()),
        entry("large-parameter", lamp()),
        entry("mask-patterns", masks()),
        entry("special-color", special()),
    ],
}


def write(document, indent=0):
    """JSON with a line for each object of the outer levels and whole arrays of numbers on one."""
    pad = " " * indent
    if isinstance(document, dict) and any(isinstance(v, (dict, list)) for v in document.values()):
        return (
            "{\n"
            + ",\n".join(f"{pad} {json.dumps(k)}: {write(v, indent + 1)}" for k, v in document.items())
            + f"\n{pad}}}"
        )
    if isinstance(document, list) and any(isinstance(v, (dict, list)) for v in document):
        return "[\n" + ",\n".join(f"{pad} {write(v, indent + 1)}" for v in document) + f"\n{pad}]"
    return json.dumps(document, ensure_ascii=False)


if __name__ == "__main__":
    pathlib.Path(__file__).with_suffix(".json").write_text(write(DOCUMENT) + "\n", encoding="utf-8")
