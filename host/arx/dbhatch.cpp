#include "host/arx/dbhatch.h"

#include <cmath>
#include <cwctype>

#include "host/arx/dbents.h"
#include "host/arx/dbpl.h"
#include "host/arx/outline.h"
#include "host/arx/peek.h"

ACRX_DEFINE_MEMBERS(AcDbHatch, AcDbEntity, L"HATCH")

namespace {

struct NamedPattern {
    const wchar_t* name;
    std::vector<AcDbHatchPatternLine> lines;
};

// The patterns of the standard imperial pattern file that the shipped class tables use.
const std::vector<NamedPattern>& predefinedPatterns() {
    static const std::vector<NamedPattern> patterns = {
        {L"ANSI31", {{45.0, {0.0, 0.0}, {-0.0883883476, 0.0883883476}, {}}}},
        {L"ANSI37",
         {{45.0, {0.0, 0.0}, {-0.0883883476, 0.0883883476}, {}},
          {135.0, {0.0, 0.0}, {-0.0883883476, -0.0883883476}, {}}}},
        {L"AR-SAND",
         {{37.5, {0.0, 0.0}, {-0.0629933581, 1.926823769}, {0.0, -1.52, 0.0, -1.7, 0.0, -1.625}},
          {7.5, {0.0, 0.0}, {1.7697767053, 2.8221460652}, {0.0, -0.82, 0.0, -1.37, 0.0, -0.525}},
          {-32.5, {-1.23, 0.0}, {3.1141431899, 0.0056582074}, {0.0, -0.5, 0.0, -1.8, 0.0, -2.35}},
          {-42.5,
           {-1.23, 0.0},
           {3.0061277656, 0.877674501},
           {0.0, -0.25, 0.0, -1.18, 0.0, -1.35}}}},
        {L"DASH", {{0.0, {0.0, 0.0}, {0.125, 0.125}, {0.125, -0.125}}}},
        {L"DOTS", {{0.0, {0.0, 0.0}, {0.03125, 0.0625}, {0.0, -0.0625}}}},
        {L"EARTH",
         {{0.0, {0.0, 0.0}, {0.25, 0.25}, {0.25, -0.25}},
          {0.0, {0.0, 0.09375}, {0.25, 0.25}, {0.25, -0.25}},
          {0.0, {0.0, 0.1875}, {0.25, 0.25}, {0.25, -0.25}},
          {90.0, {0.03125, 0.21875}, {-0.25, 0.25}, {0.25, -0.25}},
          {90.0, {0.125, 0.21875}, {-0.25, 0.25}, {0.25, -0.25}},
          {90.0, {0.21875, 0.21875}, {-0.25, 0.25}, {0.25, -0.25}}}},
        {L"GRASS",
         {{90.0, {0.0, 0.0}, {-0.7071067811, 0.7071067811}, {0.1875, -1.2267135622}},
          {45.0, {0.0, 0.0}, {-0.7071067812, 0.7071067812}, {0.1875, -0.8125}},
          {135.0, {0.0, 0.0}, {-0.7071067812, -0.7071067812}, {0.1875, -0.8125}}}},
        {L"LINE", {{0.0, {0.0, 0.0}, {0.0, 0.125}, {}}}},
        {L"NET", {{0.0, {0.0, 0.0}, {0.0, 0.125}, {}}, {90.0, {0.0, 0.0}, {-0.125, 0.0}, {}}}},
        {L"STARS",
         {{0.0, {0.0, 0.0}, {0.0, 0.216506351}, {0.125, -0.125}},
          {60.0, {0.0, 0.0}, {-0.1875, 0.1082531755}, {0.125, -0.125}},
          {120.0, {0.0625, 0.108253176}, {-0.1875, -0.1082531755}, {0.125, -0.125}}}},
        {L"SWAMP",
         {{0.0, {0.0, 0.0}, {0.5, 0.866025403}, {0.125, -0.875}},
          {90.0, {0.0625, 0.0}, {-0.5, 0.866025403}, {0.0625, -1.669550806}},
          {90.0, {0.078125, 0.0}, {-0.5, 0.866025403}, {0.05, -1.682050806}},
          {90.0, {0.046875, 0.0}, {-0.5, 0.866025403}, {0.05, -1.682050806}},
          {60.0, {0.09375, 0.0}, {-0.4999999993, 0.8660254034}, {0.04, -0.96}},
          {120.0, {0.03125, 0.0}, {-0.9999999993, 4e-10}, {0.04, -0.96}}}},
        {L"TRIANG",
         {{60.0, {0.0, 0.0}, {-0.1874999996, 0.3247595262}, {0.1875, -0.1875}},
          {120.0, {0.0, 0.0}, {-0.3749999996, 2e-10}, {0.1875, -0.1875}},
          {0.0, {-0.09375, 0.162379763}, {0.1875, 0.324759526}, {0.1875, -0.1875}}}},
    };
    return patterns;
}

bool sameName(const std::wstring& a, const ACHAR* b) {
    std::size_t i = 0;
    for (; b[i] && i < a.size(); ++i) {
        if (std::towupper(a[i]) != std::towupper(b[i])) return false;
    }
    return i == a.size() && b[i] == 0;
}

// The outline of a closed boundary object as a polyline loop, exact for bulges.
bool outlineOf(AcDbObjectId id, std::vector<AcGePoint2d>& vertices, std::vector<double>& bulges) {
    vertices.clear();
    bulges.clear();
    AcDbObject* obj = arx::peekObject(id);
    if (obj == nullptr || id.isErased()) return false;
    if (auto* pline = AcDbPolyline::cast(obj)) {
        for (unsigned int i = 0; i < pline->numVerts(); ++i) {
            AcGePoint2d p;
            double b = 0;
            pline->getPointAt(i, p);
            pline->getBulgeAt(i, b);
            vertices.push_back(p);
            bulges.push_back(b);
        }
        return vertices.size() >= 2;
    }
    if (auto* circle = AcDbCircle::cast(obj)) {
        AcGePoint3d c = circle->center();
        double r = circle->radius();
        vertices = {{c.x + r, c.y}, {c.x - r, c.y}};
        bulges = {1.0, 1.0};
        return r > 0;
    }
    if (auto* heavy = AcDb2dPolyline::cast(obj)) {
        heavy->collect(vertices, bulges);
        return vertices.size() >= 2;
    }
    return false;
}

}  // namespace

