"""Prints the ellipses and splines of model space as ezdxf, an independent DXF library,
reads them, with points it computes itself: an ellipse's point at parameter pi/3 and a
spline's point in the middle of its knot range. Exits 1 when ezdxf's audit finds errors.

usage: list_curves.py FILE
"""
import math
import sys

import ezdxf


def fmt(v):
    return "(" + ", ".join(f"{c:.9f}" for c in v) + ")"


def main():
    doc = ezdxf.readfile(sys.argv[1])
    auditor = doc.audit()
    for e in doc.modelspace().query("ELLIPSE SPLINE"):
        if e.dxftype() == "ELLIPSE":
            point = e.construction_tool().vertices([math.pi / 3])
            print(f"ELLIPSE {fmt(e.dxf.center)} {fmt(e.dxf.major_axis)} {e.dxf.ratio:.9f} "
                  f"{e.dxf.start_param:.9f} {e.dxf.end_param:.9f} {fmt(list(point)[0])}")
        else:
            knots = list(e.knots)
            line = (f"SPLINE {e.dxf.degree} {e.dxf.flags} {len(e.control_points)} "
                    f"{len(e.fit_points)} {len(list(e.weights))}")
            if e.control_points:
                middle = (knots[0] + knots[-1]) / 2
                tool = e.construction_tool()
                line += " " + fmt(list(tool.points([middle]))[0])
            print(line)
    for error in auditor.errors:
        print("audit:", error.message)
    return 1 if auditor.has_errors else 0


if __name__ == "__main__":
    sys.exit(main())
