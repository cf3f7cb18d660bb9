"""Prints the attribute definitions of every block and the block references of model
space with their attributes, as ezdxf, an independent DXF library, reads them; exits 1
when ezdxf's audit finds errors.

usage: list_attributes.py FILE
"""
import sys

import ezdxf


def main():
    doc = ezdxf.readfile(sys.argv[1])
    auditor = doc.audit()
    for block in doc.blocks:
        for attdef in block.query("ATTDEF"):
            print(f"ATTDEF {block.name} {attdef.dxf.tag} {attdef.dxf.prompt} "
                  f"'{attdef.dxf.text}' {attdef.dxf.flags}")
    for insert in doc.modelspace().query("INSERT"):
        print(f"INSERT {insert.dxf.name} ({insert.dxf.insert.x}, {insert.dxf.insert.y}) "
              f"{float(insert.dxf.xscale)} {float(insert.dxf.yscale)} {float(insert.dxf.zscale)} "
              f"{round(insert.dxf.rotation, 4)}")
        for attrib in insert.attribs:
            print(f"ATTRIB {attrib.dxf.tag} '{attrib.dxf.text}' {attrib.dxf.flags} "
                  f"({attrib.dxf.insert.x}, {attrib.dxf.insert.y})")
    for error in auditor.errors:
        print("audit:", error.message)
    return 1 if auditor.has_errors else 0


if __name__ == "__main__":
    sys.exit(main())
