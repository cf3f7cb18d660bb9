#include "host/dxf/Codecs.h"

#include <cmath>
#include <cstring>

#include "host/arx/dbdict.h"
#include "host/arx/dbents.h"
#include "host/arx/dbhatch.h"
#include "host/arx/dbmtext.h"
#include "host/arx/dbpl.h"
#include "host/arx/dbsortents.h"
#include "host/arx/dbsymtb.h"
#include "host/arx/dbxrecrd.h"
#include "host/arx/peek.h"
#include "host/db/TextCodec.h"
#include "host/dxf/AttributeCodecs.h"
#include "host/dxf/CurveCodecs.h"
#include "host/dxf/FieldTable.h"

namespace dxf {

namespace {

using Tags = const TagView*;

// ---------------------------------------------------------------- field helpers

Field nameField() {
    return textField(
        2, false, L"",
        [](const AcDbObject& o) { return static_cast<const AcDbSymbolTableRecord&>(o).nameText(); },
        [](AcDbObject& o, const std::wstring& name) {
            return static_cast<AcDbSymbolTableRecord&>(o).setName(name.c_str()) == Acad::eOk;
        });
}

// The body split at the class's first own subclass marker: the entity part before.
Tags classPart(const ParsedObject& p, std::string_view marker) {
    for (const TagView& t : p.body) {
        if (t.code == 100 && t.value == marker) return &t;
    }
    return nullptr;
}

Tags bodyBegin(const ParsedObject& p) {
    return p.body.data();
}
Tags bodyEnd(const ParsedObject& p) {
    return p.body.data() + p.body.size();
}

const FieldTable& entityTable() {
    static const FieldTable table({entitySubclass()});
    return table;
}

// ---------------------------------------------------------------- table-driven classes

template <typename T>
AcDbObject* readWithTable(const FieldTable& table, const ParsedObject& p, ReadContext& ctx,
                          ObjectRecord& record) {
    auto* obj = new T();
    table.read(*obj, bodyBegin(p), bodyEnd(p), ctx, record);
    return obj;
}

bool tableCanonical(const FieldTable& table, const AcDbObject& obj, const WriteContext& ctx,
                    const ObjectRecord& record) {
    return record.extras.empty() && record.present == table.defaultPresence(obj, ctx);
}

#define KPLAN_TABLE_CODEC(NAME, CLASS, TABLE)                                             \
    Codec {                                                                               \
        NAME, &CLASS::desc,                                                               \
            [](const ParsedObject& p, ReadContext& ctx, ObjectRecord& r) -> AcDbObject* { \
                return readWithTable<CLASS>(TABLE(), p, ctx, r);                          \
            },                                                                            \
            [](const AcDbObject& o, WriteContext& ctx, const ObjectRecord* r) {           \
                TABLE().write(o, ctx, r);                                                 \
            },                                                                            \
            [](const AcDbObject& o, const WriteContext& ctx, const ObjectRecord& r) {     \
                return tableCanonical(TABLE(), o, ctx, r);                                \
            }                                                                             \
    }

const FieldTable& lineTable() {
    static const FieldTable table(
        {entitySubclass(),
         {"AcDbLine",
          {pointField<AcDbLine>(10, &AcDbLine::startPoint, &AcDbLine::setStartPoint),
           pointField<AcDbLine>(11, &AcDbLine::endPoint, &AcDbLine::setEndPoint)}}});
    return table;
}

const FieldTable& circleTable() {
    static const FieldTable table(
        {entitySubclass(),
         {"AcDbCircle",
          {pointField<AcDbCircle>(10, &AcDbCircle::center, &AcDbCircle::setCenter),
           realField<AcDbCircle>(40, &AcDbCircle::radius, &AcDbCircle::setRadius),
           normalField<AcDbCircle>(210, &AcDbCircle::normal, &AcDbCircle::setNormal)}}});
    return table;
}

const FieldTable& arcTable() {
    static const FieldTable table(
        {entitySubclass(),
         {"AcDbCircle",
          {pointField<AcDbArc>(10, &AcDbArc::center, &AcDbArc::setCenter),
           realField<AcDbArc>(40, &AcDbArc::radius, &AcDbArc::setRadius),
           normalField<AcDbArc>(210, &AcDbArc::normal, &AcDbArc::setNormal)}},
         {"AcDbArc",
          {angleField<AcDbArc>(50, &AcDbArc::startAngle, &AcDbArc::setStartAngle),
           angleField<AcDbArc>(51, &AcDbArc::endAngle, &AcDbArc::setEndAngle)}}});
    return table;
}

}  // namespace

Subclass textSubclass() {
    Field text = textField(
        1, false, L"", [](const AcDbObject& o) { return static_cast<const AcDbText&>(o).text(); },
        [](AcDbObject& o, const std::wstring& s) {
            return static_cast<AcDbText&>(o).setTextString(s.c_str()) == Acad::eOk;
        });
    Field horizontal = intField(
        72, true, 0,
        [](const AcDbObject& o, const WriteContext&) -> std::int64_t {
            return static_cast<const AcDbText&>(o).horizontalMode();
        },
        [](AcDbObject& o, std::int64_t v) {
            if (v < 0 || v > 5) return false;
            return static_cast<AcDbText&>(o).setHorizontalMode(
                       static_cast<AcDb::TextHorzMode>(v)) == Acad::eOk;
        });
    return {
        "AcDbText",
        {pointField<AcDbText>(10, &AcDbText::position, &AcDbText::setPosition),
         realField<AcDbText>(40, &AcDbText::height, &AcDbText::setHeight), text,
         angleField<AcDbText>(50, &AcDbText::rotation, &AcDbText::setRotation, true),
         realField<AcDbText>(41, &AcDbText::widthFactor, &AcDbText::setWidthFactor, true, 1.0),
         horizontal,
         pointField<AcDbText>(11, &AcDbText::alignmentPoint, &AcDbText::setAlignmentPoint, true)}};
}

namespace {

const FieldTable& textTable() {
    Field vertical = intField(
        73, true, 0,
        [](const AcDbObject& o, const WriteContext&) -> std::int64_t {
            return static_cast<const AcDbText&>(o).verticalMode();
        },
        [](AcDbObject& o, std::int64_t v) {
            if (v < 0 || v > 3) return false;
            return static_cast<AcDbText&>(o).setVerticalMode(static_cast<AcDb::TextVertMode>(v)) ==
                   Acad::eOk;
        });
    static const FieldTable table({entitySubclass(), textSubclass(), {"AcDbText", {vertical}}});
    return table;
}

// Multi-line text longer than 250 characters goes in chunks of group 3 before the 1.
void writeLongText(int code, const std::wstring& text, WriteContext& ctx) {
    constexpr std::size_t kChunk = 250;
    std::size_t at = 0;
    while (text.size() - at > kChunk) {
        std::size_t n = kChunk;
        // A surrogate pair never arrives here (wchar_t holds a code point), but an
        // escape sequence should not be cut: step back before an unfinished "\U+".
        std::size_t slash = text.rfind(L'\\', at + n - 1);
        if (slash != std::wstring::npos && slash >= at && at + n - slash < 8) n = slash - at;
        if (n == 0) n = kChunk;
        ctx.text(3, std::wstring_view(text).substr(at, n));
        at += n;
    }
    ctx.text(code, std::wstring_view(text).substr(at));
}

const FieldTable& mtextTable() {
    Field contents = textField(
        1, false, L"",
        [](const AcDbObject& o) { return static_cast<const AcDbMText&>(o).contentsText(); },
        [](AcDbObject& o, const std::wstring& s) {
            return static_cast<AcDbMText&>(o).setContents(s.c_str()) == Acad::eOk;
        });
    contents.writeOverride = [](const FieldValue& v, WriteContext& ctx) {
        writeLongText(1, v.text, ctx);
    };
    Field attachment = intField(
        71, false, 1,
        [](const AcDbObject& o, const WriteContext&) -> std::int64_t {
            return static_cast<const AcDbMText&>(o).attachment();
        },
        [](AcDbObject& o, std::int64_t v) {
            if (v < 1 || v > 9) return false;
            return static_cast<AcDbMText&>(o).setAttachment(
                       static_cast<AcDbMText::AttachmentPoint>(v)) == Acad::eOk;
        });
    static const FieldTable table(
        {entitySubclass(),
         {"AcDbMText",
          {pointField<AcDbMText>(10, &AcDbMText::location, &AcDbMText::setLocation),
           realField<AcDbMText>(40, &AcDbMText::textHeight, &AcDbMText::setTextHeight),
           realField<AcDbMText>(41, &AcDbMText::width, &AcDbMText::setWidth), attachment, contents,
           angleField<AcDbMText>(50, &AcDbMText::rotation, &AcDbMText::setRotation, true)}}});
    return table;
}

AcDbObject* readMText(const ParsedObject& p, ReadContext& ctx, ObjectRecord& record) {
    // The chunks of group 3 are joined to the 1 that ends them, as one value.
    std::vector<TagView> tags;
    std::string joined;
    bool chunked = false;
    for (const TagView& t : p.body) {
        if (t.code == 3) {
            joined.append(t.value);
            chunked = true;
            continue;
        }
        tags.push_back(t);
    }
    if (chunked) {
        for (TagView& t : tags) {
            if (t.code == 1) {
                joined.append(t.value);
                t.value = joined;
                break;
            }
        }
    }
    auto* obj = new AcDbMText();
    mtextTable().read(*obj, tags.data(), tags.data() + tags.size(), ctx, record);
    return obj;
}

const FieldTable& vertexTable() {
    Field flags = intField(
        70, true, 0,
        [](const AcDbObject& o, const WriteContext&) -> std::int64_t {
            switch (static_cast<const AcDb2dVertex&>(o).vertexType()) {
                case AcDb::k2dSplineCtlVertex:
                    return 16;
                case AcDb::k2dSplineFitVertex:
                    return 8;
                case AcDb::k2dCurveFitVertex:
                    return 1;
                default:
                    return 0;
            }
        },
        [](AcDbObject& o, std::int64_t v) {
            auto& vertex = static_cast<AcDb2dVertex&>(o);
            switch (v) {
                case 0:
                    vertex.setVertexType(AcDb::k2dVertex);
                    return true;
                case 1:
                    vertex.setVertexType(AcDb::k2dCurveFitVertex);
                    return true;
                case 8:
                    vertex.setVertexType(AcDb::k2dSplineFitVertex);
                    return true;
                case 16:
                    vertex.setVertexType(AcDb::k2dSplineCtlVertex);
                    return true;
                default:
                    return false;
            }
        });
    static const FieldTable table(
        {entitySubclass(),
         {"AcDbVertex", {}},
         {"AcDb2dVertex",
          {pointField<AcDb2dVertex>(10, &AcDb2dVertex::position, &AcDb2dVertex::setPosition),
           realField<AcDb2dVertex>(40, &AcDb2dVertex::startWidth, &AcDb2dVertex::setStartWidth,
                                   true),
           realField<AcDb2dVertex>(41, &AcDb2dVertex::endWidth, &AcDb2dVertex::setEndWidth, true),
           realField<AcDb2dVertex>(42, &AcDb2dVertex::bulge, &AcDb2dVertex::setBulge, true),
           flags}}});
    return table;
}

const FieldTable& seqendTable() {
    static const FieldTable table({entitySubclass()});
    return table;
}

const FieldTable& polyline2dTable() {
    Field origin;
    origin.code = 10;
    origin.kind = FieldKind::Point3;
    origin.get = [](const AcDbObject& o, FieldValue& v, const WriteContext&) {
        v.point = AcGePoint3d(0, 0, static_cast<const AcDb2dPolyline&>(o).elevation());
    };
    origin.set = [](AcDbObject& o, const FieldValue& v) {
        return static_cast<AcDb2dPolyline&>(o).setElevation(v.point.z) == Acad::eOk;
    };
    Field flags = intField(
        70, true, 0,
        [](const AcDbObject& o, const WriteContext&) -> std::int64_t {
            const auto& pl = static_cast<const AcDb2dPolyline&>(o);
            std::int64_t bits = pl.isClosed() ? 1 : 0;
            if (pl.polyType() == AcDb::k2dFitCurvePoly) bits |= 2;
            if (pl.polyType() == AcDb::k2dQuadSplinePoly ||
                pl.polyType() == AcDb::k2dCubicSplinePoly)
                bits |= 4;
            return bits;
        },
        [](AcDbObject& o, std::int64_t v) {
            if (v & ~std::int64_t(7)) return false;
            auto& pl = static_cast<AcDb2dPolyline&>(o);
            if (v & 1) pl.makeClosed();
            if (v & 2) pl.setPolyType(AcDb::k2dFitCurvePoly);
            if (v & 4) pl.setPolyType(AcDb::k2dCubicSplinePoly);
            return true;
        });
    Field curve = intField(
        75, true, 0,
        [](const AcDbObject& o, const WriteContext&) -> std::int64_t {
            switch (static_cast<const AcDb2dPolyline&>(o).polyType()) {
                case AcDb::k2dQuadSplinePoly:
                    return 5;
                case AcDb::k2dCubicSplinePoly:
                    return 6;
                default:
                    return 0;
            }
        },
        [](AcDbObject& o, std::int64_t v) {
            auto& pl = static_cast<AcDb2dPolyline&>(o);
            if (v == 5) return pl.setPolyType(AcDb::k2dQuadSplinePoly) == Acad::eOk;
            if (v == 6) return pl.setPolyType(AcDb::k2dCubicSplinePoly) == Acad::eOk;
            return v == 0 || v == 8;
        });
    static const FieldTable table({entitySubclass(), {"AcDb2dPolyline", {origin, flags, curve}}});
    return table;
}

// ---------------------------------------------------------------- LWPOLYLINE

// Presence bits of the polyline's own part, above those of the entity part.
enum : std::uint64_t {
    kLwConstantWidth = 1ull << 40,
    kLwElevation = 1ull << 41,
    kLwNormal = 1ull << 42,
    kLwAllBulges = 1ull << 43,
    kLwAllWidths = 1ull << 44,
    kLwThickness = 1ull << 45,
};

// Anchors of the kept tags of the polyline's own part: after the fields before the
// vertices, after vertex i, after the normal. Apart from the entity part's anchors, so
// that a tag is written once, where it was.
constexpr int kLwHead = FieldTable::kOwn, kLwVertex = FieldTable::kOwn + 16,
              kLwTail = FieldTable::kOwn + 8;

AcDbObject* readLwPolyline(const ParsedObject& p, ReadContext& ctx, ObjectRecord& record) {
    Tags split = classPart(p, "AcDbPolyline");
    Tags end = bodyEnd(p);
    if (split == nullptr) return nullptr;
    std::size_t announced = 0;
    for (Tags t = split + 1; t < end && t->code != 10; ++t) {
        std::int64_t n = 0;
        if (t->code == 90 && parseInt(t->value, n) && n > 0 && n < 1000000) {
            announced = static_cast<std::size_t>(n);
        }
    }
    auto* pl = new AcDbPolyline(static_cast<unsigned int>(announced));
    entityTable().read(*pl, bodyBegin(p), split, ctx, record);
    struct Vertex {
        double x = 0, y = 0, bulge = 0, sw = 0, ew = 0;
        bool hasBulge = false, hasWidths = false;
    };
    // Reused from polyline to polyline: most of a drawing is polylines.
    static thread_local std::vector<Vertex> vertices;
    vertices.clear();
    vertices.reserve(announced);
    std::int64_t flags = 0, count = -1;
    double constantWidth = 0, elevation = 0, thickness = 0;
    AcGeVector3d normal = AcGeVector3d::kZAxis;
    std::uint64_t bits = 0;
    bool ok = true;
    int anchor = kLwHead;
    Tags normalTags = nullptr;
    for (Tags t = split + 1; t < end && ok; ++t) {
        switch (t->code) {
            case 10:
                vertices.emplace_back();
                ok = ctx.real(*t, vertices.back().x);
                anchor = kLwVertex + static_cast<int>(vertices.size()) - 1;
                continue;
            case 20:
                if (vertices.empty()) break;
                ok = ctx.real(*t, vertices.back().y);
                continue;
            case 40:
                if (vertices.empty()) break;
                ok = ctx.real(*t, vertices.back().sw);
                vertices.back().hasWidths = true;
                continue;
            case 41:
                if (vertices.empty()) break;
                ok = ctx.real(*t, vertices.back().ew);
                continue;
            case 42:
                if (vertices.empty()) break;
                ok = ctx.real(*t, vertices.back().bulge);
                vertices.back().hasBulge = true;
                continue;
            case 90:
                if (!vertices.empty()) break;
                ok = ctx.integer(*t, count);
                continue;
            case 70:
                if (!vertices.empty()) break;
                ok = ctx.integer(*t, flags);
                if (flags & ~std::int64_t(129)) ok = false;
                continue;
            case 43:
                if (!vertices.empty()) break;
                ok = ctx.real(*t, constantWidth);
                bits |= kLwConstantWidth;
                continue;
            case 38:
                if (!vertices.empty()) break;
                ok = ctx.real(*t, elevation);
                bits |= kLwElevation;
                continue;
            case 39:
                if (!vertices.empty()) break;
                ok = ctx.real(*t, thickness);
                bits |= kLwThickness;
                continue;
            case 210:
                normalTags = t;
                ok = ctx.real(*t, normal.x) && t + 2 < end && t[1].code == 220 &&
                     t[2].code == 230 && ctx.real(t[1], normal.y) && ctx.real(t[2], normal.z);
                t += 2;
                bits |= kLwNormal;
                anchor = kLwTail;
                continue;
            default:
                break;
        }
        ctx.keep(record, anchor, *t);
    }
    if (!ok || (count >= 0 && static_cast<std::size_t>(count) != vertices.size())) {
        delete pl;
        return nullptr;
    }
    if (bits & kLwConstantWidth) pl->setConstantWidth(constantWidth);
    bool allBulges = !vertices.empty(), allWidths = !vertices.empty();
    for (std::size_t i = 0; i < vertices.size(); ++i) {
        const Vertex& v = vertices[i];
        pl->addVertexAt(static_cast<unsigned int>(i), AcGePoint2d(v.x, v.y), v.bulge,
                        v.hasWidths ? v.sw : -1, v.hasWidths ? v.ew : -1);
        allBulges = allBulges && v.hasBulge;
        allWidths = allWidths && v.hasWidths;
        // A bulge of 0 written or a width given on only some vertices is not worth a
        // record; the writer's rule (nonzero only) reads back the same.
    }
    if (allBulges) bits |= kLwAllBulges;
    if (allWidths && !(bits & kLwConstantWidth)) bits |= kLwAllWidths;
    pl->setClosed(flags & 1);
    pl->setPlinegen(flags & 128);
    pl->setElevation(elevation);
    if (bits & kLwThickness) pl->setThickness(thickness);
    if (bits & kLwNormal) {
        // Kept of unit length; the file's own numbers are written back.
        pl->setNormal(normal);
        AcGeVector3d unit = pl->normal();
        double written[] = {unit.x, unit.y, unit.z};
        for (int k = 0; k < 3; ++k)
            ReadContext::spell(record, normalTags[k], written[k], written[k]);
    }
    record.present |= bits;
    return pl;
}

void writeLwPolyline(const AcDbObject& obj, WriteContext& ctx, const ObjectRecord* record) {
    const auto& pl = static_cast<const AcDbPolyline&>(obj);
    entityTable().write(obj, ctx, record);
    // A record without presence (what it holds is all the writer would write) leaves
    // the fields to the writer's rule.
    bool known = record && record->hasPresent;
    std::uint64_t bits = known ? record->present : 0;
    TagWriter& out = ctx.out;
    out.text(100, "AcDbPolyline");
    unsigned int n = pl.numVerts();
    out.integer(90, n);
    out.integer(70, (pl.isClosed() ? 1 : 0) | (pl.hasPlinegen() ? 128 : 0));
    double constant = 0;
    bool isConstant = pl.getConstantWidth(constant) == Acad::eOk;
    if ((bits & kLwConstantWidth) || (!known && isConstant && constant != 0)) {
        out.real(43, isConstant ? constant : 0);
    }
    if ((bits & kLwElevation) || pl.elevation() != 0) out.real(38, pl.elevation());
    if ((bits & kLwThickness) || pl.thickness() != 0) out.real(39, pl.thickness());
    ctx.extras(record, kLwHead);
    for (unsigned int i = 0; i < n; ++i) {
        AcGePoint2d p;
        double bulge = 0, sw = 0, ew = 0;
        pl.getPointAt(i, p);
        pl.getBulgeAt(i, bulge);
        pl.getWidthsAt(i, sw, ew);
        out.point(10, p.x, p.y);
        if ((bits & kLwAllWidths) || (!isConstant && (sw != 0 || ew != 0))) {
            out.real(40, sw);
            out.real(41, ew);
        }
        if ((bits & kLwAllBulges) || bulge != 0) out.real(42, bulge);
        ctx.extras(record, kLwVertex + static_cast<int>(i));
    }
    AcGeVector3d normal = pl.normal();
    if ((bits & kLwNormal) || !(normal == AcGeVector3d::kZAxis)) {
        ctx.point(record, 210, normal.x, normal.y, normal.z);
    }
    ctx.extras(record, kLwTail);
}

bool lwCanonical(const AcDbObject& obj, const WriteContext& ctx, const ObjectRecord& record) {
    const auto& pl = static_cast<const AcDbPolyline&>(obj);
    std::uint64_t own = record.present & ~((1ull << 40) - 1);
    std::uint64_t entity = record.present & ((1ull << 40) - 1);
    double constant = 0;
    bool isConstant = pl.getConstantWidth(constant) == Acad::eOk;
    std::uint64_t expected = 0;
    if (isConstant && constant != 0) expected |= kLwConstantWidth;
    if (pl.elevation() != 0) expected |= kLwElevation;
    if (pl.thickness() != 0) expected |= kLwThickness;
    if (!(pl.normal() == AcGeVector3d::kZAxis)) expected |= kLwNormal;
    return record.extras.empty() && own == expected &&
           entity == entityTable().defaultPresence(obj, ctx);
}

// ---------------------------------------------------------------- HATCH

class Cursor {
  public:
    Cursor(Tags begin, Tags end, ReadContext& ctx) : t_(begin), end_(end), ctx_(ctx) {}
    bool at(int code) const { return t_ < end_ && t_->code == code; }
    bool done() const { return t_ >= end_; }
    Tags here() const { return t_; }
    bool real(int code, double& v) {
        if (!at(code) || !ctx_.real(*t_, v)) return ok_ = false;
        ++t_;
        return true;
    }
    bool integer(int code, std::int64_t& v) {
        if (!at(code) || !ctx_.integer(*t_, v)) return ok_ = false;
        ++t_;
        return true;
    }
    bool point(int code, AcGePoint2d& p) { return real(code, p.x) && real(code + 10, p.y); }
    bool optionalReal(int code, double& v) { return !at(code) || real(code, v); }
    std::string_view text(int code) {
        if (!at(code)) {
            ok_ = false;
            return {};
        }
        return (t_++)->value;
    }
    bool ok() const { return ok_; }
    void fail() { ok_ = false; }

