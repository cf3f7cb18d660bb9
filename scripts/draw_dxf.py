#!/usr/bin/python3
"""Draws a DXF file's model space as a PNG picture with ezdxf's drawing add-on and
matplotlib (Debian: python3-ezdxf, python3-matplotlib), on white, Chinese text in Noto
Sans CJK when installed. Used for the picture of the symbolized sample plan:

    scripts/draw_dxf.py data/samples/sample-plan-symbolized.dxf \\
        data/samples/sample-plan-symbolized.png

usage: draw_dxf.py IN.dxf OUT.png [WIDTH_PIXELS]
"""
import sys

import logging

import matplotlib

matplotlib.use("Agg")
# A drawing's SHX font names mean nothing to matplotlib; it falls back quietly.
logging.getLogger("matplotlib.font_manager").setLevel(logging.ERROR)
import matplotlib.pyplot as plt  # noqa: E402
from matplotlib import font_manager  # noqa: E402

import ezdxf  # noqa: E402
from ezdxf.addons.drawing import Frontend, RenderContext  # noqa: E402
from ezdxf.addons.drawing.matplotlib import MatplotlibBackend  # noqa: E402
from ezdxf.addons.drawing.properties import LayoutProperties  # noqa: E402


def main():
    if len(sys.argv) not in (3, 4):
        sys.exit(__doc__)
    source, target = sys.argv[1], sys.argv[2]
    width = int(sys.argv[3]) if len(sys.argv) == 4 else 1600
    names = {f.name for f in font_manager.fontManager.ttflist}
    for cjk in ("Noto Sans CJK SC", "Noto Sans CJK JP"):
        if cjk in names:
            plt.rcParams["font.family"] = ["sans-serif"]
            plt.rcParams["font.sans-serif"] = [cjk, "DejaVu Sans"]
            break
    doc = ezdxf.readfile(source)
    msp = doc.modelspace()
    figure = plt.figure()
    axes = figure.add_axes([0, 0, 1, 1])
    context = RenderContext(doc)
    backend = MatplotlibBackend(axes)
    layout = LayoutProperties.from_layout(msp)
    layout.set_colors("#ffffff")
    Frontend(context, backend).draw_layout(msp, finalize=True, layout_properties=layout)
    dpi = 100
    figure.set_size_inches(width / dpi, width / dpi * 0.75)
    figure.savefig(target, dpi=dpi, facecolor="#ffffff")
    return 0


if __name__ == "__main__":
    sys.exit(main())
