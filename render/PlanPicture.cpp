#include "render/PlanPicture.h"

#include <cairo-pdf.h>
#include <cairo.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <random>

#include "host/db/Utf8Path.h"
#include "render/CairoCanvas.h"
#include "render/CjkFont.h"
#include "render/HatchLines.h"
#include "render/SvgCanvas.h"

namespace render {

namespace fs = std::filesystem;

namespace {

const Rgb kBlack{0, 0, 0};
const Rgb kWhite{1, 1, 1};
const Rgb kRed{1, 0, 0};
const Rgb kFrame{0.55, 0.55, 0.55};
const Rgb kScope{0.1, 0.1, 0.1};

// Pattern lines closer than this many pixels would hide the fill under a smear of the
// line colour: the class is then shown by its fill alone.
constexpr double kMinPatternSpacing = 6.0;

PageRing rectRing(double x, double y, double w, double h) {
    return {{x, y}, {x + w, y}, {x + w, y + h}, {x, y + h}};
}

// Distance from p to the nearest edge of the rings.
double roomAround(const AcGePoint2d& p, const std::vector<Ring>& rings) {
    double best = INFINITY;
    for (const Ring& ring : rings) {
        for (std::size_t i = 0; i < ring.size(); ++i) {
            const AcGePoint2d& a = ring[i];
            const AcGePoint2d& b = ring[(i + 1) % ring.size()];
            double dx = b.x - a.x, dy = b.y - a.y, len2 = dx * dx + dy * dy;
            double t = len2 > 0 ? ((p.x - a.x) * dx + (p.y - a.y) * dy) / len2 : 0;
            t = std::clamp(t, 0.0, 1.0);
            best = (std::min)(best, std::hypot(p.x - (a.x + t * dx), p.y - (a.y + t * dy)));
        }
    }
    return best;
}

std::vector<PageRing> pageRings(const std::vector<Ring>& rings, const PictureLayout& layout) {
    std::vector<PageRing> out;
    out.reserve(rings.size());
    for (const Ring& ring : rings) {
        PageRing page;
        page.reserve(ring.size());
        for (const AcGePoint2d& p : ring)
            page.push_back(layout.toPage(p));
        out.push_back(std::move(page));
    }
    return out;
}

// The pattern's dashes over a window of the drawing, as page segments through map.
template <class Map>
std::vector<PagePoint> patternEnds(const ClassStyle& style, double minX, double minY, double maxX,
                                   double maxY, double scale, Map map) {
    std::vector<PagePoint> ends;
    patternSegments(style.lines, minX, minY, maxX, maxY, kMinPatternSpacing / scale, 1.0 / scale,
                    [&](double x0, double y0, double x1, double y1) {
                        ends.push_back(map(x0, y0));
                        ends.push_back(map(x1, y1));
                    });
    return ends;
}

void paintParcels(Canvas& canvas, const PlanScene& scene, const PictureLayout& layout) {
    double hatchWidth = std::clamp(layout.fontSize / 20, 0.6, 1.0);
    double edgeWidth = (std::max)(0.5, layout.fontSize / 20);
    std::vector<std::vector<PageRing>> pages;
    pages.reserve(scene.parcels.size());
    for (const ParcelShape& parcel : scene.parcels) {
        const ClassStyle& style = scene.styles[static_cast<std::size_t>(parcel.style)];
        pages.push_back(pageRings(parcel.rings, layout));
        canvas.fill(pages.back(), style.fill);
        if (style.lines.empty()) continue;
        double minX = INFINITY, minY = INFINITY, maxX = -INFINITY, maxY = -INFINITY;
        for (const AcGePoint2d& p : parcel.rings.front()) {
            minX = (std::min)(minX, p.x);
            minY = (std::min)(minY, p.y);
            maxX = (std::max)(maxX, p.x);
            maxY = (std::max)(maxY, p.y);
        }
        std::vector<PagePoint> ends =
            patternEnds(style, minX, minY, maxX, maxY, layout.scale, [&](double x, double y) {
                return layout.toPage({x, y});
            });
        if (ends.empty()) continue;
        canvas.clip(pages.back());
        canvas.segments(ends, style.hatch, hatchWidth);
        canvas.unclip();
    }
    // Boundaries after all fills, so that a neighbour's fill does not cover half of one;
    // a class's all in one stroke.
    std::vector<std::vector<PageRing>> byClass(scene.styles.size());
    for (std::size_t i = 0; i < scene.parcels.size(); ++i) {
        auto& rings = byClass[static_cast<std::size_t>(scene.parcels[i].style)];
        for (PageRing& ring : pages[i])
            rings.push_back(std::move(ring));
    }
    for (std::size_t c = 0; c < byClass.size(); ++c)
        canvas.strokeRings(byClass[c], scene.styles[c].edge, edgeWidth);
}

// The smallest label worth drawing, in page units.
double smallestLabel(const PictureLayout& layout) {
    return (std::max)(5.0, 0.45 * layout.fontSize);
}

// Whether the parcel's outline leaves room for the smallest label at all (a label of one
// line is at least 0.6 of its size from its middle to its top).
bool roomForLabel(const ParcelShape& parcel, const PictureLayout& layout) {
    double narrow = (std::min)(parcel.maxX - parcel.minX, parcel.maxY - parcel.minY);
    return narrow * layout.scale / 2 >= 0.6 * smallestLabel(layout);
}

void paintLabels(Canvas& canvas, const PlanScene& scene, const PictureOptions& options,
                 const PictureLayout& layout) {
    if (options.labels == LabelMode::None) return;
    double largest = 1.1 * layout.fontSize;
    double smallest = smallestLabel(layout);
    for (const ParcelShape& parcel : scene.parcels) {
        if (!parcel.hasLabelPoint || !roomForLabel(parcel, layout)) continue;
        const std::string& code = scene.styles[static_cast<std::size_t>(parcel.style)].code;
        std::vector<std::string> lines;
        if (options.labels != LabelMode::Class && !parcel.number.empty())
            lines.push_back(parcel.number);
        if (options.labels != LabelMode::Number && !code.empty()) lines.push_back(code);
        if (lines.empty()) continue;
        double room = roomAround(parcel.labelPoint, parcel.rings) * layout.scale;
        if (room < smallest) continue;
        // The text block's half diagonal at size 1 must fit in the room around the point.
        double unitWidth = 0;
        for (const std::string& line : lines)
            unitWidth = (std::max)(unitWidth, canvas.textWidth(largest, line) / largest);
        double halfHeight = 0.6 * static_cast<double>(lines.size());
        double size = (std::min)(largest, room / std::hypot(unitWidth / 2, halfHeight));
        if (size < smallest) continue;
        PagePoint at = layout.toPage(parcel.labelPoint);
        double first = at.y - 0.6 * size * static_cast<double>(lines.size() - 1);
        for (std::size_t i = 0; i < lines.size(); ++i) {
            canvas.text({at.x, first + 1.2 * size * static_cast<double>(i)}, size, lines[i], kBlack,
                        Anchor::Middle);
        }
    }
}

void paintMap(Canvas& canvas, const PlanScene& scene, const PictureOptions& options,
              const PictureLayout& layout) {
    PageRing frame = rectRing(layout.mapLeft, layout.mapTop, layout.mapWidth, layout.mapHeight);
    canvas.clip({frame});
    canvas.beginGroup("parcels");
    paintParcels(canvas, scene, layout);
    canvas.endGroup();
    if (!scene.scope.empty()) {
        // Outside the scope line the plan is context, not proposal: it fades.
        PageRing scope = pageRings({scene.scope}, layout).front();
        canvas.fill({frame, scope}, kWhite, 0.6);
        canvas.stroke(scope, true, kScope, (std::max)(2.0, layout.fontSize / 4));
    }
    canvas.beginGroup("red-lines");
    for (const Polyline2d& line : scene.redLines) {
        canvas.stroke(pageRings({line.points}, layout).front(), line.closed, kRed,
                      (std::max)(1.0, layout.fontSize / 8));
    }
    canvas.endGroup();
    canvas.beginGroup("labels");
    paintLabels(canvas, scene, options, layout);
    canvas.endGroup();
    canvas.unclip();
    canvas.stroke(frame, true, kFrame, 1);
}

void paintNorthArrow(Canvas& canvas, const PictureLayout& layout) {
    double f = layout.fontSize;
    double cx = layout.mapLeft + layout.mapWidth - 2.0 * f, top = layout.mapTop + 2.2 * f;
    double h = 2.6 * f, w = 0.8 * f;
    canvas.beginGroup("north-arrow");
    canvas.text({cx, top - 0.9 * f}, 1.2 * f, "N", kBlack, Anchor::Middle, true);
    PageRing left = {{cx, top}, {cx - w, top + h}, {cx, top + 0.75 * h}};
    PageRing right = {{cx, top}, {cx + w, top + h}, {cx, top + 0.75 * h}};
    canvas.fill({left}, kBlack);
    canvas.fill({right}, kWhite);
    canvas.stroke(right, true, kBlack, (std::max)(1.0, f / 12));
    canvas.endGroup();
}

void paintScaleBar(Canvas& canvas, const PictureLayout& layout) {
    double f = layout.fontSize;
    PagePoint s = layout.scaleBarStart;
    double h = 0.45 * f;
    canvas.beginGroup("scale-bar");
    canvas.fill({rectRing(s.x, s.y - h / 2, layout.scaleBarPixels, h)}, kBlack);
    canvas.text({s.x + layout.scaleBarPixels + 0.6 * f, s.y}, f, layout.scaleBarLabel, kBlack,
                Anchor::Start);
    canvas.endGroup();
}

void paintLegend(Canvas& canvas, const PlanScene& scene, const PictureLayout& layout, double left,
                 double& y) {
    double f = layout.fontSize;
    canvas.beginGroup("legend");
    canvas.text({left, y + 0.6 * f}, 1.2 * f, "图例", kBlack, Anchor::Start, true);
    y += 2.2 * f;
    for (const ClassStyle& style : scene.styles) {
        double sw = 2.2 * f, sh = 1.3 * f;
        PageRing swatch = rectRing(left, y, sw, sh);
        canvas.fill({swatch}, style.fill);
        // The pattern at the map's own scale, as it looks on the map.
        if (!style.lines.empty()) {
            double x0 = left, y0 = y, s = layout.scale;
            std::vector<PagePoint> ends =
                patternEnds(style, 0, 0, sw / s, sh / s, s, [&](double x, double yy) {
                    return PagePoint{x0 + x * s, y0 + sh - yy * s};
                });
            if (!ends.empty()) {
                canvas.clip({swatch});
                canvas.segments(ends, style.hatch, std::clamp(f / 20, 0.6, 1.0));
                canvas.unclip();
            }
        }
        canvas.stroke(swatch, true, style.edge, (std::max)(0.5, f / 16));
        canvas.text({left + sw + 0.6 * f, y + sh / 2}, f, legendText(style), kBlack, Anchor::Start);
        y += kLegendRow * f;
    }
    canvas.endGroup();
}

void paintTable(Canvas& canvas, const BalanceTable& table, const std::vector<double>& columns,
                const PictureLayout& layout, double left, double y) {
    double f = layout.fontSize, size = kTableFont * f, row = kTableRow * size;
    canvas.beginGroup("table");
    canvas.text({left, y + 0.6 * f}, 1.1 * f, table.title, kBlack, Anchor::Start, true);
    y += 2.0 * f;
    double width = 0;
    for (double w : columns)
        width += w;
    auto cells = [&](const std::vector<std::string>& texts, int indent, bool bold) {
        double x = left;
        for (std::size_t c = 0; c < texts.size() && c < columns.size(); ++c) {
            if (c >= 2) {
                canvas.text({x + columns[c] - 0.45 * size, y + row / 2}, size, texts[c], kBlack,
                            Anchor::End, bold);
            } else {
                double in = c == 0 ? indent * size : 0;
                canvas.text({x + in, y + row / 2}, size, texts[c], kBlack, Anchor::Start, bold);
            }
            x += columns[c];
        }
        y += row;
    };
    cells(table.headers, 0, true);
    canvas.segments({{left, y}, {left + width, y}}, kBlack, (std::max)(0.5, f / 16));
    for (const TableRow& r : table.rows)
        cells(r.cells, r.indent, false);
    canvas.segments({{left, y}, {left + width, y}}, kBlack, (std::max)(0.5, f / 16));
    canvas.endGroup();
}

std::string lowerExtension(const std::string& path) {
    std::string ext = db::utf8Name(db::utf8Path(path).extension());
    std::transform(ext.begin(), ext.end(), ext.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return ext;
}

fs::path temporaryBeside(const fs::path& target) {
    std::random_device random;
    char tag[16];
    std::snprintf(tag, sizeof tag, "%08x", static_cast<unsigned>(random()));
    return target.parent_path() /
           db::utf8Path("." + db::utf8Name(target.filename()) + "." + tag + ".tmp");
}

}  // namespace

bool pictureFormatOf(const std::string& path, PictureFormat& format, std::string& error) {
    std::string ext = lowerExtension(path);
    if (ext == ".png") {
        format = PictureFormat::Png;
    } else if (ext == ".svg") {
        format = PictureFormat::Svg;
    } else if (ext == ".pdf") {
        format = PictureFormat::Pdf;
    } else {
        error = path + ": the picture's format comes from its extension: .png, .svg or .pdf";
        return false;
    }
    return true;
}

void paintPicture(Canvas& canvas, const PlanScene& scene, const PictureOptions& options,
                  const PictureLayout& layout) {
    canvas.fill({rectRing(0, 0, layout.width, layout.height)}, kWhite);
    double f = layout.fontSize;
    canvas.text({layout.mapLeft, layout.mapTop - 1.4 * f}, 1.8 * f, scene.title, kBlack,
                Anchor::Start, true);
    paintMap(canvas, scene, options, layout);
    paintNorthArrow(canvas, layout);
    paintScaleBar(canvas, layout);
    double left = layout.mapLeft + layout.mapWidth + (std::max)(10.0, 1.2 * f);
    double y = layout.mapTop;
    paintLegend(canvas, scene, layout, left, y);
    if (options.table != nullptr && !options.table->empty()) {
        PanelSize panel = measurePanel(scene, options, canvas, f);
        paintTable(canvas, *options.table, panel.columns, layout, left, y + 1.5 * f);
    }
}

void findLabelPoints(PlanScene& scene, const PictureOptions& options, const PictureLayout& layout) {
    if (options.labels == LabelMode::None) return;
    for (ParcelShape& parcel : scene.parcels) {
        if (roomForLabel(parcel, layout)) findLabelPoint(parcel);
    }
}

bool writePicture(PlanScene& scene, const PictureOptions& options, const std::string& path,
                  std::string& error, PictureLayout* layoutOut) {
    PictureFormat format;
    if (!pictureFormatOf(path, format, error)) return false;
    std::string family;
    if (!findCjkFont(family, error)) return false;
    fs::path target = db::utf8Path(path);
    fs::path temp = temporaryBeside(target);
    std::string tempName = db::utf8Name(temp);
    bool ok = false;
    PictureLayout layout;
    {
        cairo_surface_t* scratch = cairo_image_surface_create(CAIRO_FORMAT_A8, 1, 1);
        cairo_t* context = cairo_create(scratch);
        CairoCanvas measure(context, family);
        layout = layoutPicture(scene, options, measure);
        findLabelPoints(scene, options, layout);
        cairo_destroy(context);
        cairo_surface_destroy(scratch);
    }
    if (format == PictureFormat::Svg) {
        SvgCanvas canvas(layout.width, layout.height, family);
        paintPicture(canvas, scene, options, layout);
        std::ofstream out(temp, std::ios::binary);
        out << canvas.document();
        out.close();
        ok = static_cast<bool>(out);
    } else {
        cairo_surface_t* surface =
            format == PictureFormat::Png
                ? cairo_image_surface_create(CAIRO_FORMAT_RGB24, static_cast<int>(layout.width),
                                             static_cast<int>(layout.height))
                : cairo_pdf_surface_create(tempName.c_str(), layout.width, layout.height);
        cairo_t* context = cairo_create(surface);
        {
            CairoCanvas canvas(context, family);
            paintPicture(canvas, scene, options, layout);
        }
        ok = cairo_status(context) == CAIRO_STATUS_SUCCESS;
        cairo_destroy(context);
        if (ok && format == PictureFormat::Png)
            ok = cairo_surface_write_to_png(surface, tempName.c_str()) == CAIRO_STATUS_SUCCESS;
        cairo_surface_finish(surface);
        ok = ok && cairo_surface_status(surface) == CAIRO_STATUS_SUCCESS;
        cairo_surface_destroy(surface);
    }
    std::error_code ec;
    if (ok) {
        fs::rename(temp, target, ec);
        ok = !ec;
    }
    if (!ok) {
        fs::remove(temp, ec);
        error = path + ": the picture could not be written";
        return false;
    }
    if (layoutOut != nullptr) *layoutOut = layout;
    return true;
}

}  // namespace render
