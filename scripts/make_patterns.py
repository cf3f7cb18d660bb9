#!/usr/bin/python3
"""Writes the hatch pattern files kplan ships, data/patterns/kplaniso.pat (metric: drawings
whose $MEASUREMENT is 1) and data/patterns/kplan.pat (imperial, the same patterns 1/25.4 as
large), in the plain .pat text format, from the pattern tables of ezdxf, an independent
DXF library (Debian's python3-ezdxf).

ezdxf keeps each line family's offset in drawing coordinates; a .pat file gives it along
and across the family's own direction, so it is turned back here.

usage: scripts/make_patterns.py [FOLDER]   (default: data/patterns of the source tree)
"""
import math
import os
import sys

from ezdxf.tools.pattern import ISO_PATTERN, scale_all


def number(value):
    text = f"{round(value, 10):.10f}".rstrip("0").rstrip(".")
    return "0" if text in ("-0", "") else text


def pattern_file(patterns, title):
    out = [f";; {title}",
           ";; Written by scripts/make_patterns.py from the pattern tables of ezdxf.",
           ";; *NAME, description",
           ";; angle, x-origin, y-origin, delta-x, delta-y [, dash-1, dash-2, ...]",
           ""]
    for name in sorted(patterns):
        out.append(f"*{name}, {name}")
        for angle, base, offset, dashes in patterns[name]:
            a = math.radians(angle)
            along = offset[0] * math.cos(a) + offset[1] * math.sin(a)
            across = -offset[0] * math.sin(a) + offset[1] * math.cos(a)
            fields = [angle, base[0], base[1], along, across] + list(dashes)
            out.append(", ".join(number(v) for v in fields))
    return "\n".join(out) + "\n"


def main():
    here = os.path.dirname(os.path.abspath(__file__))
    folder = sys.argv[1] if len(sys.argv) > 1 else os.path.join(here, "..", "data", "patterns")
    files = {
        "kplaniso.pat": (ISO_PATTERN, "Hatch patterns of kplan, metric (drawing units of mm)"),
        "kplan.pat": (scale_all(ISO_PATTERN, factor=1 / 25.4),
                      "Hatch patterns of kplan, imperial (drawing units of inches)"),
    }
    for name, (patterns, title) in files.items():
        with open(os.path.join(folder, name), "w", encoding="ascii", newline="\r\n") as f:
            f.write(pattern_file(patterns, title))


if __name__ == "__main__":
    main()
