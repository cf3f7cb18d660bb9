"""Checks the labels kplan label wrote, independently of kplan: every text on the labels
layer lies inside the parcel outline whose record holds that number or class, two texts
per parcel that has both. Prints "ok <texts> <parcels>" or the first fault.

usage: check_labels.py OUT.dxf LAYER
"""
import sys

import ezdxf
from ezdxf import path
from ezdxf.math import Vec2, is_point_in_polygon_2d

doc = ezdxf.readfile(sys.argv[1])
layer = sys.argv[2]
msp = doc.modelspace()

parcels = []  # (polygon, number, class)
for e in msp.query("LWPOLYLINE"):
    fields = {}
    for app in ("FAPP_GHDK", "FAPP_XZDK", "地块属性", "地块边界"):
        if not e.has_xdata(app):
            continue
        strings = [v for code, v in e.get_xdata(app) if code == 1000]
        # A GIS record starts with its type label; an oldest list does not.
        pairs = strings if app == "地块边界" else strings[1:]
        fields.update(dict(zip(pairs[0::2], pairs[1::2])))
    for old, key in (("地块编号", "FS_DKBH"), ("地块类别", "FS_DKXZ")):
        fields.setdefault(key, fields.get(old, ""))
    if not fields or not e.closed:
        continue
    polygon = [Vec2(p) for p in path.make_path(e).flattening(0.001)]
    parcels.append((polygon, fields.get("FS_DKBH", "").strip(), fields.get("FS_DKXZ", "").strip()))

texts = list(msp.query(f'TEXT[layer=="{layer}"]'))
labelled = set()
for t in texts:
    at = Vec2(t.dxf.align_point)
    if t.dxf.halign != 1 or t.dxf.valign != 2 or t.dxf.height <= 0:
        sys.exit(f"{t.dxf.text}: not centred or without height")
    homes = [i for i, (poly, number, cls) in enumerate(parcels)
             if t.dxf.text in (number, cls) and is_point_in_polygon_2d(at, poly) == 1]
    if not homes:
        sys.exit(f"{t.dxf.text} at {at}: inside no parcel of that number or class")
    labelled.update(homes)
print("ok", len(texts), len(labelled))
