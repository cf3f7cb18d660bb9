"""Prints the handles of model space's entities in the order ezdxf, an independent DXF
library, draws them (its redraw order from the SORTENTSTABLE), one per line; exits 1 when
ezdxf's audit finds errors.

usage: list_draw_order.py FILE
"""
import sys

import ezdxf
from ezdxf import reorder


def main():
    doc = ezdxf.readfile(sys.argv[1])
    auditor = doc.audit()
    msp = doc.modelspace()
    for entity in reorder.ascending(msp, msp.get_redraw_order()):
        print(entity.dxf.handle)
    for error in auditor.errors:
        print("audit:", error.message)
    return 1 if auditor.has_errors else 0


if __name__ == "__main__":
    sys.exit(main())
