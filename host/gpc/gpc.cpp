#include "host/gpc/gpc.h"

#include <polyclipping/clipper.hpp>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <limits>

namespace {

// Finer than 0.1 mm wherever the polygons span less than some 100 km, and always inside
// Clipper's fast integer range.
constexpr double kMaxScale = 1e6;
constexpr double kFastRange = 0x3FFFFFFF * 0.9;

// Integer coordinates relative to a local origin: projected coordinates (x about 500 km,
// y about 3,500 km) would otherwise waste the integer range on the offset.
struct Frame {
    double ox = 0, oy = 0, scale = kMaxScale;

    ClipperLib::cInt toInt(double v, double o) const {
        return static_cast<ClipperLib::cInt>(std::llround((v - o) * scale));
    }
    ClipperLib::IntPoint toPoint(const gpc_vertex& v) const {
        return {toInt(v.x, ox), toInt(v.y, oy)};
    }
    gpc_vertex toVertex(const ClipperLib::IntPoint& p) const {
        return {ox + static_cast<double>(p.X) / scale, oy + static_cast<double>(p.Y) / scale};
    }
};

Frame frameFor(const gpc_polygon* a, const gpc_polygon* b) {
    double minX = std::numeric_limits<double>::infinity(), minY = minX;
    double maxX = -minX, maxY = -minX;
    for (const gpc_polygon* p : {a, b}) {
        if (p == nullptr) continue;
        for (int c = 0; c < p->num_contours; ++c) {
            const gpc_vertex_list& list = p->contour[c];
            for (int i = 0; i < list.num_vertices; ++i) {
                minX = std::min(minX, list.vertex[i].x);
                minY = std::min(minY, list.vertex[i].y);
                maxX = std::max(maxX, list.vertex[i].x);
                maxY = std::max(maxY, list.vertex[i].y);
            }
        }
    }
    Frame frame;
    if (!(minX <= maxX)) return frame;  // nothing to clip
    frame.ox = std::floor(minX);
    frame.oy = std::floor(minY);
    double extent = std::max({maxX - frame.ox, maxY - frame.oy, 1.0});
    frame.scale = std::min(kMaxScale, kFastRange / extent);
    return frame;
}

ClipperLib::Paths toPaths(const gpc_polygon* polygon, const Frame& frame) {
    ClipperLib::Paths paths;
    if (polygon == nullptr) return paths;
    for (int c = 0; c < polygon->num_contours; ++c) {
        const gpc_vertex_list& list = polygon->contour[c];
        if (list.num_vertices < 3) continue;
        ClipperLib::Path path;
        path.reserve(static_cast<std::size_t>(list.num_vertices));
        for (int i = 0; i < list.num_vertices; ++i)
            path.push_back(frame.toPoint(list.vertex[i]));
        paths.push_back(std::move(path));
    }
    return paths;
}

void appendTree(const ClipperLib::PolyNode& node, const Frame& frame, gpc_polygon* result) {
    for (const ClipperLib::PolyNode* child : node.Childs) {
        const ClipperLib::Path& path = child->Contour;
        gpc_vertex_list list{static_cast<int>(path.size()), nullptr};
        list.vertex = static_cast<gpc_vertex*>(std::malloc(path.size() * sizeof(gpc_vertex)));
        for (std::size_t i = 0; i < path.size(); ++i)
            list.vertex[i] = frame.toVertex(path[i]);
        gpc_add_contour(result, &list, child->IsHole() ? 1 : 0);
        std::free(list.vertex);
        appendTree(*child, frame, result);
    }
}

}  // namespace

void gpc_add_contour(gpc_polygon* polygon, gpc_vertex_list* contour, int hole) {
    if (polygon == nullptr || contour == nullptr) return;
    int n = polygon->num_contours;
    auto* holes = static_cast<int*>(std::malloc(sizeof(int) * static_cast<std::size_t>(n + 1)));
    auto* contours = static_cast<gpc_vertex_list*>(
        std::malloc(sizeof(gpc_vertex_list) * static_cast<std::size_t>(n + 1)));
    if (n > 0) {
        std::memcpy(holes, polygon->hole, sizeof(int) * static_cast<std::size_t>(n));
        std::memcpy(contours, polygon->contour,
                    sizeof(gpc_vertex_list) * static_cast<std::size_t>(n));
    }
    std::free(polygon->hole);
    std::free(polygon->contour);
    int count = std::max(contour->num_vertices, 0);
    holes[n] = hole;
    contours[n].num_vertices = count;
    contours[n].vertex = static_cast<gpc_vertex*>(
        std::malloc(sizeof(gpc_vertex) * static_cast<std::size_t>(std::max(count, 1))));
    if (count > 0) {
        std::memcpy(contours[n].vertex, contour->vertex,
                    sizeof(gpc_vertex) * static_cast<std::size_t>(count));
    }
    polygon->hole = holes;
    polygon->contour = contours;
    polygon->num_contours = n + 1;
}

void gpc_polygon_clip(gpc_op set_operation, gpc_polygon* subject_polygon, gpc_polygon* clip_polygon,
                      gpc_polygon* result_polygon) {
    if (result_polygon == nullptr) return;
    result_polygon->num_contours = 0;
    result_polygon->hole = nullptr;
    result_polygon->contour = nullptr;

    Frame frame = frameFor(subject_polygon, clip_polygon);
    ClipperLib::Clipper clipper;
    try {
        clipper.AddPaths(toPaths(subject_polygon, frame), ClipperLib::ptSubject, true);
        clipper.AddPaths(toPaths(clip_polygon, frame), ClipperLib::ptClip, true);
    } catch (const std::exception&) {
        return;
    }
    ClipperLib::ClipType type = ClipperLib::ctIntersection;
    switch (set_operation) {
        case GPC_DIFF:
            type = ClipperLib::ctDifference;
            break;
        case GPC_INT:
            type = ClipperLib::ctIntersection;
            break;
        case GPC_XOR:
            type = ClipperLib::ctXor;
            break;
        case GPC_UNION:
            type = ClipperLib::ctUnion;
            break;
    }
    // Nothing may escape the C interface: a clipper failure is an empty result.
    try {
        ClipperLib::PolyTree tree;
        if (!clipper.Execute(type, tree, ClipperLib::pftEvenOdd, ClipperLib::pftEvenOdd)) return;
        appendTree(tree, frame, result_polygon);
    } catch (const std::exception&) {
        gpc_free_polygon(result_polygon);
    }
}

void gpc_free_polygon(gpc_polygon* polygon) {
    if (polygon == nullptr) return;
    for (int c = 0; c < polygon->num_contours; ++c)
        std::free(polygon->contour[c].vertex);
    std::free(polygon->hole);
    std::free(polygon->contour);
    polygon->hole = nullptr;
    polygon->contour = nullptr;
    polygon->num_contours = 0;
}
