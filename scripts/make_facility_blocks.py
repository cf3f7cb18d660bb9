#!/usr/bin/python3
"""Builds the facility block drawings of a standard from its facility ini files.

Usage: make_facility_blocks.py [standard directory]   (default: data/standards/通用国标)

For 配套公建/ and 道路配套设施/ it reads the parameter file (公共配套设施参数.ini,
道路配套设施参数.ini), whose MENU names the facility kinds, and each kind's ini file,
whose MENU names its facilities and whose per-facility sections give 代码, 简称 and 图块名.
It writes the drawing named by the kinds' BLKFILE into the same folder: one attribute block
per facility (symbol, abbreviation, and the attributes the facility record carries), and a
legend of all blocks in model space. Run it again after editing a MENU.

Needs ezdxf (Debian's python3-ezdxf, installed by scripts/setup.sh).
"""

import configparser
import os
import sys

import ezdxf
from ezdxf import const
from ezdxf.enums import TextEntityAlignment

STYLE = "GB"  # the Chinese drafting fonts every AutoCAD installation ships

# (tag, prompt, visible); the tags are the field keys of the facility record, so a planner's
# attribute values can be carried into the record and back
ATTRIBS = [
    ("FS_SSMC", "设施名称", True),
    ("FS_PTGJDM", "设施代码", False),
    ("FS_SSGM", "设施规模", False),
    ("FS_SZDKBH", "所在地块编号", False),
    ("FS_SSQK", "设施状况", False),
]


def read_ini(path):
    ini = configparser.ConfigParser(interpolation=None, comment_prefixes=(";",), strict=False)
    ini.optionxform = str  # keys are case-sensitive field names
    with open(path, encoding="utf-8-sig") as f:
        ini.read_file(f)
    return ini


def split_menu(text):
    return [s.strip() for s in text.split(";") if s.strip()]


def add_block(doc, name, code, abbr, square, state):
    blk = doc.blocks.new(name=name)
    if square:
        blk.add_lwpolyline([(-2, -2), (2, -2), (2, 2), (-2, 2)], close=True)
    else:
        blk.add_circle((0, 0), 2.0)
    # longer abbreviations get a narrower width so they stay inside the symbol
    width = min(1.0, 2.4 / max(1, len(abbr)))
    blk.add_text(abbr, height=1.2, dxfattribs={"style": STYLE, "width": width}).set_placement(
        (0, 0), align=TextEntityAlignment.MIDDLE_CENTER
    )
    defaults = {"FS_SSMC": name, "FS_PTGJDM": code, "FS_SSQK": state}
    y = -3.2
    for tag, prompt, visible in ATTRIBS:
        attdef = blk.add_attdef(
            tag,
            insert=(0, y),
            text=defaults.get(tag, ""),
            height=1.0 if visible else 0.8,
            dxfattribs={"prompt": prompt, "style": STYLE},
        )
        attdef.set_placement((0, y), align=TextEntityAlignment.TOP_CENTER)
        if not visible:
            attdef.dxf.flags = const.ATTRIB_INVISIBLE
        y -= 1.4


def build(folder, param_file, square):
    param = read_ini(os.path.join(folder, param_file))
    kinds = split_menu(param[os.path.splitext(param_file)[0]]["MENU"])
    out, doc, msp, row = None, None, None, 0
    for kind in kinds:
        ini = read_ini(os.path.join(folder, kind + ".ini"))
        head = ini[kind]
        if out is None:
            out = head["BLKFILE"]
            doc = ezdxf.new("R2010", setup=["linetypes"])
            doc.styles.new(STYLE, dxfattribs={"font": "gbenor.shx", "bigfont": "gbcbig.shx"})
            msp = doc.modelspace()
        elif head["BLKFILE"] != out:
            sys.exit(f"{kind}.ini: every kind of {folder} must name the same BLKFILE")
        msp.add_text(kind, height=2.5, dxfattribs={"style": STYLE}).set_placement((-12, -row * 16))
        for col, name in enumerate(split_menu(head["MENU"])):
            sec = ini[name]
            block = sec["图块名"]
            add_block(doc, block, sec["代码"], sec["简称"], square, "规划")
            ref = msp.add_blockref(block, (col * 16, -row * 16))
            ref.add_auto_attribs({"FS_SSMC": name, "FS_PTGJDM": sec["代码"], "FS_SSQK": "规划"})
        row += 1
    path = os.path.join(folder, out)
    doc.saveas(path)
    print(f"{path}: {len(kinds)} kinds")


def main():
    here = os.path.dirname(os.path.abspath(__file__))
    root = sys.argv[1] if len(sys.argv) > 1 else os.path.join(here, "..", "data", "standards", "通用国标")
    build(os.path.join(root, "配套公建"), "公共配套设施参数.ini", square=False)
    build(os.path.join(root, "道路配套设施"), "道路配套设施参数.ini", square=True)


if __name__ == "__main__":
    main()
