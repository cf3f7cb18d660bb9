#include "host/arx/dbhatch.h"

#include <algorithm>
#include <cmath>
#include <cwctype>
#include <map>
#include <mutex>

#include "host/arx/acutads.h"
#include "host/arx/dbapserv.h"
#include "host/arx/dbelipse.h"
#include "host/arx/dbents.h"
#include "host/arx/dbpl.h"
#include "host/arx/dbregion.h"
#include "host/arx/dbspline.h"
#include "host/arx/outline.h"
#include "host/arx/peek.h"
#include "host/db/Faults.h"
#include "host/db/HatchPatternFile.h"
#include "host/db/TextCodec.h"

ACRX_DEFINE_MEMBERS(AcDbHatch, AcDbEntity, L"HATCH")

namespace {

bool sameName(const std::wstring& a, const ACHAR* b) {
    std::size_t i = 0;
    for (; b[i] && i < a.size(); ++i) {
        if (std::towupper(a[i]) != std::towupper(b[i])) return false;
    }
    return i == a.size() && b[i] == 0;
}

// An open polyline bounds an area only when its ends meet; the repeated end is dropped.
bool closedOutline(bool closed, AcDbHatch::Loop& loop) {
    if (!closed && loop.vertices.size() >= 3 &&
        loop.vertices.front().isEqualTo(loop.vertices.back())) {
        loop.vertices.pop_back();
        loop.bulges.pop_back();
        closed = true;
    }
    return closed && loop.vertices.size() >= 2;
}

// The outline of a closed boundary object as a loop: polylines and circles as a polyline
// loop, exact for bulges; a closed ellipse or spline as an edge loop of one edge. The
// loop's type bits other than kPolyline are left to the caller.
bool loopOf(AcDbObjectId id, AcDbHatch::Loop& loop) {
    loop.vertices.clear();
    loop.bulges.clear();
    loop.edges.clear();
    loop.closed = true;
    AcDbObject* obj = arx::peekObject(id);
    if (obj == nullptr || id.isErased()) return false;
    loop.type |= AcDbHatch::kPolyline;
    if (auto* pline = AcDbPolyline::cast(obj)) {
        for (unsigned int i = 0; i < pline->numVerts(); ++i) {
            AcGePoint2d p;
            double b = 0;
            pline->getPointAt(i, p);
            pline->getBulgeAt(i, b);
            loop.vertices.push_back(p);
            loop.bulges.push_back(b);
        }
        return closedOutline(pline->isClosed(), loop);
    }
    if (auto* circle = AcDbCircle::cast(obj)) {
        AcGePoint3d c = circle->center();
        double r = circle->radius();
        loop.vertices = {{c.x + r, c.y}, {c.x - r, c.y}};
        loop.bulges = {1.0, 1.0};
        return r > 0;
    }
    if (auto* heavy = AcDb2dPolyline::cast(obj)) {
        heavy->collect(loop.vertices, loop.bulges);
        return closedOutline(heavy->isClosed(), loop);
    }
    loop.type &= ~AcDbHatch::kPolyline;
    AcDbHatchEdge edge;
    if (auto* ellipse = AcDbEllipse::cast(obj)) {
        if (!ellipse->isClosed()) return false;
        edge.type = AcDbHatch::kEllArc;
        edge.center = ellipse->center().convert2d();
        edge.majorAxis = {ellipse->majorAxis().x, ellipse->majorAxis().y};
        edge.minorRatio = ellipse->radiusRatio();
        edge.startAngle = 0;
        edge.endAngle = 2 * M_PI;
        edge.counterClockwise = ellipse->normal().z >= 0;
        loop.edges.push_back(edge);
        return true;
    }
    if (auto* spline = AcDbSpline::cast(obj)) {
        if (!spline->isClosed() || spline->numControlPoints() == 0) return false;
        AcDbSpline::Data d = spline->data();
        edge.type = AcDbHatch::kSpline;
        edge.degree = d.degree;
        edge.rational = d.rational;
        edge.periodic = d.periodic;
        edge.knots = d.knots;
        for (const AcGePoint3d& p : d.controlPoints)
            edge.controlPoints.push_back(p.convert2d());
        if (d.rational) edge.weights = d.weights;
        for (const AcGePoint3d& p : d.fitPoints)
            edge.fitPoints.push_back(p.convert2d());
        edge.hasTangents = d.hasStartTangent && d.hasEndTangent;
        if (edge.hasTangents) {
            edge.startTangent = {d.startTangent.x, d.startTangent.y};
            edge.endTangent = {d.endTangent.x, d.endTangent.y};
        }
        loop.edges.push_back(edge);
        return true;
    }
    return false;
}

// The loops of one boundary object: a region gives one per loop of its own, the first of
// the given type and the rest (its holes) default; every other closed curve gives one.
bool loopsOf(AcDbObjectId id, Adesk::Int32 type, std::vector<AcDbHatch::Loop>& loops) {
    loops.clear();
    if (auto* region = arx::peek<AcDbRegion>(id)) {
        if (id.isErased() || region->isNull()) return false;
        for (const AcDbRegion::Loop& own : region->loops()) {
            AcDbHatch::Loop loop;
            loop.type = (loops.empty() ? type : AcDbHatch::kDefault) | AcDbHatch::kPolyline;
            loop.vertices = own.points;
            loop.bulges = own.bulges;
            loop.bulges.resize(loop.vertices.size(), 0.0);
            loop.sources.push_back(id);
            loops.push_back(std::move(loop));
        }
        return true;
    }
    AcDbHatch::Loop loop;
    loop.type = type & ~AcDbHatch::kPolyline;
    if (!loopOf(id, loop)) return false;
    loop.sources.push_back(id);
    loops.push_back(std::move(loop));
    return true;
}

void printOnce(const std::string& problem) {
    static std::string printed;
    if (problem == printed) return;
    printed = problem;
    acutPrintf(L"\n%ls", db::utf8ToWide(problem).c_str());
}

// The line families of every pattern of one file, by upper-case name, made once per
// pattern folder and kept (references stay valid); the DXF reader's threads ask too.
struct PatternTable {
    std::vector<std::pair<std::wstring, std::vector<AcDbHatchPatternLine>>> patterns;
    std::string error;
};

const PatternTable& patternTable(bool metric) {
    static std::mutex mutex;
    static std::map<std::pair<std::string, bool>, PatternTable> tables;
    std::string folder = db::hatchPatternFolder();
    std::lock_guard<std::mutex> lock(mutex);
    auto [it, fresh] = tables.try_emplace({folder, metric});
    PatternTable& table = it->second;
    if (!fresh) return table;
    const db::HatchPatternFile* file = db::hatchPatterns(metric, table.error);
    if (file == nullptr) return table;
    for (const db::HatchPattern& p : file->patterns()) {
        std::wstring name;
        for (char c : p.name)
            name += static_cast<wchar_t>(std::towupper(static_cast<unsigned char>(c)));
        std::vector<AcDbHatchPatternLine> lines;
        for (const db::PatternLine& l : p.lines)
            lines.push_back({l.angle, {l.baseX, l.baseY}, {l.offsetX, l.offsetY}, l.dashes});
        table.patterns.emplace_back(std::move(name), std::move(lines));
    }
    return table;
}

const std::vector<AcDbHatchPatternLine>* findPattern(const ACHAR* name, bool metric) {
    for (const auto& [key, lines] : patternTable(metric).patterns) {
        if (sameName(key, name)) return &lines;
    }
    return nullptr;
}

bool metricDrawing(const AcDbObject& obj) {
    const AcDbDatabase* database = obj.database();
    if (database == nullptr) database = acdbHostApplicationServices()->workingDatabase();
    return database != nullptr && database->measurement() == 1;
}

}  // namespace

