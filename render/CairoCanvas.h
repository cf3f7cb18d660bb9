#pragma once
// A canvas on a cairo context (PNG image surfaces, PDF pages): text is drawn with the
// font family given, through cairo's own font selection, so PDF keeps it as text.
#include <cairo.h>

#include <string>

#include "render/Canvas.h"

namespace render {

class CairoCanvas : public Canvas {
  public:
    // context stays the caller's.
    CairoCanvas(cairo_t* context, std::string fontFamily);

    void fill(const std::vector<PageRing>& rings, const Rgb& colour, double alpha = 1) override;
    void stroke(const PageRing& points, bool closed, const Rgb& colour, double width) override;
    void strokeRings(const std::vector<PageRing>& rings, const Rgb& colour, double width) override;
    void segments(const std::vector<PagePoint>& ends, const Rgb& colour, double width) override;
    void clip(const std::vector<PageRing>& rings) override;
    void unclip() override;
    void text(PagePoint at, double size, const std::string& utf8, const Rgb& colour, Anchor anchor,
              bool bold = false) override;
    double textWidth(double size, const std::string& utf8, bool bold = false) override;

  private:
    void path(const std::vector<PageRing>& rings);
    void font(double size, bool bold);

    cairo_t* context_;
    std::string family_;
};

}  // namespace render
