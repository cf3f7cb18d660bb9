"""Prints what GDAL reads from a GIS file as JSON: layers, fields (with GeoPackage
column titles), CRS and every feature's fields and geometry measures."""
import json
import sqlite3
import sys

from osgeo import ogr

ogr.UseExceptions()


def titles(path):
    if not path.endswith(".gpkg"):
        return {}
    with sqlite3.connect(path) as db:
        tables = {r[0] for r in db.execute("SELECT name FROM sqlite_master")}
        if "gpkg_data_columns" not in tables:
            return {}
        return {(t, c): title for t, c, title in
                db.execute("SELECT table_name, column_name, title FROM gpkg_data_columns")}


def index_check(path, layer):
    """SQLite's own verdict on a GeoPackage layer's R-tree, None without one."""
    if not path.endswith(".gpkg"):
        return None
    name = "rtree_%s_%s" % (layer.GetName(), layer.GetGeometryColumn())
    with sqlite3.connect(path) as db:
        if not db.execute("SELECT 1 FROM sqlite_master WHERE name = ?", (name,)).fetchone():
            return None
        return db.execute("SELECT rtreecheck(?)", (name,)).fetchone()[0]


def geometry(g):
    if g is None:
        return {"type": None}
    out = {"type": g.GetGeometryName(), "valid": int(g.IsValid())}
    if g.GetGeometryName() == "POLYGON":
        out["rings"] = g.GetGeometryCount()
        out["area"] = g.Area()
        out["outer_area"] = ogr.ForceToPolygon(g.GetGeometryRef(0).Clone()).Area() \
            if g.GetGeometryCount() else 0
        out["perimeter"] = g.GetGeometryRef(0).Length()
        out["points"] = g.GetGeometryRef(0).GetPointCount()
    elif g.GetGeometryName() == "CURVEPOLYGON":
        out["rings"] = g.GetGeometryCount()
        out["area"] = g.Area()
    else:
        out["length"] = g.Length()
    return out


def main(path):
    ds = ogr.Open(path)
    names = titles(path)
    layers = []
    for layer in ds:
        d = layer.GetLayerDefn()
        fields = [{"name": d.GetFieldDefn(i).GetName(),
                   "type": d.GetFieldDefn(i).GetTypeName(),
                   "title": names.get((layer.GetName(), d.GetFieldDefn(i).GetName()))}
                  for i in range(d.GetFieldCount())]
        srs = layer.GetSpatialRef()
        features = []
        for f in layer:
            features.append({"fields": {x["name"]: f.GetField(x["name"]) for x in fields},
                             "geometry": geometry(f.GetGeometryRef())})
        layers.append({"name": layer.GetName(), "count": layer.GetFeatureCount(),
                       "epsg": srs.GetAuthorityCode(None) if srs else None,
                       "fast_spatial_filter": int(layer.TestCapability(ogr.OLCFastSpatialFilter)),
                       "rtreecheck": index_check(path, layer),
                       "fields": fields, "features": features})
    json.dump({"layers": layers}, sys.stdout, ensure_ascii=False)


main(sys.argv[1])
