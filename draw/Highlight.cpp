#include "draw/Highlight.h"

#include "host/arx/dbpl.h"
#include "host/kova/KovaDat.h"
#include "host/kova/KovaEnt.h"
#include "host/kova/KovaError.h"

namespace {

int highlightAll(const AcDbObjectIdArray& ids, bool on) {
    int done = 0;
    for (AcDbObjectId id : ids) {
        if (!kova::ent::FIsValidId(id)) continue;
        AcDbEntity* entity = nullptr;
        if (acdbOpenAcDbEntity(entity, id, AcDb::kForRead) != Acad::eOk) continue;
        Acad::ErrorStatus es = on ? entity->highlight() : entity->unhighlight();
        entity->close();
        if (es == Acad::eOk) ++done;
    }
    return done;
}

}  // namespace

int kova_ent_HighLightIds(const AcDbObjectIdArray& ids) {
    return kova::Guarded(L"kova_ent_HighLightIds", 0, [&] { return highlightAll(ids, true); });
}

int kova_ent_UnHighLightIds(const AcDbObjectIdArray& ids) {
    return kova::Guarded(L"kova_ent_UnHighLightIds", 0, [&] { return highlightAll(ids, false); });
}

int KovaDelBlueLine(AcDbObjectId id) {
    return kova::Guarded(L"KovaDelBlueLine", 0, [&] {
        if (!kova::ent::FIsValidId(id)) return 0;
        AcDbObjectIdArray lines;
        kova::dat::GetSoftIds(id, kColorLineLink, lines);
        int erased = 0;
        for (AcDbObjectId line : lines) {
            if (line != id) erased += kova::ent::Erase(line);
        }
        kova::dat::RemoveSoftIds(id, kColorLineLink);
        return erased;
    });
}

int KovaDelBlueLine(const AcDbObjectIdArray& ids) {
    int erased = 0;
    for (AcDbObjectId id : ids)
        erased += KovaDelBlueLine(id);
    return erased;
}

AcDbObjectId FColorPolylineViewGL(AcDbObjectId id, int color, int lineType, double width) {
    (void)lineType;
    return kova::Guarded(L"FColorPolylineViewGL", AcDbObjectId(), [&] {
        AcGePoint3dArray points;
        AcGeDoubleArray bulges;
        if (!kova::ent::FIsValidId(id) || !kova::ent::GetCurveParam(id, points, bulges) ||
            points.length() < 2)
            return AcDbObjectId();
        auto* line = new AcDbPolyline();
        for (int i = 0; i < points.length(); ++i) {
            double bulge = i < bulges.length() ? bulges[i] : 0.0;
            line->addVertexAt(static_cast<unsigned int>(i), AcGePoint2d(points[i].x, points[i].y),
                              bulge);
        }
        line->setElevation(points[0].z);
        line->setClosed(true);
        line->setConstantWidth(width);
        line->setColorIndex(static_cast<Adesk::UInt16>(color));
        AcDbEntity* entity = line;
        AcDbObjectId copy = kova::ent::SafeAddToDb(entity, id.database());
        if (copy.isNull()) return copy;
        kova::dat::PasteSoftId(id, kColorLineLink, copy);
        return copy;
    });
}

int FUnColorPolylineViewGL(AcDbObjectId id) {
    return KovaDelBlueLine(id);
}
