"""Reads a drawing kplan symbolize wrote, independently of kplan, and prints one line per
parcel, sorted by number:

    NUMBER CLASS LAYER FILL

FILL is "assoc PATTERN LAYER LOOPS" for one associative hatch whose first or external
loop is the parcel and whose handle the parcel's reactors hold, "recorded PATTERN LAYER"
for a hatch that is not tied to the parcel but whose FAPP_DKTC record names its number and
class, "none", or "bad ..." for anything else (two fills, a missing reactor). Then
"order ok" when every hatch is drawn before every parcel outline (SORTENTSTABLE), else
"order N" with the number of hatches drawn after one, and "audit N" with ezdxf's error count.

usage: check_symbolized.py OUT.dxf
"""
import sys

import ezdxf
from ezdxf import reorder

KINDS = {
    "FAPP_GHDK": "planned",
    "地块属性": "planned",
    "地块边界": "planned",
    "FAPP_XZDK": "current",
    "FAPP_GHDK_DX": "underground",
}


def fields_of(entity):
    fields = {}
    for app in KINDS:
        if not entity.has_xdata(app):
            continue
        strings = [v for code, v in entity.get_xdata(app) if code == 1000]
        # A GIS record starts with its type label; an oldest list does not.
        pairs = strings if app == "地块边界" else strings[1:]
        fields.update(dict(zip(pairs[0::2], pairs[1::2])))
    for old, key in (("地块编号", "FS_DKBH"), ("地块类别", "FS_DKXZ")):
        fields.setdefault(key, fields.get(old, ""))
    return fields


def reactors_of(entity):
    return set(entity.reactors.get()) if entity.reactors is not None else set()


def main():
    doc = ezdxf.readfile(sys.argv[1])
    auditor = doc.audit()
    msp = doc.modelspace()
    hatches = list(msp.query("HATCH"))
    parcels = []
    for e in msp.query("LWPOLYLINE CIRCLE"):
        if any(e.has_xdata(app) for app in KINDS):
            parcels.append(e)
    lines = []
    for p in parcels:
        f = fields_of(p)
        number = (f.get("FS_DXKJBH") or f.get("FS_DKBH", "")).strip()
        cls = (f.get("FS_DXKJXZ") or f.get("FS_DKXZ", "")).strip()
        tied = []
        for h in hatches:
            # The parcel a fill is for is its first or an external loop; the other loops
            # are islands, parcels of their own with fills of their own.
            sources = set()
            for i, path in enumerate(h.paths):
                if i == 0 or path.path_type_flags & 1:
                    sources.update(getattr(path, "source_boundary_objects", []) or [])
            if p.dxf.handle in sources:
                tied.append(h)
        recorded = []
        for h in hatches:
            if h in tied or not h.has_xdata("FAPP_DKTC"):
                continue
            strings = [v for code, v in h.get_xdata("FAPP_DKTC") if code == 1000]
            record = dict(zip(strings[0::2], strings[1::2]))
            if record.get("地块编号") == number and record.get("地块类别") == cls:
                recorded.append(h)
        if len(tied) == 1 and not recorded:
            h = tied[0]
            if not h.dxf.associative:
                fill = "bad not associative"
            elif h.dxf.handle not in reactors_of(p):
                fill = "bad no reactor"
            else:
                fill = f"assoc {h.dxf.pattern_name} {h.dxf.layer} {len(h.paths)}"
        elif len(recorded) == 1 and not tied:
            h = recorded[0]
            fill = f"recorded {h.dxf.pattern_name} {h.dxf.layer}"
        elif not tied and not recorded:
            fill = "none"
        else:
            fill = f"bad {len(tied)} tied {len(recorded)} recorded"
        lines.append(f"{number or '-'} {cls or '-'} {p.dxf.layer} {fill}")
    for line in sorted(lines):
        print(line)
    order = list(reorder.ascending(msp, msp.get_redraw_order()))
    position = {e.dxf.handle: i for i, e in enumerate(order)}
    first_outline = min((position[p.dxf.handle] for p in parcels), default=len(order))
    late = sum(1 for h in hatches if position[h.dxf.handle] > first_outline)
    print("order ok" if late == 0 else f"order {late}")
    print(f"audit {len(auditor.errors)}")
    for error in auditor.errors:
        print("  ", error.message)
    return 0


if __name__ == "__main__":
    sys.exit(main())