const std::vector<AcDbHatchPatternLine>& acdbPredefinedHatchPattern(const ACHAR* name) {
    static const std::vector<AcDbHatchPatternLine> none;
    if (name == nullptr) return none;
    for (const NamedPattern& p : predefinedPatterns()) {
        if (sameName(p.name, name)) return p.lines;
    }
    return none;
}

#define KPLAN_HATCH_WRITE \
    if (!isWriteEnabled()) return Acad::eNotOpenForWrite

Acad::ErrorStatus AcDbHatch::setElevation(double elevation) {
    KPLAN_HATCH_WRITE;
    elevation_ = elevation;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::setNormal(const AcGeVector3d& normal) {
    KPLAN_HATCH_WRITE;
    if (normal.isZeroLength()) return Acad::eInvalidInput;
    normal_ = normal.normal();
    return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::setAssociative(bool associative) {
    KPLAN_HATCH_WRITE;
    associative_ = associative;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::setHatchStyle(HatchStyle style) {
    KPLAN_HATCH_WRITE;
    if (style < kNormal || style > kIgnore) return Acad::eInvalidInput;
    style_ = style;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::setPattern(HatchPatternType type, const ACHAR* name) {
    KPLAN_HATCH_WRITE;
    if (name == nullptr || *name == 0) return Acad::eInvalidInput;
    patternType_ = type;
    patternName_ = name;
    solid_ = type == kPreDefined && sameName(L"SOLID", name);
    computePatternLines();
    return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::setPatternAngle(double angle) {
    KPLAN_HATCH_WRITE;
    patternAngle_ = angle;
    computePatternLines();
    return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::setPatternScale(double scale) {
    KPLAN_HATCH_WRITE;
    if (!(scale > 0)) return Acad::eInvalidInput;
    patternScale_ = scale;
    computePatternLines();
    return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::setPatternSpace(double space) {
    KPLAN_HATCH_WRITE;
    if (!(space > 0)) return Acad::eInvalidInput;
    patternSpace_ = space;
    computePatternLines();
    return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::setPatternDouble(bool isDouble) {
    KPLAN_HATCH_WRITE;
    patternDouble_ = isDouble;
    computePatternLines();
    return Acad::eOk;
}

// Other programs draw a pattern from these lines, not from its name.
void AcDbHatch::computePatternLines() {
    lines_.clear();
    if (solid_) return;
    std::vector<AcDbHatchPatternLine> base;
    if (patternType_ == kPreDefined) {
        base = acdbPredefinedHatchPattern(patternName_.c_str());
    } else if (patternType_ == kUserDefined) {
        base.push_back({0, {0, 0}, {0, patternSpace_ / patternScale_}, {}});
        if (patternDouble_) base.push_back({90, {0, 0}, {-patternSpace_ / patternScale_, 0}, {}});
    }
    double c = std::cos(patternAngle_), s = std::sin(patternAngle_);
    auto turn = [&](double x, double y) {
        return std::pair<double, double>{(x * c - y * s) * patternScale_,
                                         (x * s + y * c) * patternScale_};
    };
    for (const AcDbHatchPatternLine& line : base) {
        AcDbHatchPatternLine out;
        out.angle = std::fmod(line.angle + patternAngle_ * 180.0 / M_PI, 360.0);
        if (out.angle < 0) out.angle += 360.0;
        auto [bx, by] = turn(line.base.x, line.base.y);
        auto [ox, oy] = turn(line.offset.x, line.offset.y);
        out.base = {bx, by};
        out.offset = {ox, oy};
        for (double d : line.dashes)
            out.dashes.push_back(d * patternScale_);
        lines_.push_back(std::move(out));
    }
}

Acad::ErrorStatus AcDbHatch::getPatternDefinitionAt(int index, double& angle, double& baseX,
                                                    double& baseY, double& offsetX, double& offsetY,
                                                    AcGeDoubleArray& dashes) const {
    if (index < 0 || index >= numPatternDefinitions()) return Acad::eInvalidIndex;
    const AcDbHatchPatternLine& line = lines_[static_cast<std::size_t>(index)];
    angle = line.angle * M_PI / 180.0;
    baseX = line.base.x;
    baseY = line.base.y;
    offsetX = line.offset.x;
    offsetY = line.offset.y;
    dashes.setLogicalLength(0);
    for (double d : line.dashes)
        dashes.append(d);
    return Acad::eOk;
}

Adesk::Int32 AcDbHatch::loopTypeAt(int index) const {
    return index >= 0 && index < numLoops() ? loops_[static_cast<std::size_t>(index)].type : 0;
}

const AcDbHatch::Loop* AcDbHatch::loopAt(int index) const {
    return index >= 0 && index < numLoops() ? &loops_[static_cast<std::size_t>(index)] : nullptr;
}

Acad::ErrorStatus AcDbHatch::appendLoop(Adesk::Int32 loopType, const AcGePoint2dArray& vertices,
                                        const AcGeDoubleArray& bulges) {
    KPLAN_HATCH_WRITE;
    if (vertices.length() < 2) return Acad::eInvalidInput;
    if (bulges.length() != 0 && bulges.length() != vertices.length()) return Acad::eInvalidInput;
    Loop loop;
    loop.type = loopType | kPolyline;
    for (int i = 0; i < vertices.length(); ++i) {
        loop.vertices.push_back(vertices[i]);
        loop.bulges.push_back(bulges.length() ? bulges[i] : 0.0);
    }
    loops_.push_back(std::move(loop));
    return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::appendLoop(Adesk::Int32 loopType, const AcDbObjectIdArray& dbObjIds) {
    KPLAN_HATCH_WRITE;
    if (dbObjIds.length() != 1) return Acad::eInvalidInput;  // one closed curve per loop
    Loop loop;
    loop.type = loopType | kPolyline;
    if (!outlineOf(dbObjIds[0], loop.vertices, loop.bulges)) return Acad::eInvalidInput;
    loop.sources.push_back(dbObjIds[0]);
    loops_.push_back(std::move(loop));
    return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::appendLoop(Adesk::Int32 loopType,
                                        const std::vector<AcDbHatchEdge>& edges) {
    KPLAN_HATCH_WRITE;
    if (edges.empty() || (loopType & kPolyline)) return Acad::eInvalidInput;
    Loop loop;
    loop.type = loopType;
    loop.edges = edges;
    loops_.push_back(std::move(loop));
    return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::removeLoopAt(int index) {
    KPLAN_HATCH_WRITE;
    if (index < 0 || index >= numLoops()) return Acad::eInvalidIndex;
    loops_.erase(loops_.begin() + index);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::getLoopAt(int index, Adesk::Int32& loopType,
                                       AcGePoint2dArray& vertices, AcGeDoubleArray& bulges) const {
    const Loop* loop = loopAt(index);
    if (loop == nullptr) return Acad::eInvalidIndex;
    loopType = loop->type;
    vertices.setLogicalLength(0);
    bulges.setLogicalLength(0);
    if (loop->isPolyline()) {
        for (std::size_t i = 0; i < loop->vertices.size(); ++i) {
            vertices.append(loop->vertices[i]);
            bulges.append(i < loop->bulges.size() ? loop->bulges[i] : 0.0);
        }
        return Acad::eOk;
    }
    for (const AcDbHatchEdge& e : loop->edges) {
        if (e.type == kLine) {
            vertices.append(e.start);
            bulges.append(0.0);
        } else if (e.type == kCirArc) {
            double sweep = e.endAngle - e.startAngle;
            if (sweep <= 0) sweep += 2 * M_PI;
            double a = e.counterClockwise ? e.startAngle : -e.startAngle;
            vertices.append(AcGePoint2d(e.center.x + e.radius * std::cos(a),
                                        e.center.y + e.radius * std::sin(a)));
            bulges.append((e.counterClockwise ? 1 : -1) * std::tan(sweep / 4));
        } else {
            return Acad::eNotApplicable;
        }
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::getAssocObjIdsAt(int index, AcDbObjectIdArray& ids) const {
    const Loop* loop = loopAt(index);
    if (loop == nullptr) return Acad::eInvalidIndex;
    ids.setLogicalLength(0);
    for (AcDbObjectId id : loop->sources)
        ids.append(id);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::getAssocObjIds(AcDbObjectIdArray& ids) const {
    ids.setLogicalLength(0);
    for (const Loop& loop : loops_) {
        for (AcDbObjectId id : loop.sources)
            ids.append(id);
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::setAssocObjIdsAt(int index, const AcDbObjectIdArray& ids) {
    KPLAN_HATCH_WRITE;
    if (index < 0 || index >= numLoops()) return Acad::eInvalidIndex;
    Loop& loop = loops_[static_cast<std::size_t>(index)];
    loop.sources.clear();
    for (int i = 0; i < ids.length(); ++i)
        loop.sources.push_back(ids[i]);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbHatch::removeAssocObjIds() {
    KPLAN_HATCH_WRITE;
    for (Loop& loop : loops_)
        loop.sources.clear();
    return Acad::eOk;
}

void AcDbHatch::modified(const AcDbObject* dbObj) {
    if (!associative_ || dbObj == nullptr) return;
    for (Loop& loop : loops_) {
        if (loop.sources.size() != 1 || loop.sources[0] != dbObj->objectId()) continue;
        std::vector<AcGePoint2d> vertices;
        std::vector<double> bulges;
        if (!outlineOf(loop.sources[0], vertices, bulges)) continue;
        loop.type |= kPolyline;
        loop.vertices = std::move(vertices);
        loop.bulges = std::move(bulges);
        loop.edges.clear();
    }
}

Acad::ErrorStatus AcDbHatch::getGeomExtents(AcDbExtents& extents) const {
    extents = AcDbExtents();
    for (const Loop& loop : loops_) {
        std::size_t n = loop.vertices.size();
        for (std::size_t i = 0; i < n; ++i) {
            extents.addPoint({loop.vertices[i].x, loop.vertices[i].y, elevation_});
            double b = i < loop.bulges.size() ? loop.bulges[i] : 0.0;
            if (b != 0) {
                arx::addBulgeExtents(loop.vertices[i], loop.vertices[(i + 1) % n], b, elevation_,
                                     extents);
            }
        }
        for (const AcDbHatchEdge& e : loop.edges) {
            if (e.type == kLine) {
                extents.addPoint({e.start.x, e.start.y, elevation_});
                extents.addPoint({e.end.x, e.end.y, elevation_});
            } else if (e.type == kSpline) {
                for (const AcGePoint2d& p : e.controlPoints)
                    extents.addPoint({p.x, p.y, elevation_});
            } else {
                double r = e.type == kCirArc ? e.radius : e.majorAxis.length();
                extents.addPoint({e.center.x - r, e.center.y - r, elevation_});
                extents.addPoint({e.center.x + r, e.center.y + r, elevation_});
            }
        }
    }
    return extents.isEmpty() ? Acad::eInvalidExtents : Acad::eOk;
}