const std::vector<AcDbHatchPatternLine>& acdbPredefinedHatchPattern(const ACHAR* name,
                                                                    bool metric) {
    static const std::vector<AcDbHatchPatternLine> none;
    if (name == nullptr || *name == 0 || sameName(L"SOLID", name)) return none;
    const std::vector<AcDbHatchPatternLine>* lines = findPattern(name, metric);
    return lines ? *lines : none;
}

const std::string& acdbHatchPatternFileError(bool metric) {
    return patternTable(metric).error;
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
    bool solid = type == kPreDefined && sameName(L"SOLID", name);
    if (type == kPreDefined && !solid) {
        // A pattern file that cannot be read is the installation's fault, not the name's.
        const std::string& problem = acdbHatchPatternFileError(metricDrawing(*this));
        if (!problem.empty()) {
            printOnce(problem);
            return Acad::eFileNotFound;
        }
    }
    patternType_ = type;
    patternName_ = name;
    solid_ = solid;
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
        base = acdbPredefinedHatchPattern(patternName_.c_str(), metricDrawing(*this));
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
    std::vector<Loop> loops;
    if (!loopsOf(dbObjIds[0], loopType & ~kPolyline, loops)) return Acad::eInvalidInput;
    for (Loop& loop : loops)
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
    refreshFrom(dbObj->objectId());
}

// The loops made from one boundary object are made again, where they were; a boundary
// that no longer makes a loop (erased, opened up) leaves them as they were.
void AcDbHatch::refreshFrom(AcDbObjectId source) {
    std::size_t first = loops_.size();
    for (std::size_t i = 0; i < loops_.size() && first == loops_.size(); ++i) {
        if (loops_[i].sources.size() == 1 && loops_[i].sources[0] == source) first = i;
    }
    if (first == loops_.size()) return;
    std::vector<Loop> fresh;
    if (!loopsOf(source, loops_[first].type & ~kPolyline, fresh)) return;
    std::erase_if(loops_, [&](const Loop& loop) {
        return loop.sources.size() == 1 && loop.sources[0] == source;
    });
    loops_.insert(loops_.begin() + static_cast<std::ptrdiff_t>(first),
                  std::make_move_iterator(fresh.begin()), std::make_move_iterator(fresh.end()));
}

Acad::ErrorStatus AcDbHatch::evaluateHatch(bool underEstimateNumLines) {
    db::failIfArmed("AcDbHatch::evaluateHatch");
    (void)underEstimateNumLines;  // no display lines are kept: nothing to estimate
    if (associative_) {
        std::vector<AcDbObjectId> sources;
        for (const Loop& loop : loops_) {
            if (loop.sources.size() == 1 &&
                std::find(sources.begin(), sources.end(), loop.sources[0]) == sources.end())
                sources.push_back(loop.sources[0]);
        }
        for (AcDbObjectId source : sources)
            refreshFrom(source);
    }
    computePatternLines();
    if (loops_.empty()) return Acad::eDegenerateGeometry;
    for (const Loop& loop : loops_) {
        if (loop.isPolyline() ? loop.vertices.size() < 2 : loop.edges.empty())
            return Acad::eDegenerateGeometry;
    }
    return Acad::eOk;
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
