#include "host/dxf/CurveCodecs.h"

#include <memory>

#include "host/arx/dbelipse.h"
#include "host/arx/dbspline.h"
#include "host/dxf/FieldTable.h"

namespace dxf {

namespace {

using Tags = const TagView*;

Tags markerOf(const ParsedObject& p, std::string_view marker) {
    for (const TagView& t : p.body) {
        if (t.code == 100 && t.value == marker) return &t;
    }
    return nullptr;
}

const FieldTable& entityPart() {
    static const FieldTable table({entitySubclass()});
    return table;
}

// ---------------------------------------------------------------- ELLIPSE

Field vectorField(int code, AcGeVector3d (AcDbEllipse::*get)() const,
                  Acad::ErrorStatus (AcDbEllipse::*set)(const AcGeVector3d&)) {
    Field f;
    f.code = code;
    f.kind = FieldKind::Point3;
    f.get = [get](const AcDbObject& o, FieldValue& v, const WriteContext&) {
        AcGeVector3d a = (static_cast<const AcDbEllipse&>(o).*get)();
        v.point = AcGePoint3d(a.x, a.y, a.z);
    };
    f.set = [set](AcDbObject& o, const FieldValue& v) {
        return (static_cast<AcDbEllipse&>(o).*set)(AcGeVector3d(v.point.x, v.point.y, v.point.z)) ==
               Acad::eOk;
    };
    return f;
}

const FieldTable& ellipseTable() {
    static const FieldTable table(
        {entitySubclass(),
         {"AcDbEllipse",
          {pointField<AcDbEllipse>(10, &AcDbEllipse::center, &AcDbEllipse::setCenter),
           vectorField(11, &AcDbEllipse::majorAxis, &AcDbEllipse::setMajorAxis),
           normalField<AcDbEllipse>(210, &AcDbEllipse::normal, &AcDbEllipse::setNormal),
           realField<AcDbEllipse>(40, &AcDbEllipse::radiusRatio, &AcDbEllipse::setRadiusRatio),
           realField<AcDbEllipse>(41, &AcDbEllipse::startParam, &AcDbEllipse::setStartParam),
           realField<AcDbEllipse>(42, &AcDbEllipse::endParam, &AcDbEllipse::setEndParam)}}});
    return table;
}

AcDbObject* readEllipse(const ParsedObject& p, ReadContext& ctx, ObjectRecord& record) {
    auto ellipse = std::make_unique<AcDbEllipse>();
    ellipseTable().read(*ellipse, p.body.data(), p.body.data() + p.body.size(), ctx, record);
    // An axis off the plane, a ratio above 1 or a number the ellipse refuses is no ellipse
    // the host can draw: kept as read.
    if (!ellipse->isValidShape()) return nullptr;
    for (const Extra& e : record.extras) {
        bool own = e.anchor >= FieldTable::anchorOf(1, -1) || e.anchor == FieldTable::kTail;
        bool field =
            (e.tag.code >= 10 && e.tag.code <= 42) || (e.tag.code >= 210 && e.tag.code <= 230);
        if (own && field) return nullptr;
    }
    return ellipse.release();
}

// ---------------------------------------------------------------- SPLINE

// Presence bits of the spline's own part, above those of the entity part.
enum : std::uint64_t {
    kSplineNormal = 1ull << 40,
    kSplineKnotTolerance = 1ull << 41,
    kSplineControlTolerance = 1ull << 42,
    kSplineFitTolerance = 1ull << 43,
    kSplineWeights = 1ull << 44,             // weights written for a non-rational spline
    kSplineWeightsInterleaved = 1ull << 45,  // each weight after its control point
    kSplineFitOnly = 1ull << 46,             // control points left to the reader
};
// Flag bits beyond closed, periodic, rational, planar and linear, kept from bit 48.
constexpr int kSplineOtherFlagsShift = 48;
constexpr std::int64_t kSplineKnownFlags = 31;

constexpr std::size_t kMostFitPointsSolved = 400;

// Anchors of the kept tags: after the counts and tolerances, and at the end.
constexpr int kSplineHead = FieldTable::kOwn, kSplineTail = FieldTable::kOwn + 1;

AcDbObject* readSpline(const ParsedObject& p, ReadContext& ctx, ObjectRecord& record) {
    Tags split = markerOf(p, "AcDbSpline");
    Tags end = p.body.data() + p.body.size();
    if (split == nullptr) return nullptr;
    auto spline = std::make_unique<AcDbSpline>();
    entityPart().read(*spline, p.body.data(), split, ctx, record);
    AcDbSpline::Data d;
    std::int64_t flags = 0, degree = -1, knots = -1, controls = -1, fits = -1;
    std::uint64_t bits = 0;
    bool ok = true;
    int anchor = kSplineHead;
    // A point of three tags (x, then y and z ten and twenty codes on); t ends on its last.
    auto point = [&](Tags& t, AcGePoint3d& q) {
        ok = ctx.real(*t, q.x) && t + 1 < end && t[1].code == t->code + 10 && ctx.real(t[1], q.y);
        if (!ok) return;
        ++t;
        if (t + 1 < end && t[1].code == t[-1].code + 20) {
            ++t;
            ok = ctx.real(*t, q.z);
        }
    };
    for (Tags t = split + 1; t < end && ok; ++t) {
        switch (t->code) {
            case 210: {
                AcGePoint3d n;
                point(t, n);
                d.normal = AcGeVector3d(n.x, n.y, n.z);
                bits |= kSplineNormal;
                continue;
            }
            case 70:
                ok = ctx.integer(*t, flags);
                continue;
            case 71:
                ok = ctx.integer(*t, degree);
                continue;
            case 72:
                ok = ctx.integer(*t, knots);
                continue;
            case 73:
                ok = ctx.integer(*t, controls);
                continue;
            case 74:
                ok = ctx.integer(*t, fits);
                continue;
            case 42:
                ok = ctx.real(*t, d.knotTolerance);
                bits |= kSplineKnotTolerance;
                continue;
            case 43:
                ok = ctx.real(*t, d.controlTolerance);
                bits |= kSplineControlTolerance;
                continue;
            case 44:
                ok = ctx.real(*t, d.fitTolerance);
                bits |= kSplineFitTolerance;
                continue;
            case 12: {
                AcGePoint3d v;
                point(t, v);
                d.startTangent = AcGeVector3d(v.x, v.y, v.z);
                d.hasStartTangent = true;
                continue;
            }
            case 13: {
                AcGePoint3d v;
                point(t, v);
                d.endTangent = AcGeVector3d(v.x, v.y, v.z);
                d.hasEndTangent = true;
                continue;
            }
            case 40:
                d.knots.emplace_back();
                ok = ctx.real(*t, d.knots.back());
                continue;
            case 41:
                if (!d.controlPoints.empty()) bits |= kSplineWeightsInterleaved;
                d.weights.emplace_back();
                ok = ctx.real(*t, d.weights.back());
                continue;
            case 10:
                d.controlPoints.emplace_back();
                point(t, d.controlPoints.back());
                anchor = kSplineTail;
                continue;
            case 11:
                d.fitPoints.emplace_back();
                point(t, d.fitPoints.back());
                anchor = kSplineTail;
                continue;
            default:
                break;
        }
        ctx.keep(record, anchor, *t);
    }
    if (!ok || degree < 1 || degree > 25) return nullptr;
    // The counts must be what follows them.
    if (knots != static_cast<std::int64_t>(d.knots.size()) ||
        controls != static_cast<std::int64_t>(d.controlPoints.size()) ||
        fits != static_cast<std::int64_t>(d.fitPoints.size()))
        return nullptr;
    d.degree = static_cast<int>(degree);
    d.closed = flags & 1;
    d.periodic = flags & 2;
    d.rational = flags & 4;
    d.planar = flags & 8;
    d.linear = flags & 16;
    if (flags < 0 || flags >= (1 << 15)) return nullptr;
    bits |= static_cast<std::uint64_t>(flags & ~kSplineKnownFlags) << kSplineOtherFlagsShift;
    if (!d.weights.empty() && !d.rational) bits |= kSplineWeights;
    if (!d.weights.empty() && d.weights.size() != d.controlPoints.size()) return nullptr;
    if (d.controlPoints.empty()) {
        // Only fit points: the control points are made here, and not written back. The
        // interpolation solves a dense system: a spline of very many is kept as read.
        if (d.fitPoints.size() < 2 || d.fitPoints.size() > kMostFitPointsSolved) return nullptr;
        AcGePoint3dArray fitPoints;
        for (const AcGePoint3d& q : d.fitPoints)
            fitPoints.append(q);
        AcDbSpline made(fitPoints, d.hasStartTangent ? d.startTangent : AcGeVector3d(),
                        d.hasEndTangent ? d.endTangent : AcGeVector3d(), d.degree + 1,
                        d.fitTolerance);
        if (made.numControlPoints() == 0) return nullptr;
        AcDbSpline::Data computed = made.data();
        d.controlPoints = computed.controlPoints;
        d.knots = computed.knots;
        d.degree = computed.degree;
        if (d.degree != degree) return nullptr;
        d.weights.clear();
        bits |= kSplineFitOnly;
    } else if (d.controlPoints.size() < static_cast<std::size_t>(degree) + 1 ||
               d.knots.size() != d.controlPoints.size() + static_cast<std::size_t>(degree) + 1 ||
               (d.rational && d.weights.size() != d.controlPoints.size())) {
        return nullptr;
    }
    for (std::size_t i = 1; i < d.knots.size(); ++i) {
        if (d.knots[i] < d.knots[i - 1]) return nullptr;
    }
    spline->restore(d);
    record.present |= bits;
    return spline.release();
}

void writeSpline(const AcDbObject& obj, WriteContext& ctx, const ObjectRecord* record) {
    const auto& spline = static_cast<const AcDbSpline&>(obj);
    entityPart().write(obj, ctx, record);
    bool known = record && record->hasPresent;
    std::uint64_t bits = known ? record->present : 0;
    AcDbSpline::Data d = spline.data();
    TagWriter& out = ctx.out;
    out.text(100, "AcDbSpline");
    if ((bits & kSplineNormal) || (d.planar && !(d.normal == AcGeVector3d::kZAxis)))
        out.point(210, d.normal.x, d.normal.y, d.normal.z);
    std::int64_t flags = (d.closed ? 1 : 0) | (d.periodic ? 2 : 0) | (d.rational ? 4 : 0) |
                         (d.planar ? 8 : 0) | (d.linear ? 16 : 0);
    flags |= static_cast<std::int64_t>(bits >> kSplineOtherFlagsShift);
    bool fitOnly = (bits & kSplineFitOnly) && !d.fitPoints.empty();
    std::size_t controls = fitOnly ? 0 : d.controlPoints.size();
    out.integer(70, flags);
    out.integer(71, d.degree);
    out.integer(72, fitOnly ? 0 : static_cast<std::int64_t>(d.knots.size()));
    out.integer(73, static_cast<std::int64_t>(controls));
    out.integer(74, static_cast<std::int64_t>(d.fitPoints.size()));
    if (!known || (bits & kSplineKnotTolerance)) out.real(42, d.knotTolerance);
    if (!known || (bits & kSplineControlTolerance)) out.real(43, d.controlTolerance);
    if ((bits & kSplineFitTolerance) || (!known && !d.fitPoints.empty()))
        out.real(44, d.fitTolerance);
    if (d.hasStartTangent) out.point(12, d.startTangent.x, d.startTangent.y, d.startTangent.z);
    if (d.hasEndTangent) out.point(13, d.endTangent.x, d.endTangent.y, d.endTangent.z);
    ctx.extras(record, kSplineHead);
    if (!fitOnly) {
        for (double k : d.knots)
            out.real(40, k);
    }
    bool weights = !fitOnly && (d.rational || (bits & kSplineWeights));
    bool interleaved = bits & kSplineWeightsInterleaved;
    auto weight = [&](std::size_t i) { out.real(41, i < d.weights.size() ? d.weights[i] : 1.0); };
    if (weights && !interleaved) {
        for (std::size_t i = 0; i < controls; ++i)
            weight(i);
    }
    for (std::size_t i = 0; i < controls; ++i) {
        const AcGePoint3d& q = d.controlPoints[i];
        out.point(10, q.x, q.y, q.z);
        if (weights && interleaved) weight(i);
    }
    for (const AcGePoint3d& q : d.fitPoints)
        out.point(11, q.x, q.y, q.z);
    ctx.extras(record, kSplineTail);
}

bool splineCanonical(const AcDbObject& obj, const WriteContext& ctx, const ObjectRecord& record) {
    const auto& spline = static_cast<const AcDbSpline&>(obj);
    std::uint64_t own = record.present & ~((1ull << 40) - 1);
    std::uint64_t entity = record.present & ((1ull << 40) - 1);
    std::uint64_t expected = kSplineKnotTolerance | kSplineControlTolerance;
    if (spline.hasFitData()) expected |= kSplineFitTolerance;
    if (spline.isPlanar() && !(spline.normal() == AcGeVector3d::kZAxis)) expected |= kSplineNormal;
    return record.extras.empty() && own == expected &&
           entity == entityPart().defaultPresence(obj, ctx);
}

}  // namespace

Codec ellipseCodec() {
    return Codec{"ELLIPSE", &AcDbEllipse::desc, &readEllipse,
                 [](const AcDbObject& o, WriteContext& ctx, const ObjectRecord* r) {
                     ellipseTable().write(o, ctx, r);
                 },
                 [](const AcDbObject& o, const WriteContext& ctx, const ObjectRecord& r) {
                     return r.extras.empty() && r.present == ellipseTable().defaultPresence(o, ctx);
                 }};
}

Codec splineCodec() {
    return Codec{"SPLINE", &AcDbSpline::desc, &readSpline, &writeSpline, &splineCanonical};
}

}  // namespace dxf
