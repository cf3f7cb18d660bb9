#include "render/SvgCanvas.h"

#include <cmath>
#include <cstdio>

namespace render {

namespace {

std::string number(double value) {
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "%.2f", value);
    std::string text = buffer;
    // Two decimals are a hundredth of a pixel; trailing zeros say nothing.
    while (!text.empty() && text.back() == '0')
        text.pop_back();
    if (!text.empty() && text.back() == '.') text.pop_back();
    if (text == "-0") text = "0";
    return text;
}

std::string colourText(const Rgb& c) {
    char buffer[8];
    auto byte = [](double v) {
        return static_cast<int>(std::lround(std::fmin(1, std::fmax(0, v)) * 255));
    };
    std::snprintf(buffer, sizeof buffer, "#%02x%02x%02x", byte(c.r), byte(c.g), byte(c.b));
    return buffer;
}

void appendPath(std::string& out, const std::vector<PageRing>& rings) {
    for (const PageRing& ring : rings) {
        for (std::size_t i = 0; i < ring.size(); ++i) {
            out += (i == 0 ? "M" : "L");
            out += number(ring[i].x) + " " + number(ring[i].y);
        }
        if (!ring.empty()) out += "Z";
    }
}

}  // namespace

std::string xmlEscaped(const std::string& utf8) {
    std::string out;
    for (char c : utf8) {
        switch (c) {
            case '&':
                out += "&amp;";
                break;
            case '<':
                out += "&lt;";
                break;
            case '>':
                out += "&gt;";
                break;
            case '"':
                out += "&quot;";
                break;
            default:
                out += c;
        }
    }
    return out;
}

SvgCanvas::SvgCanvas(double width, double height, std::string fontFamily)
    : width_(width),
      height_(height),
      family_(std::move(fontFamily)),
      scratch_(cairo_image_surface_create(CAIRO_FORMAT_A8, 1, 1)),
      measure_(cairo_create(scratch_)),
      measurer_(std::make_unique<CairoCanvas>(measure_, family_)) {}

SvgCanvas::~SvgCanvas() {
    measurer_.reset();
    cairo_destroy(measure_);
    cairo_surface_destroy(scratch_);
}

void SvgCanvas::fill(const std::vector<PageRing>& rings, const Rgb& colour, double alpha) {
    body_ += "<path fill-rule=\"evenodd\" fill=\"" + colourText(colour) + "\"";
    if (alpha < 1) body_ += " fill-opacity=\"" + number(alpha) + "\"";
    body_ += " d=\"";
    appendPath(body_, rings);
    body_ += "\"/>\n";
}

void SvgCanvas::stroke(const PageRing& points, bool closed, const Rgb& colour, double width) {
    if (points.empty()) return;
    body_ += "<path fill=\"none\" stroke-linejoin=\"round\" stroke=\"" + colourText(colour) +
             "\" stroke-width=\"" + number(width) + "\" d=\"";
    appendPath(body_, {points});
    if (!closed) body_.pop_back();  // the Z
    body_ += "\"/>\n";
}

void SvgCanvas::strokeRings(const std::vector<PageRing>& rings, const Rgb& colour, double width) {
    if (rings.empty()) return;
    body_ += "<path fill=\"none\" stroke-linejoin=\"round\" stroke=\"" + colourText(colour) +
             "\" stroke-width=\"" + number(width) + "\" d=\"";
    appendPath(body_, rings);
    body_ += "\"/>\n";
}

void SvgCanvas::segments(const std::vector<PagePoint>& ends, const Rgb& colour, double width) {
    if (ends.size() < 2) return;
    body_ += "<path fill=\"none\" stroke=\"" + colourText(colour) + "\" stroke-width=\"" +
             number(width) + "\" d=\"";
    for (std::size_t i = 0; i + 1 < ends.size(); i += 2) {
        body_ += "M" + number(ends[i].x) + " " + number(ends[i].y) + "L" + number(ends[i + 1].x) +
                 " " + number(ends[i + 1].y);
    }
    body_ += "\"/>\n";
}

void SvgCanvas::clip(const std::vector<PageRing>& rings) {
    std::string id = "clip" + std::to_string(clips_++);
    body_ += "<clipPath id=\"" + id + "\"><path clip-rule=\"evenodd\" d=\"";
    appendPath(body_, rings);
    body_ += "\"/></clipPath>\n<g clip-path=\"url(#" + id + ")\">\n";
}

void SvgCanvas::unclip() {
    body_ += "</g>\n";
}

void SvgCanvas::text(PagePoint at, double size, const std::string& utf8, const Rgb& colour,
                     Anchor anchor, bool bold) {
    if (utf8.empty()) return;
    const char* anchors[] = {"start", "middle", "end"};
    body_ += "<text x=\"" + number(at.x) + "\" y=\"" + number(at.y + 0.35 * size) +
             "\" font-size=\"" + number(size) + "\" text-anchor=\"" +
             anchors[static_cast<int>(anchor)] + "\" fill=\"" + colourText(colour) + "\"";
    if (bold) body_ += " font-weight=\"bold\"";
    body_ += ">" + xmlEscaped(utf8) + "</text>\n";
}

double SvgCanvas::textWidth(double size, const std::string& utf8, bool bold) {
    return measurer_->textWidth(size, utf8, bold);
}

void SvgCanvas::beginGroup(const char* id) {
    body_ += std::string("<g id=\"") + id + "\">\n";
}

void SvgCanvas::endGroup() {
    body_ += "</g>\n";
}

std::string SvgCanvas::document() const {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<svg xmlns=\"http://www.w3.org/2000/svg\" "
           "width=\"" +
           number(width_) + "\" height=\"" + number(height_) + "\" viewBox=\"0 0 " +
           number(width_) + " " + number(height_) + "\" font-family=\"" + xmlEscaped(family_) +
           "\">\n" + body_ + "</svg>\n";
}

}  // namespace render
