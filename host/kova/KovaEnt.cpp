#include "host/kova/KovaEnt.h"

#include <cmath>
#include <set>

#include "host/arx/acedads.h"
#include "host/arx/dbapserv.h"
#include "host/arx/dbents.h"
#include "host/arx/dbpl.h"
#include "host/arx/dbsymtb.h"
#include "host/arx/peek.h"
#include "host/kova/KovaGeo.h"

namespace kova::ent {

namespace {

constexpr double kPi = 3.14159265358979323846;

// The outline of a curve entity as GetCurveParam gives it.
bool outlineOf(const AcDbEntity* ent, AcGePoint3dArray& points, AcGeDoubleArray& bulges) {
    points.removeAll();
    bulges.removeAll();
    bool closed = true;
    // Kept from call to call: outlines are read by the hundred thousand.
    thread_local std::vector<AcGePoint2d> vertices;
    thread_local std::vector<double> vertexBulges;
    vertices.clear();
    vertexBulges.clear();
    double elevation = 0;
    if (auto* pline = AcDbPolyline::cast(ent)) {
        pline->collect(vertices, vertexBulges);
        elevation = pline->elevation();
        closed = pline->isClosed();
    } else if (auto* pline2d = AcDb2dPolyline::cast(ent)) {
        pline2d->collect(vertices, vertexBulges);
        elevation = pline2d->elevation();
        closed = pline2d->isClosed();
    } else if (auto* circle = AcDbCircle::cast(ent)) {
        AcGePoint3d c = circle->center();
        double r = circle->radius();
        if (!(r > 0)) return false;
        points.append({c.x + r, c.y, c.z});
        points.append({c.x - r, c.y, c.z});
        bulges.append(1.0);
        bulges.append(1.0);
    } else if (auto* line = AcDbLine::cast(ent)) {
        points.append(line->startPoint());
        points.append(line->endPoint());
        bulges.append(0.0);
        bulges.append(0.0);
        closed = false;
    } else if (auto* arc = AcDbArc::cast(ent)) {
        AcGePoint3d c = arc->center();
        double r = arc->radius();
        double a0 = arc->startAngle(), a1 = a0 + arc->totalAngle();
        points.append({c.x + r * std::cos(a0), c.y + r * std::sin(a0), c.z});
        points.append({c.x + r * std::cos(a1), c.y + r * std::sin(a1), c.z});
        bulges.append(std::tan(arc->totalAngle() / 4));
        bulges.append(0.0);
        closed = false;
    } else {
        return false;
    }
    points.setPhysicalLength(static_cast<int>(vertices.size()));
    bulges.setPhysicalLength(static_cast<int>(vertices.size()));
    for (std::size_t i = 0; i < vertices.size(); ++i) {
        points.append({vertices[i].x, vertices[i].y, elevation});
        bulges.append(vertexBulges[i]);
    }
    if (!closed && bulges.length() > 0) bulges.last() = 0.0;
    return points.length() > 0;
}

AcDbDatabase* orWorking(AcDbDatabase* database) {
    return database ? database : acdbHostApplicationServices()->workingDatabase();
}

}  // namespace

int FIsValidId(AcDbObjectId id) {
    return !id.isNull() && !id.isErased() && arx::peekObject(id) != nullptr ? 1 : 0;
}

AcDbObjectId AddToDb(AcDbEntity* entity, AcDbDatabase* database) {
    database = orWorking(database);
    if (entity == nullptr || database == nullptr || entity->isDatabaseResident()) return {};
    AcDbBlockTableRecord* space = nullptr;
    if (acdbOpenObject(space, database->currentSpaceId(), AcDb::kForWrite) != Acad::eOk) return {};
    AcDbObjectId id;
    Acad::ErrorStatus es = space->appendAcDbEntity(id, entity);
    space->close();
    if (es != Acad::eOk) return {};
    entity->close();
    return id;
}

AcDbObjectId SafeAddToDb(AcDbEntity*& entity, AcDbDatabase* database) {
    if (entity == nullptr) return {};
    AcDbObjectId id = AddToDb(entity, database);
    if (id.isNull() && !entity->isDatabaseResident()) delete entity;
    entity = nullptr;
    return id;
}

int HandOverTo(AcDbObjectId from, AcDbObjectId to) {
    if (!FIsValidId(from) || !FIsValidId(to) || from == to) return 0;
    AcDbEntity* source = nullptr;
    if (acdbOpenAcDbEntity(source, from, AcDb::kForRead) != Acad::eOk) return 0;
    AcDbEntity* target = nullptr;
    Acad::ErrorStatus es = acdbOpenAcDbEntity(target, to, AcDb::kForWrite);
    if (es == Acad::eOk) {
        es = target->setPropertiesFrom(source);
        target->close();
    }
    source->close();
    return es == Acad::eOk ? 1 : 0;
}

int Erase(AcDbObjectId id) {
    if (!FIsValidId(id)) return 0;
    AcDbEntity* ent = nullptr;
    if (acdbOpenAcDbEntity(ent, id, AcDb::kForWrite) != Acad::eOk) return 0;
    Acad::ErrorStatus es = ent->erase();
    ent->close();
    return es == Acad::eOk ? 1 : 0;
}

int Erase(const AcDbObjectIdArray& ids) {
    int all = 1;
    for (AcDbObjectId id : ids) {
        if (!Erase(id)) all = 0;
    }
    return all;
}

AcDbObjectId Copy(AcDbObjectId id) {
    if (!FIsValidId(id)) return {};
    AcDbEntity* ent = nullptr;
    if (acdbOpenAcDbEntity(ent, id, AcDb::kForRead) != Acad::eOk) return {};
    AcDbEntity* copy = AcDbEntity::cast(ent->clone());
    AcDbObjectId owner = ent->ownerId();
    ent->close();
    if (copy == nullptr) return {};
    AcDbBlockTableRecord* block = nullptr;
    if (acdbOpenObject(block, owner, AcDb::kForWrite) != Acad::eOk) {
        delete copy;
        return {};
    }
    AcDbObjectId copyId;
    Acad::ErrorStatus es = block->appendAcDbEntity(copyId, copy);
    block->close();
    if (es != Acad::eOk) {
        delete copy;
        return {};
    }
    copy->close();
    return copyId;
}

int GetCurveParam(AcDbObjectId id, AcGePoint3dArray* points, AcGeDoubleArray* bulges) {
    if (points) points->removeAll();
    if (bulges) bulges->removeAll();
    if (!FIsValidId(id)) return 0;
    AcDbEntity* ent = nullptr;
    if (acdbOpenAcDbEntity(ent, id, AcDb::kForRead) != Acad::eOk) return 0;
    // Read straight into the caller's arrays when it gives both.
    AcGePoint3dArray p;
    AcGeDoubleArray b;
    AcGePoint3dArray& intoPoints = points && bulges ? *points : p;
    AcGeDoubleArray& intoBulges = points && bulges ? *bulges : b;
    bool ok = outlineOf(ent, intoPoints, intoBulges);
    ent->close();
    if (!ok) {
        intoPoints.removeAll();
        intoBulges.removeAll();
        return 0;
    }
    if (points && !bulges) *points = p;
    if (bulges && !points) *bulges = b;
    return 1;
}

int GetCurveParam(AcDbObjectId id, AcGePoint3dArray& points, AcGeDoubleArray& bulges) {
    return GetCurveParam(id, &points, &bulges);
}

int GetArea(AcDbObjectId id, double& area) {
    area = 0;
    if (!FIsValidId(id)) return 0;
    AcDbEntity* ent = nullptr;
    if (acdbOpenAcDbEntity(ent, id, AcDb::kForRead) != Acad::eOk) return 0;
    int result = 0;
    AcGePoint3dArray points;
    AcGeDoubleArray bulges;
    if (auto* circle = AcDbCircle::cast(ent)) {
        area = kPi * circle->radius() * circle->radius();
        result = 1;
    } else if (outlineOf(ent, points, bulges)) {
        area = kova::geo::GetPolyArea(points, bulges);
        result = 1;
    } else if (auto* curve = AcDbCurve::cast(ent)) {
        double a = 0;
        if (curve->getArea(a) == Acad::eOk) {
            area = std::fabs(a);
            result = 1;
        }
    }
    ent->close();
    return result;
}

int SSToIds(const ads_name ss, AcDbObjectIdArray& ids) {
    ids.removeAll();
    Adesk::Int32 length = 0;
    if (ss == nullptr || acedSSLength(ss, &length) != RTNORM) return 0;
    for (Adesk::Int32 i = 0; i < length; ++i) {
        ads_name name;
        AcDbObjectId id;
        if (acedSSName(ss, i, name) == RTNORM && acdbGetObjectId(id, name) == Acad::eOk) {
            ids.append(id);
        }
    }
    return ids.length();
}

int IdsToSS(const AcDbObjectIdArray& ids, ads_name ss) {
    ads_name_clear(ss);
    ads_name set = {0, 0};
    int added = 0;
    for (AcDbObjectId id : ids) {
        ads_name name;
        if (!FIsValidId(id) || acdbGetAdsName(name, id) != Acad::eOk) continue;
        if (added == 0) {
            if (acedSSAdd(name, nullptr, set) != RTNORM) return 0;
        } else if (acedSSAdd(name, set, set) != RTNORM) {
            continue;
        }
        ++added;
    }
    if (added == 0) return 0;
    ads_name_set(set, ss);
    return 1;
}

int FRemoveRepeatId(AcDbObjectIdArray& ids) {
    std::set<AcDbObjectId> seen;
    AcDbObjectIdArray kept;
    for (AcDbObjectId id : ids) {
        if (seen.insert(id).second) kept.append(id);
    }
    int dropped = ids.length() - kept.length();
    ids = kept;
    return dropped;
}

int GetEntRect(AcDbObjectId id, AcGePoint3d& lowerLeft, AcGePoint3d& upperRight) {
    if (!FIsValidId(id)) return 0;
    AcDbEntity* ent = nullptr;
    if (acdbOpenAcDbEntity(ent, id, AcDb::kForRead) != Acad::eOk) return 0;
    AcDbExtents extents;
    Acad::ErrorStatus es = ent->getGeomExtents(extents);
    ent->close();
    if (es != Acad::eOk || extents.isEmpty()) return 0;
    lowerLeft = extents.minPoint();
    upperRight = extents.maxPoint();
    return 1;
}

int GetEntsRect(const AcDbObjectIdArray& ids, AcGePoint3d& lowerLeft, AcGePoint3d& upperRight) {
    AcDbExtents all;
    for (AcDbObjectId id : ids) {
        AcGePoint3d lo, hi;
        if (GetEntRect(id, lo, hi)) all.addExt(AcDbExtents(lo, hi));
    }
    if (all.isEmpty()) return 0;
    lowerLeft = all.minPoint();
    upperRight = all.maxPoint();
    return 1;
}

int GetEntColor(AcDbObjectId id, AcCmColor& color) {
    if (!FIsValidId(id)) return 0;
    AcDbEntity* ent = nullptr;
    if (acdbOpenAcDbEntity(ent, id, AcDb::kForRead) != Acad::eOk) return 0;
    color = ent->color();
    ent->close();
    return 1;
}

int GetEntColor(AcDbObjectId id) {
    if (!FIsValidId(id)) return -1;
    AcDbEntity* ent = nullptr;
    if (acdbOpenAcDbEntity(ent, id, AcDb::kForRead) != Acad::eOk) return -1;
    AcCmColor color = ent->color();
    AcDbObjectId layerId = ent->layerId();
    ent->close();
    if (color.isByLayer()) {
        AcDbLayerTableRecord* layer = nullptr;
        if (acdbOpenObject(layer, layerId, AcDb::kForRead) != Acad::eOk) return -1;
        color = layer->color();
        layer->close();
    }
    if (color.isByBlock() || color.isByLayer()) return 7;
    return color.colorIndex();
}

int ChangeColor(AcDbObjectId id, unsigned short colorIndex) {
    if (!FIsValidId(id)) return 0;
    AcDbEntity* ent = nullptr;
    if (acdbOpenAcDbEntity(ent, id, AcDb::kForWrite) != Acad::eOk) return 0;
    Acad::ErrorStatus es = ent->setColorIndex(colorIndex);
    ent->close();
    return es == Acad::eOk ? 1 : 0;
}

int Hide(AcDbObjectId id, int hide) {
    if (!FIsValidId(id)) return 0;
    AcDbEntity* ent = nullptr;
    if (acdbOpenAcDbEntity(ent, id, AcDb::kForWrite) != Acad::eOk) return 0;
    Acad::ErrorStatus es = ent->setVisibility(hide ? AcDb::kInvisible : AcDb::kVisible);
    ent->close();
    return es == Acad::eOk ? 1 : 0;
}

}  // namespace kova::ent
