"""Reads two DXF files with ezdxf, an independent DXF library, and reports where they
differ in what kplan must keep: layers, xdata, dictionaries, extension dictionaries and
the soft links in them, text, hatch loops and patterns, draw order. It also audits the
second file. Exit code 0 when they agree and the audit finds no errors.

usage: compare_drawings.py ORIGINAL WRITTEN
       compare_drawings.py --audit WRITTEN
"""
import re
import sys

import ezdxf

ESCAPE = re.compile(r"\\U\+000([0-9A-Fa-f]{5})|\\U\+([0-9A-Fa-f]{4})|\\M\+5([0-9A-Fa-f]{4})")


def unescape(text):
    """Both files must read the same once the escapes of older files are expanded."""
    def one(m):
        if m.group(1):
            return chr(int(m.group(1), 16))
        if m.group(2):
            return chr(int(m.group(2), 16))
        return bytes.fromhex(m.group(3)).decode("gbk")
    return ESCAPE.sub(one, text)


def normalized(value):
    if isinstance(value, str):
        return unescape(value)
    if isinstance(value, dict):
        return {normalized(k): normalized(v) for k, v in value.items()}
    if isinstance(value, (list, tuple)):
        return type(value)(normalized(v) for v in value)
    return value


def xrecord_tags(xrecord):
    return [(t.code, t.value) for t in xrecord.tags]


def dictionary(doc, d, depth=0):
    out = {}
    for key, value in d.items():
        if isinstance(value, str):
            value = doc.entitydb.get(value)
        if value is None:
            out[key] = None
        elif value.dxftype() == "DICTIONARY" and depth < 8:
            out[key] = dictionary(doc, value, depth + 1)
        elif value.dxftype() == "XRECORD":
            out[key] = xrecord_tags(value)
        else:
            out[key] = value.dxftype()
    return out


def hatch_summary(h):
    paths = []
    for p in h.paths:
        if hasattr(p, "vertices"):
            paths.append(("polyline", p.path_type_flags, p.is_closed,
                          [tuple(round(c, 9) for c in v) for v in p.vertices],
                          list(p.source_boundary_objects)))
        else:
            paths.append(("edges", p.path_type_flags,
                          [(e.type.name,) for e in p.edges], list(p.source_boundary_objects)))
    pattern = None
    if h.pattern:
        pattern = [(round(l.angle, 9), tuple(round(c, 9) for c in l.base_point),
                    tuple(round(c, 9) for c in l.offset), [round(d, 9) for d in l.dash_length_items])
                   for l in h.pattern.lines]
    return (h.dxf.pattern_name, h.dxf.solid_fill, h.dxf.associative, paths, pattern)


def summary(path):
    doc = ezdxf.readfile(path)
    s = {}
    s["layers"] = {l.dxf.name: (l.color, l.rgb, l.is_off()) for l in doc.layers}
    s["apps"] = sorted(a.dxf.name.upper() for a in doc.appids)
    ents = {}
    for e in doc.entitydb.values():
        if not e.is_alive or e.dxf.owner is None:
            pass
        info = {"type": e.dxftype()}
        if e.xdata:
            info["xdata"] = {app: [(t.code, t.value) for t in tags] for app, tags in e.xdata.data.items()}
        if e.has_extension_dict:
            info["xdict"] = dictionary(doc, e.get_extension_dict().dictionary)
        if e.dxftype() in ("TEXT", "ATTRIB", "ATTDEF"):
            info["text"] = e.dxf.text
        if e.dxftype() == "MTEXT":
            info["text"] = e.text
        if e.dxftype() == "HATCH":
            info["hatch"] = hatch_summary(e)
        if e.dxftype() == "LWPOLYLINE":
            info["points"] = [tuple(p) for p in e.get_points()]
        if e.dxftype() == "INSERT":
            info["attribs"] = [(a.dxf.tag, a.dxf.text) for a in e.attribs]
        if hasattr(e, "dxf") and e.dxf.hasattr("layer"):
            info["layer"] = e.dxf.layer
        ents[e.dxf.handle] = info
    s["entities"] = ents
    s["rootdict"] = dictionary(doc, doc.rootdict)
    s["draworder"] = list(doc.modelspace().get_redraw_order())
    s["header"] = {k: doc.header.get(k) for k in ("$INSUNITS", "$DWGCODEPAGE")}
    return doc, normalized(s)


def diff(a, b, where, out):
    if isinstance(a, dict) and isinstance(b, dict):
        for k in sorted(set(a) | set(b), key=str):
            if k not in a:
                out.append(f"{where}/{k}: only in the written file: {b[k]!r}"[:3000])
            elif k not in b:
                out.append(f"{where}/{k}: missing from the written file: {a[k]!r}"[:3000])
            else:
                diff(a[k], b[k], f"{where}/{k}", out)
    elif a != b:
        out.append(f"{where}: {a!r} != {b!r}"[:3000])


def loaded_only(s, seed):
    """Objects ezdxf makes itself on loading (a missing SEQEND, a default style) take
    handles from $HANDSEED, which differs between the files: only the file's own count."""
    s["entities"] = {h: e for h, e in s["entities"].items() if int(h, 16) < seed}
    return s


def main():
    if sys.argv[1] == "--audit":
        doc = ezdxf.readfile(sys.argv[2])
        problems = [f"audit: {e.message}" for e in doc.audit().errors]
        for p in problems:
            print(p)
        return 1 if problems else 0
    first, original = summary(sys.argv[1])
    doc, written = summary(sys.argv[2])
    seed = int(first.header.get("$HANDSEED", "0"), 16)
    original, written = loaded_only(original, seed), loaded_only(written, seed)
    problems = []
    diff(original, written, "", problems)
    auditor = doc.audit()
    for e in auditor.errors:
        problems.append(f"audit: {e.message}")
    for p in problems:
        print(p)
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
