"""Checks that every hatch of a DXF file carries the line families of its predefined
pattern, scaled and rotated as ezdxf, an independent DXF library, would make them.

usage: check_patterns.py FILE
"""
import sys

import ezdxf
from ezdxf.tools import pattern


def main():
    doc = ezdxf.readfile(sys.argv[1])
    # The pattern file follows the drawing's measurement: acad.pat, or acadiso.pat when metric.
    made_doc = ezdxf.new("R2010")
    made_doc.header["$MEASUREMENT"] = doc.header.get("$MEASUREMENT", 0)
    reference = made_doc.modelspace()
    problems = []
    for hatch in doc.modelspace().query("HATCH"):
        name = hatch.dxf.pattern_name
        made = reference.add_hatch()
        made.set_pattern_fill(name, scale=hatch.dxf.pattern_scale, angle=hatch.dxf.pattern_angle)
        want = [(round(l.angle, 6), tuple(round(c, 6) for c in l.base_point),
                 tuple(round(c, 6) for c in l.offset), [round(d, 6) for d in l.dash_length_items])
                for l in made.pattern.lines]
        got = [(round(l.angle, 6), tuple(round(c, 6) for c in l.base_point),
                tuple(round(c, 6) for c in l.offset), [round(d, 6) for d in l.dash_length_items])
               for l in hatch.pattern.lines] if hatch.pattern else []
        if want != got:
            problems.append(f"{name}: {got} != {want}")
    for e in doc.audit().errors:
        problems.append(f"audit: {e.message}")
    for p in problems:
        print(p)
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
