"""Writes the drawings of the DXF interoperability tests with ezdxf, an independent
DXF library: every entity and object kplan types, Chinese text in a UTF-8 and in a GBK
file (with \\U+ and \\M+ escapes), and an entity and an object kplan does not know.

usage: make_drawings.py FOLDER
"""
import sys

import ezdxf

GIS = [(1000, "规划地块"), (1002, "{"), (1000, "FS_DKBH"), (1000, "A-01"),
       (1000, "FS_DKXZ"), (1000, "R2"), (1000, "FD_RJL"), (1000, "2.5"), (1002, "}")]


def full_drawing(version, path):
    doc = ezdxf.new(version)
    doc.header["$INSUNITS"] = 6
    for app in ("FAPP_GHDK", "FAPP_XZDK", "KPLAN_TEST"):
        doc.appids.new(app)
    doc.layers.add("地块", color=3)
    doc.layers.add("TRUE_COLOUR").rgb = (10, 120, 230)
    off = doc.layers.add("OFF_LAYER", color=5)
    off.off()
    msp = doc.modelspace()

    parcel = msp.add_lwpolyline([(0, 0, 0, 0, 0), (100.125, 0, 0, 0, 0.5), (100.125, 50, 0, 0, 0),
                                 (0, 50, 0, 0, 0)], format="xyseb", close=True,
                                dxfattribs={"layer": "地块"})
    parcel.set_xdata("FAPP_GHDK", GIS)
    parcel.set_xdata("KPLAN_TEST", [(1000, "text"), (1040, 0.1), (1070, 7), (1071, 70000),
                                    (1010, (1.5, 2.5, 3.5)), (1005, "0")])
    island = msp.add_circle((50, 25), 5, dxfattribs={"layer": "地块", "color": 1})
    island.set_xdata("FAPP_XZDK", [(1000, "现状地块="), (1000, "123.456789012345678")])

    # Extension dictionary with an entity-wide string and a soft link to the island.
    xdict = parcel.new_extension_dict()
    xrec = xdict.add_xrecord("TZ_DKH_DKW")
    xrec.reset([(1, "岛"), (40, 1.0 / 3.0), (70, 12)])
    link = xdict.add_xrecord("DKBJ_LINK_NLK")
    link.reset([(330, island.dxf.handle)])

    # Drawing-wide strings in the named-object dictionary.
    colours = doc.rootdict.add_new_dict("FQMDKCOLOR")
    colours.add_xrecord("R2").reset([(1, "255,200,0"), (90, 3)])

    hatch = msp.add_hatch(color=2, dxfattribs={"layer": "地块"})
    hatch.set_pattern_fill("ANSI31", scale=2.0, angle=30.0)
    outline = hatch.paths.add_polyline_path([(0, 0, 0), (100.125, 0, 0.5), (100.125, 50, 0), (0, 50, 0)],
                                         is_closed=True)
    hatch.associate(outline, [parcel])
    parcel.append_reactor_handle(hatch.dxf.handle)
    edges = hatch.paths.add_edge_path()
    edges.add_line((200, 0), (300, 0))
    edges.add_arc((300, 50), 50, -90, 90)
    edges.add_ellipse((250, 100), (50, 0), 0.5, 0, 180)
    edges.add_spline(control_points=[(200, 100), (190, 60), (210, 30), (200, 0)],
                     knot_values=[0, 0, 0, 0, 1, 1, 1, 1], degree=3)

    solid_hatch = msp.add_hatch(color=4)
    solid_hatch.paths.add_polyline_path([(0, 100), (10, 100), (10, 110)], is_closed=True)

    msp.add_line((0, 0, 0), (1e-7, 123456789.123456789, 0.1))
    msp.add_arc((5, 5), 2.5, 30, 300)
    msp.add_text("地块编号 A-01", dxfattribs={"height": 2.5, "rotation": 30, "layer": "地块"})
    msp.add_mtext("第一行\\P" + "长文本" * 120, dxfattribs={"char_height": 3})
    msp.add_polyline2d([(0, 0), (10, 0), (10, 10)], close=True)
    msp.add_solid([(0, 0), (1, 0), (0, 1)])
    msp.add_ellipse((0, 0), (10, 0), 0.5)
    msp.add_spline([(0, 0), (10, 10), (20, 0), (30, 10)])
    msp.add_point((3, 4))  # an entity kplan keeps as read

    block = doc.blocks.new("标注块")
    block.add_attdef("编号", (0, 0), dxfattribs={"height": 1})
    insert = msp.add_blockref("标注块", (10, 10))
    insert.add_auto_attribs({"编号": "A-01"})

    doc.rootdict.add_dict_var("KPLAN_VAR", "一个值")  # an object kplan keeps as read
    msp.set_redraw_order([(hatch.dxf.handle, "FFFF"), (parcel.dxf.handle, "FFFE")])
    doc.saveas(path)


def gbk_drawing(path):
    doc = ezdxf.new("R2004")
    doc.encoding = "gbk"  # also sets $DWGCODEPAGE to ANSI_936
    doc.appids.new("FAPP_GHDK")
    doc.layers.add("规划地块", color=2)
    msp = doc.modelspace()
    parcel = msp.add_lwpolyline([(0, 0), (10, 0), (10, 10)], close=True,
                                dxfattribs={"layer": "规划地块"})
    # "€" and "😀" have no GBK code: ezdxf writes them as \U+ escapes.
    parcel.set_xdata("FAPP_GHDK", [(1000, "用地性质"), (1000, "商业€😀"), (1000, "MARK")])
    msp.add_text("中文标注 ≈ ü", dxfattribs={"layer": "规划地块"})
    doc.saveas(path, encoding="gbk")
    # A \M+ escape (code page 936, bytes D6 D0 = 中) as older programs write them.
    with open(path, "rb") as f:
        data = f.read()
    data = data.replace(b"MARK", b"\\M+5D6D0\\M+5CEC4")
    with open(path, "wb") as f:
        f.write(data)


def chinese_drawing(path):
    doc = ezdxf.new("R2013")
    doc.appids.new("FAPP_GHDK")
    doc.layers.add("现状用地", color=30)
    msp = doc.modelspace()
    c = msp.add_circle((1, 1), 1, dxfattribs={"layer": "现状用地"})
    c.set_xdata("FAPP_GHDK", [(1000, "现状地块"), (1000, "绿地与广场用地")])
    msp.add_mtext("控制性详细规划\\P地块", dxfattribs={"layer": "现状用地"})
    doc.saveas(path)


if __name__ == "__main__":
    folder = sys.argv[1]
    full_drawing("R2010", folder + "/full_r2010.dxf")
    full_drawing("R2018", folder + "/full_r2018.dxf")
    gbk_drawing(folder + "/gbk_r2004.dxf")
    chinese_drawing(folder + "/chinese_r2013.dxf")
