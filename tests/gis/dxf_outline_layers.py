"""Prints, as ezdxf (an independent DXF library) reads a drawing, the layer of every
closed polyline with its area, and the colour of every layer, as JSON."""
import json
import sys

import ezdxf
from ezdxf.math import area


def main(path):
    doc = ezdxf.readfile(path)
    outlines = [{"layer": e.dxf.layer, "area": abs(area(e.get_points("xy")))}
                for e in doc.modelspace().query("LWPOLYLINE") if e.closed]
    layers = {layer.dxf.name: {"color": layer.dxf.color,
                               "rgb": list(layer.rgb) if layer.rgb else None}
              for layer in doc.layers}
    json.dump({"outlines": outlines, "layers": layers}, sys.stdout, ensure_ascii=False)


main(sys.argv[1])
