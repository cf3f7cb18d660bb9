"""Prints the layers of a drawing and the layer names it remembers (named-object
dictionary KOVA_LAYERNAME, one XRECORD per key), as ezdxf, an independent DXF library,
reads them; exits 1 when ezdxf's audit finds errors.

usage: list_layer_names.py FILE
"""
import sys

import ezdxf


def main():
    doc = ezdxf.readfile(sys.argv[1])
    auditor = doc.audit()
    for layer in doc.layers:
        rgb = layer.rgb
        rgb = "none" if rgb is None else f"{rgb[0]},{rgb[1]},{rgb[2]}"
        print(f"LAYER {layer.dxf.name} {layer.dxf.color} {rgb} {layer.dxf.linetype}")
    names = doc.rootdict.get("KOVA_LAYERNAME")
    if names is not None:
        for key, xrecord in names.items():
            texts = [value for code, value in xrecord.tags if code == 1]
            print(f"NAME {key} {texts[0] if texts else ''}")
    for error in auditor.errors:
        print("audit:", error.message)
    return 1 if auditor.has_errors else 0


if __name__ == "__main__":
    sys.exit(main())
