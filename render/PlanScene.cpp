#include "render/PlanScene.h"

#include <algorithm>
#include <map>

#include "geometry/LabelPoint.h"
#include "host/arx/outline.h"
#include "host/arx/peek.h"
#include "record/DKBJXDInfo.h"
#include "record/DKKeys.h"
#include "record/GHHXInfo.h"
#include "render/HatchLines.h"
#include "standard/KovaAttribSet.h"

namespace render {

namespace {

// Chords of arcs within a centimetre, as the GIS export has them.
constexpr double kChordTolerance = 0.01;

bool readOutline(AcDbObjectId id, Ring& points, bool& closed) {
    auto* entity = AcDbEntity::cast(arx::peekObject(id));
    closed = false;
    return entity != nullptr && !id.isErased() &&
           arx::entityOutline(entity, points, closed, kChordTolerance) && points.size() >= 2;
}

void widen(AcDbExtents& extents, const Ring& points) {
    for (const AcGePoint2d& p : points)
        extents.addPoint(AcGePoint3d(p.x, p.y, 0));
}

std::string trimmed(AcDbObjectId id, const wchar_t* key) {
    CString value;
    CDKBJXDInfo(id).GetData(key, value);
    value.Trim();
    return value.ToUtf8();
}

}  // namespace

bool findLabelPoint(ParcelShape& parcel) {
    AcGePoint3d point;
    if (!parcel.hasLabelPoint && FGetCenterPt(parcel.id, point)) {
        parcel.hasLabelPoint = true;
        parcel.labelPoint = {point.x, point.y};
    }
    return parcel.hasLabelPoint;
}

ClassStyle classStyle(const std::string& code) {
    ClassStyle style;
    style.code = code;
    CString wide = CString::FromUtf8(code);
    style.name = CKovaAttribSet::FGetDKXZMCFromCur(wide).ToUtf8();
    style.known = rgbOf(CKovaAttribSet::FGetCmColorFromCur(wide, 1), style.fill);
    if (!rgbOf(CKovaAttribSet::FGetDKBJCmColorFromCur(wide, 1), style.edge))
        style.edge = style.fill;
    // A boundary in its fill's own colour would not part two parcels of one class.
    if (style.edge == style.fill) style.edge = darker(style.fill, 0.3);
    CString pattern = L"SOLID";
    double scale = 1, angle = 0;
    CKovaAttribSet::FGetHatchFromCur(wide, pattern, scale, angle);
    pattern.Trim();
    style.pattern = static_cast<const wchar_t*>(pattern);
    style.lines = scaledPattern(style.pattern, scale, angle);
    if (!rgbOf(CKovaAttribSet::FGetHatchCmColorFromCur(wide, 1), style.hatch))
        style.hatch = style.fill;
    if (style.hatch == style.fill) style.hatch = darker(style.fill, 0.4);
    return style;
}

PlanScene collectScene(const AcDbObjectIdArray& parcels, const SceneOptions& options,
                       int* unreadable) {
    PlanScene scene;
    std::map<std::string, int> styleOf;  // code -> index, in code order at the end
    std::vector<std::string> codes;
    int missed = 0;
    for (AcDbObjectId id : parcels) {
        ParcelShape shape;
        shape.id = id;
        Ring outline;
        bool closed = false;
        if (!readOutline(id, outline, closed) || outline.size() < 3) {
            ++missed;
            continue;
        }
        shape.minX = shape.maxX = outline.front().x;
        shape.minY = shape.maxY = outline.front().y;
        for (const AcGePoint2d& p : outline) {
            shape.minX = (std::min)(shape.minX, p.x);
            shape.maxX = (std::max)(shape.maxX, p.x);
            shape.minY = (std::min)(shape.minY, p.y);
            shape.maxY = (std::max)(shape.maxY, p.y);
        }
        shape.rings.push_back(std::move(outline));
        AcDbObjectIdArray islands;
        CDKBJXDInfo(id).GetIsland(islands);
        for (AcDbObjectId island : islands) {
            Ring hole;
            if (readOutline(island, hole, closed) && hole.size() >= 3)
                shape.rings.push_back(std::move(hole));
        }
        std::string code = trimmed(id, dk::FS_DKXZ);
        auto [at, added] = styleOf.emplace(code, static_cast<int>(codes.size()));
        if (added) codes.push_back(code);
        shape.style = at->second;
        shape.number = trimmed(id, dk::FS_DKBH);
        if (options.labelPoints) findLabelPoint(shape);
        scene.extents.addPoint(AcGePoint3d(shape.minX, shape.minY, 0));
        scene.extents.addPoint(AcGePoint3d(shape.maxX, shape.maxY, 0));
        scene.parcels.push_back(std::move(shape));
    }
    // Styles in code order, so that the legend reads like the class table.
    std::vector<int> order(codes.size());
    for (std::size_t i = 0; i < order.size(); ++i)
        order[i] = static_cast<int>(i);
    std::sort(order.begin(), order.end(), [&](int a, int b) { return codes[a] < codes[b]; });
    std::vector<int> rank(codes.size());
    for (std::size_t r = 0; r < order.size(); ++r) {
        rank[order[r]] = static_cast<int>(r);
        scene.styles.push_back(classStyle(codes[order[r]]));
    }
    for (ParcelShape& shape : scene.parcels)
        shape.style = rank[shape.style];

    AcDbObjectIdArray red;
    CGHHXInfo::GetGhhx(dk::GHHX_ALL, red);
    for (AcDbObjectId id : red) {
        Polyline2d line;
        if (readOutline(id, line.points, line.closed)) {
            widen(scene.extents, line.points);
            scene.redLines.push_back(std::move(line));
        }
    }
    if (!options.boundary.isNull()) {
        bool closed = false;
        if (readOutline(options.boundary, scene.scope, closed) && scene.scope.size() >= 3) {
            widen(scene.extents, scene.scope);
        } else {
            scene.scope.clear();
        }
    }
    if (unreadable != nullptr) *unreadable = missed;
    return scene;
}

}  // namespace render
