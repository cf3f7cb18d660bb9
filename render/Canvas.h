#pragma once
// Where a picture is drawn: page coordinates (pixels or points, y down), a few
// operations that both the cairo surfaces (PNG, PDF) and the SVG writer carry out, so
// that one painter serves every output format and text stays text where the format can
// keep it.
#include <string>
#include <vector>

#include "render/Colour.h"

namespace render {

struct PagePoint {
    double x = 0, y = 0;
};
using PageRing = std::vector<PagePoint>;

enum class Anchor { Start, Middle, End };

class Canvas {
  public:
    virtual ~Canvas() = default;
    // The rings filled together with the even-odd rule: an island inside an outline is a
    // hole.
    virtual void fill(const std::vector<PageRing>& rings, const Rgb& colour, double alpha = 1) = 0;
    virtual void stroke(const PageRing& points, bool closed, const Rgb& colour, double width) = 0;
    // Closed rings, all in one stroke (many outlines of one colour at once).
    virtual void strokeRings(const std::vector<PageRing>& rings, const Rgb& colour,
                             double width) = 0;
    // Pairs of points, each pair one straight segment.
    virtual void segments(const std::vector<PagePoint>& ends, const Rgb& colour, double width) = 0;
    // Drawing is limited to the rings (even-odd) until unclip.
    virtual void clip(const std::vector<PageRing>& rings) = 0;
    virtual void unclip() = 0;
    // UTF-8 text of the given height (font size), centred vertically on at.y.
    virtual void text(PagePoint at, double size, const std::string& utf8, const Rgb& colour,
                      Anchor anchor, bool bold = false) = 0;
    virtual double textWidth(double size, const std::string& utf8, bool bold = false) = 0;
    // Named groups (the SVG writer keeps them as <g id="...">).
    virtual void beginGroup(const char* /*id*/) {}
    virtual void endGroup() {}
};

}  // namespace render
