#include "render/CairoCanvas.h"

#include <utility>

namespace render {

CairoCanvas::CairoCanvas(cairo_t* context, std::string fontFamily)
    : context_(context), family_(std::move(fontFamily)) {
    cairo_set_line_join(context_, CAIRO_LINE_JOIN_ROUND);
}

void CairoCanvas::path(const std::vector<PageRing>& rings) {
    cairo_new_path(context_);
    for (const PageRing& ring : rings) {
        if (ring.empty()) continue;
        cairo_move_to(context_, ring[0].x, ring[0].y);
        for (std::size_t i = 1; i < ring.size(); ++i)
            cairo_line_to(context_, ring[i].x, ring[i].y);
        cairo_close_path(context_);
    }
}

void CairoCanvas::fill(const std::vector<PageRing>& rings, const Rgb& colour, double alpha) {
    path(rings);
    cairo_set_fill_rule(context_, CAIRO_FILL_RULE_EVEN_ODD);
    cairo_set_source_rgba(context_, colour.r, colour.g, colour.b, alpha);
    cairo_fill(context_);
}

void CairoCanvas::stroke(const PageRing& points, bool closed, const Rgb& colour, double width) {
    cairo_new_path(context_);
    if (points.empty()) return;
    cairo_move_to(context_, points[0].x, points[0].y);
    for (std::size_t i = 1; i < points.size(); ++i)
        cairo_line_to(context_, points[i].x, points[i].y);
    if (closed) cairo_close_path(context_);
    cairo_set_source_rgb(context_, colour.r, colour.g, colour.b);
    cairo_set_line_width(context_, width);
    cairo_stroke(context_);
}

void CairoCanvas::strokeRings(const std::vector<PageRing>& rings, const Rgb& colour, double width) {
    // The outlines of a map of many parcels are most of the time it takes to draw: they get
    // cairo's faster antialiasing and plain mitred corners (cut off at sharp ones), a few
    // outlines at a time, as cairo sorts the edges of each stroke together.
    cairo_save(context_);
    cairo_set_source_rgb(context_, colour.r, colour.g, colour.b);
    cairo_set_line_width(context_, width);
    cairo_set_antialias(context_, CAIRO_ANTIALIAS_FAST);
    cairo_set_line_join(context_, CAIRO_LINE_JOIN_MITER);
    cairo_set_miter_limit(context_, 2);
    constexpr std::size_t kRingsPerStroke = 8;
    for (std::size_t from = 0; from < rings.size(); from += kRingsPerStroke) {
        cairo_new_path(context_);
        for (std::size_t r = from; r < rings.size() && r < from + kRingsPerStroke; ++r) {
            const PageRing& ring = rings[r];
            if (ring.empty()) continue;
            cairo_move_to(context_, ring[0].x, ring[0].y);
            for (std::size_t i = 1; i < ring.size(); ++i)
                cairo_line_to(context_, ring[i].x, ring[i].y);
            cairo_close_path(context_);
        }
        cairo_stroke(context_);
    }
    cairo_restore(context_);
}

void CairoCanvas::segments(const std::vector<PagePoint>& ends, const Rgb& colour, double width) {
    cairo_new_path(context_);
    for (std::size_t i = 0; i + 1 < ends.size(); i += 2) {
        cairo_move_to(context_, ends[i].x, ends[i].y);
        cairo_line_to(context_, ends[i + 1].x, ends[i + 1].y);
    }
    cairo_set_source_rgb(context_, colour.r, colour.g, colour.b);
    cairo_set_line_width(context_, width);
    cairo_stroke(context_);
}

void CairoCanvas::clip(const std::vector<PageRing>& rings) {
    cairo_save(context_);
    path(rings);
    cairo_set_fill_rule(context_, CAIRO_FILL_RULE_EVEN_ODD);
    cairo_clip(context_);
}

void CairoCanvas::unclip() {
    cairo_restore(context_);
}

void CairoCanvas::font(double size, bool bold) {
    cairo_select_font_face(context_, family_.c_str(), CAIRO_FONT_SLANT_NORMAL,
                           bold ? CAIRO_FONT_WEIGHT_BOLD : CAIRO_FONT_WEIGHT_NORMAL);
    cairo_set_font_size(context_, size);
}

void CairoCanvas::text(PagePoint at, double size, const std::string& utf8, const Rgb& colour,
                       Anchor anchor, bool bold) {
    if (utf8.empty()) return;
    font(size, bold);
    cairo_text_extents_t extents;
    cairo_text_extents(context_, utf8.c_str(), &extents);
    double x = at.x;
    if (anchor == Anchor::Middle) x -= extents.x_advance / 2;
    if (anchor == Anchor::End) x -= extents.x_advance;
    // The em box's middle on at.y: CJK glyphs sit about 0.35 em above the baseline's middle.
    cairo_move_to(context_, x, at.y + 0.35 * size);
    cairo_set_source_rgb(context_, colour.r, colour.g, colour.b);
    cairo_show_text(context_, utf8.c_str());
    cairo_new_path(context_);
}

double CairoCanvas::textWidth(double size, const std::string& utf8, bool bold) {
    font(size, bold);
    cairo_text_extents_t extents;
    cairo_text_extents(context_, utf8.c_str(), &extents);
    return extents.x_advance;
}

}  // namespace render