  private:
    Tags t_;
    Tags end_;
    ReadContext& ctx_;
    bool ok_ = true;
};

bool readEdge(Cursor& c, bool withFitData, AcDbHatchEdge& e, ObjectRecord& record) {
    std::int64_t type = 0;
    if (!c.integer(72, type)) return false;
    e.type = static_cast<int>(type);
    std::int64_t ccw = 1;
    Tags angles = nullptr;
    switch (type) {
        case AcDbHatch::kLine:
            return c.point(10, e.start) && c.point(11, e.end);
        case AcDbHatch::kCirArc:
            if (!(c.point(10, e.center) && c.real(40, e.radius))) return false;
            angles = c.here();
            if (!(c.real(50, e.startAngle) && c.real(51, e.endAngle) && c.integer(73, ccw)))
                return false;
            break;
        case AcDbHatch::kEllArc: {
            AcGePoint2d axis;
            if (!(c.point(10, e.center) && c.point(11, axis) && c.real(40, e.minorRatio)))
                return false;
            angles = c.here();
            if (!(c.real(50, e.startAngle) && c.real(51, e.endAngle) && c.integer(73, ccw)))
                return false;
            e.majorAxis = AcGeVector2d(axis.x, axis.y);
            break;
        }
        case AcDbHatch::kSpline: {
            std::int64_t degree = 0, rational = 0, periodic = 0, knots = 0, controls = 0;
            if (!(c.integer(94, degree) && c.integer(73, rational) && c.integer(74, periodic) &&
                  c.integer(95, knots) && c.integer(96, controls)))
                return false;
            if (knots < 0 || controls < 0 || knots > 100000 || controls > 100000) return false;
            e.degree = static_cast<int>(degree);
            e.rational = rational != 0;
            e.periodic = periodic != 0;
            for (std::int64_t k = 0; k < knots; ++k) {
                double v = 0;
                if (!c.real(40, v)) return false;
                e.knots.push_back(v);
            }
            for (std::int64_t k = 0; k < controls; ++k) {
                AcGePoint2d p;
                if (!c.point(10, p)) return false;
                e.controlPoints.push_back(p);
                if (c.at(42)) {
                    double w = 1;
                    c.real(42, w);
                    e.weights.push_back(w);
                }
            }
            if (withFitData && c.at(97)) {
                std::int64_t fits = 0;
                c.integer(97, fits);
                if (fits < 0 || fits > 100000) return false;
                for (std::int64_t k = 0; k < fits; ++k) {
                    AcGePoint2d p;
                    if (!c.point(11, p)) return false;
                    e.fitPoints.push_back(p);
                }
                if (c.at(12)) {
                    AcGePoint2d a, b;
                    if (!(c.point(12, a) && c.point(13, b))) return false;
                    e.hasTangents = true;
                    e.startTangent = AcGeVector2d(a.x, a.y);
                    e.endTangent = AcGeVector2d(b.x, b.y);
                }
            }
            return c.ok();
        }
        default:
            return false;
    }
    e.counterClockwise = ccw != 0;
    e.startAngle = degToRad(e.startAngle);
    e.endAngle = degToRad(e.endAngle);
    ReadContext::spell(record, angles[0], e.startAngle, radToDeg(e.startAngle));
    ReadContext::spell(record, angles[1], e.endAngle, radToDeg(e.endAngle));
    return true;
}

enum : std::uint64_t { kHatchNoSeeds = 1ull << 40, kHatchPattern = 1ull << 41 };
// The anchor of the tags after the pattern (seed points, gradient), apart from the
// entity part's anchors.
constexpr int kHatchTail = FieldTable::kOwn;

AcDbObject* readHatch(const ParsedObject& p, ReadContext& ctx, ObjectRecord& record) {
    Tags split = classPart(p, "AcDbHatch");
    if (split == nullptr) return nullptr;
    auto hatch = std::make_unique<AcDbHatch>();
    entityTable().read(*hatch, bodyBegin(p), split, ctx, record);
    Cursor c(split + 1, bodyEnd(p), ctx);
    AcGePoint3d elevation;
    AcGeVector3d normal;
    Tags place = c.here();
    if (!(c.real(10, elevation.x) && c.real(20, elevation.y) && c.real(30, elevation.z) &&
          c.real(210, normal.x) && c.real(220, normal.y) && c.real(230, normal.z)))
        return nullptr;
    std::wstring name = ctx.wide(c.text(2));
    std::int64_t solid = 0, associative = 0, loops = 0;
    if (!(c.integer(70, solid) && c.integer(71, associative) && c.integer(91, loops)))
        return nullptr;
    if (loops < 0 || loops > 1000000) return nullptr;
    bool withFitData = p.type == "HATCH" && ctx.file.version >= "AC1024";
    for (std::int64_t i = 0; i < loops; ++i) {
        AcDbHatch::Loop loop;
        std::int64_t type = 0, count = 0;
        if (!c.integer(92, type)) return nullptr;
        loop.type = static_cast<Adesk::Int32>(type);
        if (type & AcDbHatch::kPolyline) {
            std::int64_t hasBulge = 0, closed = 0;
            if (!(c.integer(72, hasBulge) && c.integer(73, closed) && c.integer(93, count)))
                return nullptr;
            if (count < 0 || count > 10000000) return nullptr;
            loop.closed = closed != 0;
            for (std::int64_t k = 0; k < count; ++k) {
                AcGePoint2d v;
                double bulge = 0;
                if (!c.point(10, v)) return nullptr;
                if (hasBulge && !c.optionalReal(42, bulge)) return nullptr;
                loop.vertices.push_back(v);
                loop.bulges.push_back(bulge);
            }
        } else {
            if (!c.integer(93, count) || count < 0 || count > 10000000) return nullptr;
            for (std::int64_t k = 0; k < count; ++k) {
                AcDbHatchEdge e;
                if (!readEdge(c, withFitData, e, record)) return nullptr;
                loop.edges.push_back(std::move(e));
            }
        }
        std::int64_t sources = 0;
        if (!c.integer(97, sources) || sources < 0 || sources > 1000000) return nullptr;
        for (std::int64_t k = 0; k < sources; ++k) {
            std::string_view h = c.text(330);
            if (!c.ok()) return nullptr;
            loop.sources.push_back(ctx.idOf(h));
        }
        hatch->restoreLoop(std::move(loop));
    }
    std::int64_t style = 0, patternType = 1;
    if (!(c.integer(75, style) && c.integer(76, patternType))) return nullptr;
    if (style < 0 || style > 2 || patternType < 0 || patternType > 2) return nullptr;
    hatch->setHatchStyle(static_cast<AcDbHatch::HatchStyle>(style));
    hatch->setElevation(elevation.z);
    hatch->setNormal(normal);
    // The x and y of the elevation point mean nothing, and the normal is kept of unit
    // length: the file's own numbers are written back.
    AcGeVector3d unit = hatch->normal();
    double written[] = {0, 0, elevation.z, unit.x, unit.y, unit.z};
    for (int k = 0; k < 6; ++k)
        ReadContext::spell(record, place[k], written[k], written[k]);
    hatch->setAssociative(associative != 0);
    std::vector<AcDbHatchPatternLine> lines;
    if (c.at(52)) {
        // Written back also for a solid fill, which some programs give a pattern too.
        record.present |= kHatchPattern;
        Tags angleTag = c.here();
        double angle = 0, scale = 1;
        std::int64_t isDouble = 0, count = 0;
        if (!(c.real(52, angle) && c.real(41, scale) && c.integer(77, isDouble) &&
              c.integer(78, count)))
            return nullptr;
        if (count < 0 || count > 100000) return nullptr;
        for (std::int64_t k = 0; k < count; ++k) {
            AcDbHatchPatternLine line;
            std::int64_t dashes = 0;
            if (!(c.real(53, line.angle) && c.real(43, line.base.x) && c.real(44, line.base.y) &&
                  c.real(45, line.offset.x) && c.real(46, line.offset.y) && c.integer(79, dashes)))
                return nullptr;
            if (dashes < 0 || dashes > 10000) return nullptr;
            for (std::int64_t d = 0; d < dashes; ++d) {
                double v = 0;
                if (!c.real(49, v)) return nullptr;
                line.dashes.push_back(v);
            }
            lines.push_back(std::move(line));
        }
        hatch->restorePattern(AcDbHatch::kPreDefined, L"", false);  // setters need a pattern
        if (scale > 0) hatch->setPatternScale(scale);
        hatch->setPatternAngle(degToRad(angle));
        ReadContext::spell(record, *angleTag, hatch->patternAngle(),
                           radToDeg(hatch->patternAngle()));
        hatch->setPatternDouble(isDouble != 0);
        if (scale <= 0) return nullptr;
    }
    hatch->restorePattern(static_cast<AcDbHatch::HatchPatternType>(patternType), std::move(name),
                          solid != 0);
    hatch->restorePatternLines(std::move(lines));
    if (!c.ok()) return nullptr;
    bool seeds = false;
    for (Tags t = c.here(); t < bodyEnd(p); ++t) {
        if (t->code == 98) seeds = true;
        ctx.keep(record, kHatchTail, *t);
    }
    if (!seeds) record.present |= kHatchNoSeeds;
    return hatch.release();
}

void writeEdge(WriteContext& ctx, const AcDbHatchEdge& e, const ObjectRecord* record) {
    TagWriter& out = ctx.out;
    out.integer(72, e.type);
    switch (e.type) {
        case AcDbHatch::kLine:
            out.point(10, e.start.x, e.start.y);
            out.point(11, e.end.x, e.end.y);
            break;
        case AcDbHatch::kCirArc:
            out.point(10, e.center.x, e.center.y);
            out.real(40, e.radius);
            ctx.real(record, 50, e.startAngle, radToDeg(e.startAngle));
            ctx.real(record, 51, e.endAngle, radToDeg(e.endAngle));
            out.integer(73, e.counterClockwise ? 1 : 0);
            break;
        case AcDbHatch::kEllArc:
            out.point(10, e.center.x, e.center.y);
            out.point(11, e.majorAxis.x, e.majorAxis.y);
            out.real(40, e.minorRatio);
            ctx.real(record, 50, e.startAngle, radToDeg(e.startAngle));
            ctx.real(record, 51, e.endAngle, radToDeg(e.endAngle));
            out.integer(73, e.counterClockwise ? 1 : 0);
            break;
        case AcDbHatch::kSpline:
            out.integer(94, e.degree);
            out.integer(73, e.rational ? 1 : 0);
            out.integer(74, e.periodic ? 1 : 0);
            out.integer(95, static_cast<std::int64_t>(e.knots.size()));
            out.integer(96, static_cast<std::int64_t>(e.controlPoints.size()));
            for (double k : e.knots)
                out.real(40, k);
            for (std::size_t i = 0; i < e.controlPoints.size(); ++i) {
                out.point(10, e.controlPoints[i].x, e.controlPoints[i].y);
                if (i < e.weights.size()) out.real(42, e.weights[i]);
            }
            out.integer(97, static_cast<std::int64_t>(e.fitPoints.size()));
            for (const AcGePoint2d& f : e.fitPoints)
                out.point(11, f.x, f.y);
            if (e.hasTangents) {
                out.point(12, e.startTangent.x, e.startTangent.y);
                out.point(13, e.endTangent.x, e.endTangent.y);
            }
            break;
    }
}

void writeHatch(const AcDbObject& obj, WriteContext& ctx, const ObjectRecord* record) {
    const auto& hatch = static_cast<const AcDbHatch&>(obj);
    entityTable().write(obj, ctx, record);
    TagWriter& out = ctx.out;
    out.text(100, "AcDbHatch");
    ctx.point(record, 10, 0, 0, hatch.elevation());
    AcGeVector3d n = hatch.normal();
    ctx.point(record, 210, n.x, n.y, n.z);
    ctx.text(2, hatch.patternName());
    out.integer(70, hatch.isSolidFill() ? 1 : 0);
    // Associativity only holds while every boundary object is there.
    bool associative = hatch.associative();
    for (int i = 0; i < hatch.numLoops() && associative; ++i) {
        for (AcDbObjectId id : hatch.loopAt(i)->sources) {
            if (WriteContext::refOf(id) == 0) associative = false;
        }
    }
    out.integer(71, associative ? 1 : 0);
    out.integer(91, hatch.numLoops());
    for (int i = 0; i < hatch.numLoops(); ++i) {
        const AcDbHatch::Loop& loop = *hatch.loopAt(i);
        out.integer(92, loop.type);
        if (loop.isPolyline()) {
            bool bulges = false;
            for (double b : loop.bulges)
                bulges = bulges || b != 0;
            out.integer(72, bulges ? 1 : 0);
            out.integer(73, loop.closed ? 1 : 0);
            out.integer(93, static_cast<std::int64_t>(loop.vertices.size()));
            for (std::size_t k = 0; k < loop.vertices.size(); ++k) {
                out.point(10, loop.vertices[k].x, loop.vertices[k].y);
                if (bulges) out.real(42, k < loop.bulges.size() ? loop.bulges[k] : 0.0);
            }
        } else {
            out.integer(93, static_cast<std::int64_t>(loop.edges.size()));
            for (const AcDbHatchEdge& e : loop.edges)
                writeEdge(ctx, e, record);
        }
        out.integer(97, associative ? static_cast<std::int64_t>(loop.sources.size()) : 0);
        if (associative) {
            for (AcDbObjectId id : loop.sources)
                ctx.ref(330, id);
        }
    }
    out.integer(75, hatch.hatchStyle());
    out.integer(76, hatch.patternType());
    bool pattern = record && record->hasPresent && (record->present & kHatchPattern);
    if (!hatch.isSolidFill() || pattern) {
        ctx.real(record, 52, hatch.patternAngle(), radToDeg(hatch.patternAngle()));
        out.real(41, hatch.patternScale());
        out.integer(77, hatch.patternDouble() ? 1 : 0);
        out.integer(78, hatch.numPatternDefinitions());
        for (const AcDbHatchPatternLine& line : hatch.patternLines()) {
            out.real(53, line.angle);
            out.real(43, line.base.x);
            out.real(44, line.base.y);
            out.real(45, line.offset.x);
            out.real(46, line.offset.y);
            out.integer(79, static_cast<std::int64_t>(line.dashes.size()));
            for (double d : line.dashes)
                out.real(49, d);
        }
    }
    ctx.extras(record, kHatchTail);
    // Other programs expect the seed points; a hatch made here has none.
    if (record == nullptr || !record->hasPresent) out.integer(98, 0);
}

bool hatchCanonical(const AcDbObject& obj, const WriteContext& ctx, const ObjectRecord& record) {
    // Without a record the writer adds "98 0" after the pattern, as most files have it.
    std::uint64_t entity = record.present & ((1ull << 40) - 1);
    return record.extras.size() == 1 && record.extras[0].anchor == kHatchTail &&
           record.extras[0].tag.code == 98 && record.extras[0].tag.value == "0" &&
           !(record.present & kHatchNoSeeds) && entity == entityTable().defaultPresence(obj, ctx) &&
           (record.present & kHatchPattern) == (static_cast<const AcDbHatch&>(obj).isSolidFill()
                                                    ? std::uint64_t(0)
                                                    : std::uint64_t(kHatchPattern));
}

// ---------------------------------------------------------------- objects

enum : std::uint64_t { kDictHardFlag = 1, kDictHardEntries = 2, kXrecordCloning = 1 };

AcDbObject* readDictionary(const ParsedObject& p, ReadContext& ctx, ObjectRecord& record) {
    Tags begin = classPart(p, "AcDbDictionary");
    if (begin == nullptr) return nullptr;
    auto* dict = new AcDbDictionary();
    record.hasPresent = true;
    int anchor = 0;
    for (Tags t = bodyBegin(p); t < begin; ++t)
        ctx.keep(record, -1, *t);
    bool entryCodeSeen = false;
    for (Tags t = begin + 1; t < bodyEnd(p); ++t) {
        std::int64_t hard = 0;
        if (t->code == 280 && anchor == 0 && ctx.integer(*t, hard)) {
            dict->setHardOwner(hard != 0);
            record.present |= kDictHardFlag;
            anchor = 1;
            continue;
        }
        if (t->code == 3 && t + 1 < bodyEnd(p) && (t[1].code == 350 || t[1].code == 360)) {
            bool hard = t[1].code == 360;
            if (!entryCodeSeen) {
                entryCodeSeen = true;
                if (hard) record.present |= kDictHardEntries;
            } else if (hard != ((record.present & kDictHardEntries) != 0)) {
                delete dict;  // mixed entry codes: kept as read
                return nullptr;
            }
            dict->restoreEntry(ctx.wide(t->value), ctx.idOf(t[1].value));
            ++t;
            anchor = 2;
            continue;
        }
        ctx.keep(record, anchor, *t);
    }
    if (!entryCodeSeen && dict->isHardOwner()) record.present |= kDictHardEntries;
    return dict;
}

void writeDictionary(const AcDbObject& obj, WriteContext& ctx, const ObjectRecord* record) {
    const auto& dict = static_cast<const AcDbDictionary&>(obj);
    bool known = record && record->hasPresent;
    ctx.extras(record, -1);
    ctx.out.text(100, "AcDbDictionary");
    if (known ? (record->present & kDictHardFlag) : dict.isHardOwner()) {
        ctx.out.integer(280, dict.isHardOwner() ? 1 : 0);
    }
    ctx.extras(record, 0);
    ctx.extras(record, 1);
    bool hardEntries = known ? (record->present & kDictHardEntries) != 0 : dict.isHardOwner();
    for (const auto& [key, id] : dict.entries()) {
        if (WriteContext::refOf(id) == 0) continue;  // the entry's object was erased
        ctx.text(3, key);
        ctx.ref(hardEntries ? 360 : 350, id);
    }
    ctx.extras(record, 2);
}

bool dictionaryCanonical(const AcDbObject& obj, const WriteContext&, const ObjectRecord& record) {
    const auto& dict = static_cast<const AcDbDictionary&>(obj);
    std::uint64_t expected = dict.isHardOwner() ? kDictHardFlag | kDictHardEntries : 0;
    return record.extras.empty() && record.present == expected;
}

AcDbObject* readXrecord(const ParsedObject& p, ReadContext& ctx, ObjectRecord& record) {
    Tags begin = classPart(p, "AcDbXrecord");
    if (begin == nullptr) return nullptr;
    auto* xrecord = new AcDbXrecord();
    record.hasPresent = true;
    for (Tags t = bodyBegin(p); t < begin; ++t)
        ctx.keep(record, -1, *t);
    Tags t = begin + 1;
    // The first 280 after the marker is the cloning flag, not data.
    if (t < bodyEnd(p) && t->code == 280) {
        ctx.keep(record, 0, *t);
        ++t;
        record.present |= kXrecordCloning;
    }
    xrecord->restoreValues(readValues(ctx, t, bodyEnd(p)));
    return xrecord;
}

void writeXrecord(const AcDbObject& obj, WriteContext& ctx, const ObjectRecord* record) {
    ctx.extras(record, -1);
    ctx.out.text(100, "AcDbXrecord");
    if (record && record->hasPresent) {
        ctx.extras(record, 0);
    } else {
        ctx.out.integer(280, 1);
    }
    writeValues(ctx, static_cast<const AcDbXrecord&>(obj).values());
}

bool xrecordCanonical(const AcDbObject&, const WriteContext&, const ObjectRecord& record) {
    return record.extras.size() == 1 && record.extras[0].anchor == 0 &&
           record.extras[0].tag.code == 280 && record.extras[0].tag.value == "1" &&
           record.present == kXrecordCloning;
}

AcDbObject* readSortents(const ParsedObject& p, ReadContext& ctx, ObjectRecord& record) {
    Tags begin = classPart(p, "AcDbSortentsTable");
    if (begin == nullptr || begin + 1 >= bodyEnd(p) || begin[1].code != 330) return nullptr;
    auto* table = new AcDbSortentsTable();
    table->setBlockId(ctx.idOf(begin[1].value));
    for (Tags t = bodyBegin(p); t < begin; ++t)
        ctx.keep(record, -1, *t);
    for (Tags t = begin + 2; t < bodyEnd(p); ++t) {
        if (t->code == 331 && t + 1 < bodyEnd(p) && t[1].code == 5) {
            table->restoreEntry(ctx.idOf(t->value), ReadContext::parseHandle(t[1].value));
            ++t;
            continue;
        }
        ctx.keep(record, 1, *t);
    }
    return table;
}

void writeSortents(const AcDbObject& obj, WriteContext& ctx, const ObjectRecord* record) {
    const auto& table = static_cast<const AcDbSortentsTable&>(obj);
    ctx.extras(record, -1);
    ctx.out.text(100, "AcDbSortentsTable");
    ctx.ref(330, table.blockId());
    for (const auto& [id, sortHandle] : table.entries()) {
        // An entry of an erased entity goes; one the file gave as 0 stays as read.
        if (!id.isNull() && WriteContext::refOf(id) == 0) continue;
        ctx.ref(331, id);
        ctx.out.handle(5, sortHandle.value());
    }
    ctx.extras(record, 1);
}

bool keptOnlyCanonical(const AcDbObject&, const WriteContext&, const ObjectRecord& record) {
    return record.extras.empty();
}

// ---------------------------------------------------------------- table records

// The linetype's place among the fields of the layer table below.
constexpr int kLayerLinetypeField = 4;

const FieldTable& layerTable() {
    Field flags = intField(
        70, false, 0,
        [](const AcDbObject& o, const WriteContext&) -> std::int64_t {
            const auto& l = static_cast<const AcDbLayerTableRecord&>(o);
            return (l.isFrozen() ? 1 : 0) | (l.isLocked() ? 4 : 0);
        },
        [](AcDbObject& o, std::int64_t v) {
            if (v & ~std::int64_t(5)) return false;
            auto& l = static_cast<AcDbLayerTableRecord&>(o);
            l.setIsFrozen(v & 1);
            l.setIsLocked(v & 4);
            return true;
        });
    Field color = intField(
        62, false, 7,
        [](const AcDbObject& o, const WriteContext&) -> std::int64_t {
            const auto& l = static_cast<const AcDbLayerTableRecord&>(o);
            std::int64_t index = l.color().colorIndex();
            return l.isOff() ? -index : index;
        },
        [](AcDbObject& o, std::int64_t v) {
            auto& l = static_cast<AcDbLayerTableRecord&>(o);
            if (v == 0 || v < -255 || v > 255) return false;
            AcCmColor c;
            c.setColorIndex(static_cast<Adesk::UInt16>(v < 0 ? -v : v));
            l.setColor(c);
            l.setIsOff(v < 0);
            return true;
        });
    Field trueColor = intField(
        420, true, -1,
        [](const AcDbObject& o, const WriteContext&) -> std::int64_t {
            AcCmColor c = static_cast<const AcDbLayerTableRecord&>(o).color();
            return c.isByColor() ? (c.red() << 16 | c.green() << 8 | c.blue()) : -1;
        },
        [](AcDbObject& o, std::int64_t v) {
            if (v < 0 || v > 0xFFFFFF) return false;
            AcCmColor c;
            c.setRGB(static_cast<Adesk::UInt8>(v >> 16), static_cast<Adesk::UInt8>(v >> 8),
                     static_cast<Adesk::UInt8>(v));
            static_cast<AcDbLayerTableRecord&>(o).setColor(c);
            return true;
        });
    Field linetype;
    linetype.code = 6;
    linetype.kind = FieldKind::Text;
    linetype.get = [](const AcDbObject& o, FieldValue& v, const WriteContext&) {
        auto* record = arx::peek<AcDbLinetypeTableRecord>(
            static_cast<const AcDbLayerTableRecord&>(o).linetypeObjectId());
        v.text = record ? record->nameText() : L"Continuous";
    };
    linetype.set = [](AcDbObject&, const FieldValue&) { return false; };  // see readLayer
    Field plot = intField(
        290, true, 1,
        [](const AcDbObject& o, const WriteContext&) -> std::int64_t {
            return static_cast<const AcDbLayerTableRecord&>(o).isPlottable() ? 1 : 0;
        },
        [](AcDbObject& o, std::int64_t v) {
            return static_cast<AcDbLayerTableRecord&>(o).setIsPlottable(v != 0) == Acad::eOk;
        });
    Field weight = intField(
        370, true, -3,
        [](const AcDbObject& o, const WriteContext&) -> std::int64_t {
            return static_cast<const AcDbLayerTableRecord&>(o).lineWeight();
        },
        [](AcDbObject& o, std::int64_t v) {
            return static_cast<AcDbLayerTableRecord&>(o).setLineWeight(
                       static_cast<Adesk::Int16>(v)) == Acad::eOk;
        });
    static const FieldTable table(
        {{"AcDbSymbolTableRecord", {}},
         {"AcDbLayerTableRecord", {nameField(), flags, color, trueColor, linetype, plot, weight}}});
    return table;
}

AcDbObject* readLayer(const ParsedObject& p, ReadContext& ctx, ObjectRecord& record) {
    auto* layer = new AcDbLayerTableRecord();
    layerTable().read(*layer, bodyBegin(p), bodyEnd(p), ctx, record);
    // The linetype is named; its record is in the LTYPE table, read before. The table's
    // field refuses the name, which is taken here from the kept tag.
    auto* linetypes = arx::peek<AcDbLinetypeTable>(ctx.database.linetypeTableId());
    for (auto it = record.extras.begin(); it != record.extras.end() && linetypes; ++it) {
        if (it->tag.code != 6) continue;
        std::wstring name = db::utf8ToWide(it->tag.value);
        AcDbObjectId id;
        if (linetypes->getAt(name.c_str(), id) == Acad::eOk) {
            layer->setLinetypeObjectId(id);
            // Written from the record from now on, unless the file spelt it otherwise.
            if (arx::peek<AcDbLinetypeTableRecord>(id)->nameText() == name) {
                record.extras.erase(it);
                record.present |= std::uint64_t(1) << kLayerLinetypeField;
            }
        }
        break;
    }
    return layer;
}

const FieldTable& appTable() {
    Field flags = intField(
        70, false, 0, [](const AcDbObject&, const WriteContext&) -> std::int64_t { return 0; },
        [](AcDbObject&, std::int64_t v) { return v == 0; });
    static const FieldTable table(
        {{"AcDbSymbolTableRecord", {}}, {"AcDbRegAppTableRecord", {nameField(), flags}}});
    return table;
}

const FieldTable& blockRecordTable() {
    static const FieldTable table(
        {{"AcDbSymbolTableRecord", {}}, {"AcDbBlockTableRecord", {nameField()}}});
    return table;
}

const FieldTable& linetypeHeadTable() {
    Field comments = textField(
        3, false, L"",
        [](const AcDbObject& o) {
            const ACHAR* text = L"";
            static_cast<const AcDbLinetypeTableRecord&>(o).comments(text);
            return std::wstring(text);
        },
        [](AcDbObject& o, const std::wstring& s) {
            return static_cast<AcDbLinetypeTableRecord&>(o).setComments(s.c_str()) == Acad::eOk;
        });
    Field flags = intField(
        70, false, 0, [](const AcDbObject&, const WriteContext&) -> std::int64_t { return 0; },
        [](AcDbObject&, std::int64_t v) { return v == 0; });
    Field alignment = intField(
        72, false, 65, [](const AcDbObject&, const WriteContext&) -> std::int64_t { return 65; },
        [](AcDbObject&, std::int64_t v) { return v == 65; });
    Field count = intField(
        73, false, 0,
        [](const AcDbObject& o, const WriteContext&) -> std::int64_t {
            return static_cast<const AcDbLinetypeTableRecord&>(o).numDashes();
        },
        [](AcDbObject& o, std::int64_t v) {
            if (v < 0 || v > 12) return false;
            return static_cast<AcDbLinetypeTableRecord&>(o).setNumDashes(static_cast<int>(v)) ==
                   Acad::eOk;
        });
    Field length;
    length.code = 40;
    length.kind = FieldKind::Real;
    length.get = [](const AcDbObject& o, FieldValue& v, const WriteContext&) {
        v.real = static_cast<const AcDbLinetypeTableRecord&>(o).patternLength();
    };
    // The total is the sum of the dashes; one that is not is kept as written.
    length.set = [](AcDbObject&, const FieldValue&) { return false; };
    static const FieldTable table(
        {{"AcDbSymbolTableRecord", {}},
         {"AcDbLinetypeTableRecord", {nameField(), flags, comments, alignment, count, length}}});
    return table;
}

AcDbObject* readLinetype(const ParsedObject& p, ReadContext& ctx, ObjectRecord& record) {
    auto* linetype = new AcDbLinetypeTableRecord();
    Tags begin = bodyBegin(p), end = bodyEnd(p);
    Tags dashes = begin;
    while (dashes < end && dashes->code != 49)
        ++dashes;
    linetypeHeadTable().read(*linetype, begin, dashes, ctx, record);
    int index = 0;
    for (Tags t = dashes; t < end; ++t) {
        if (t->code == 49) {
            double d = 0;
            if (index < linetype->numDashes() && ctx.real(*t, d)) {
                linetype->setDashLengthAt(index++, d);
                continue;
            }
        }
        ctx.keep(record, 2000 + index, *t);
    }
    // The length field is kept as an extra when it is not the sum; check the sum.
    for (auto it = record.extras.begin(); it != record.extras.end(); ++it) {
        double total = 0;
        if (it->tag.code == 40 && parseReal(it->tag.value, total) &&
            total == linetype->patternLength()) {
            int anchor = it->anchor;
            record.extras.erase(it);
            record.present |= std::uint64_t(1) << 5;
            // Extras that followed the kept 40 belong after the field now.
            for (Extra& e : record.extras) {
                if (e.anchor == anchor) e.anchor = FieldTable::anchorOf(1, 5);
            }
            break;
        }
    }
    return linetype;
}

void writeLinetype(const AcDbObject& obj, WriteContext& ctx, const ObjectRecord* record) {
    const auto& linetype = static_cast<const AcDbLinetypeTableRecord&>(obj);
    linetypeHeadTable().write(obj, ctx, record);
    for (int i = 0; i < linetype.numDashes(); ++i) {
        ctx.out.real(49, linetype.dashLengthAt(i));
        if (record == nullptr) ctx.out.integer(74, 0);
        ctx.extras(record, 2001 + i);
    }
}

// Heads of the typed tables: the number of records, and what else the file had.
template <typename Table>
const FieldTable& tableHead() {
    Field count = intField(
        70, false, 0,
        [](const AcDbObject& o, const WriteContext&) -> std::int64_t {
            std::int64_t n = 0;
            for (AcDbObjectId id : static_cast<const AcDbSymbolTable&>(o).recordIds()) {
                if (WriteContext::handleOf(id) != 0) ++n;
            }
            return n;
        },
        [](AcDbObject&, std::int64_t) { return true; });
    static const FieldTable table({{"AcDbSymbolTable", {count}}});
    return table;
}

template <typename Table>
Codec headCodec(std::string_view name) {
    return Codec{name, &Table::desc,
                 [](const ParsedObject& p, ReadContext& ctx, ObjectRecord& r) -> AcDbObject* {
                     return readWithTable<Table>(tableHead<Table>(), p, ctx, r);
                 },
                 [](const AcDbObject& o, WriteContext& ctx, const ObjectRecord* r) {
                     tableHead<Table>().write(o, ctx, r);
                 },
                 [](const AcDbObject& o, const WriteContext& ctx, const ObjectRecord& r) {
                     return tableCanonical(tableHead<Table>(), o, ctx, r);
                 }};
}

const std::vector<Codec>& entityCodecs() {
    static const std::vector<Codec> codecs = {
        Codec{"LWPOLYLINE", &AcDbPolyline::desc, &readLwPolyline, &writeLwPolyline, &lwCanonical},
        KPLAN_TABLE_CODEC("LINE", AcDbLine, lineTable),
        KPLAN_TABLE_CODEC("CIRCLE", AcDbCircle, circleTable),
        KPLAN_TABLE_CODEC("ARC", AcDbArc, arcTable),
        KPLAN_TABLE_CODEC("TEXT", AcDbText, textTable),
        Codec{"MTEXT", &AcDbMText::desc, &readMText,
              [](const AcDbObject& o, WriteContext& ctx, const ObjectRecord* r) {
                  mtextTable().write(o, ctx, r);
              },
              [](const AcDbObject& o, const WriteContext& ctx, const ObjectRecord& r) {
                  return tableCanonical(mtextTable(), o, ctx, r);
              }},
        Codec{"HATCH", &AcDbHatch::desc, &readHatch, &writeHatch, &hatchCanonical},
        KPLAN_TABLE_CODEC("POLYLINE", AcDb2dPolyline, polyline2dTable),
        KPLAN_TABLE_CODEC("VERTEX", AcDb2dVertex, vertexTable),
        KPLAN_TABLE_CODEC("SEQEND", AcDbSequenceEnd, seqendTable),
        insertCodec(),
        attribCodec(),
        attdefCodec(),
        ellipseCodec(),
        splineCodec(),
    };
    return codecs;
}

const std::vector<Codec>& objectCodecs() {
    static const std::vector<Codec> codecs = {
        Codec{"DICTIONARY", &AcDbDictionary::desc, &readDictionary, &writeDictionary,
              &dictionaryCanonical},
        Codec{"XRECORD", &AcDbXrecord::desc, &readXrecord, &writeXrecord, &xrecordCanonical},
        Codec{"SORTENTSTABLE", &AcDbSortentsTable::desc, &readSortents, &writeSortents,
              &keptOnlyCanonical},
        Codec{"LAYER", &AcDbLayerTableRecord::desc, &readLayer,
              [](const AcDbObject& o, WriteContext& ctx, const ObjectRecord* r) {
                  layerTable().write(o, ctx, r);
              },
              [](const AcDbObject& o, const WriteContext& ctx, const ObjectRecord& r) {
                  return tableCanonical(layerTable(), o, ctx, r);
              }},
        KPLAN_TABLE_CODEC("APPID", AcDbRegAppTableRecord, appTable),
        KPLAN_TABLE_CODEC("BLOCK_RECORD", AcDbBlockTableRecord, blockRecordTable),
        Codec{"LTYPE", &AcDbLinetypeTableRecord::desc, &readLinetype, &writeLinetype,
              [](const AcDbObject&, const WriteContext&, const ObjectRecord&) { return false; }},
    };
    return codecs;
}

const std::vector<Codec>& headCodecs() {
    static const std::vector<Codec> codecs = {
        headCodec<AcDbLayerTable>("LAYER"),
        headCodec<AcDbLinetypeTable>("LTYPE"),
        headCodec<AcDbRegAppTable>("APPID"),
        headCodec<AcDbBlockTable>("BLOCK_RECORD"),
    };
    return codecs;
}

const Codec* find(const std::vector<Codec>& codecs, std::string_view name) {
    for (const Codec& c : codecs) {
        if (c.dxfName == name) return &c;
    }
    return nullptr;
}

}  // namespace

const Codec* entityCodec(std::string_view dxfName) {
    return find(entityCodecs(), dxfName);
}

const Codec* objectCodec(std::string_view dxfName) {
    return find(objectCodecs(), dxfName);
}

const Codec* tableCodec(std::string_view tableName) {
    return find(headCodecs(), tableName);
}

const Codec* codecOf(const AcDbObject& obj) {
    const AcRxClass* cls = obj.isA();
    for (const auto* list : {&entityCodecs(), &objectCodecs(), &headCodecs()}) {
        for (const Codec& c : *list) {
            if (c.cls() == cls) return &c;
        }
    }
    return nullptr;
}

}  // namespace dxf
