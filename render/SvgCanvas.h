#pragma once
// A canvas that writes SVG: paths, clip paths and <text> elements, so that the names in
// a picture can be searched and copied. Text is measured with cairo in the same font.
#include <cairo.h>

#include <memory>
#include <string>

#include "render/CairoCanvas.h"

namespace render {

class SvgCanvas : public Canvas {
  public:
    SvgCanvas(double width, double height, std::string fontFamily);
    ~SvgCanvas() override;
    SvgCanvas(const SvgCanvas&) = delete;
    SvgCanvas& operator=(const SvgCanvas&) = delete;

    void fill(const std::vector<PageRing>& rings, const Rgb& colour, double alpha = 1) override;
    void stroke(const PageRing& points, bool closed, const Rgb& colour, double width) override;
    void strokeRings(const std::vector<PageRing>& rings, const Rgb& colour, double width) override;
    void segments(const std::vector<PagePoint>& ends, const Rgb& colour, double width) override;
    void clip(const std::vector<PageRing>& rings) override;
    void unclip() override;
    void text(PagePoint at, double size, const std::string& utf8, const Rgb& colour, Anchor anchor,
              bool bold = false) override;
    double textWidth(double size, const std::string& utf8, bool bold = false) override;
    void beginGroup(const char* id) override;
    void endGroup() override;

    // The document so far, closed.
    std::string document() const;

  private:
    std::string body_;
    double width_, height_;
    std::string family_;
    int clips_ = 0;
    cairo_surface_t* scratch_;
    cairo_t* measure_;
    std::unique_ptr<CairoCanvas> measurer_;
};

// Text with &, <, > and " written as entities.
std::string xmlEscaped(const std::string& utf8);

}  // namespace render
