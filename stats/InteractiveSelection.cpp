#include "stats/InteractiveSelection.h"

#include "draw/DisplayHelpers.h"
#include "draw/Hatching.h"
#include "draw/Highlight.h"
#include "draw/ParcelVisibility.h"
#include "host/arx/acedads.h"
#include "host/arx/acutads.h"
#include "host/arx/dbents.h"
#include "host/arx/dbpl.h"
#include "host/kova/FConBase.h"
#include "host/kova/KovaCad.h"
#include "host/kova/KovaDat.h"
#include "host/kova/KovaDraw.h"
#include "host/kova/KovaEnt.h"
#include "host/kova/KovaRegion.h"
#include "host/kova/KovaSelSet.h"
#include "host/kova/KovaSysVar.h"
#include "record/DKKeys.h"
#include "record/XDataAccess.h"
#include "stats/BoundarySelection.h"

namespace {

constexpr const ACHAR* kScopeApps = L"FAPP_GHFWX,FAPP_GHDY,FAPP_GHJF";

// Closed "*POLYLINE" entities of the current space carrying xdata of the apps.
resbuf* spaceFilter(const ACHAR* apps) {
    return acutBuildList(RTDXF0, L"*POLYLINE", 67, kova::cad::IsPaperSpace(), -3, 1001, apps, 0);
}

AcDbObjectIdArray scopeLines(const ACHAR* apps) {
    AcDbObjectIdArray ids;
    resbuf* filter = spaceFilter(apps);
    kova::CFArxSelSet selection;
    if (selection.allSelect(filter) == kova::CFArxSelSet::kSelected) selection.asArray(ids);
    acutRelRb(filter);
    kova::ent::GetIdsAsAreaOrder(ids);
    return ids;
}

AcDbObjectId highlight(AcDbObjectId id) {
    return FColorPolylineViewGL(id, 4, 0, 4.0);
}

// The outline drawn with the snaps a planner needs on: endpoint, intersection and
// nearest, the snap-off bit cleared; the old mode comes back when the holder goes.
AcDbObjectId drawScopeLine() {
    int old = 0x221;
    if (!kova::cad::GetSysVar(L"osmode", old)) old = 0x221;
    kova::CSysVar snaps(L"OSMODE", (old & 0x3FFF) | 0x221);
    FConBase::CFReginGen gen;
    gen.SetSelType(4);
    AcDbObjectId id;
    gen.GetNoClosePloyLine(id, 4);
    return id;
}

AcDbObjectId pickOrDraw() {
    acedInitGet(0, L"D");
    ads_name name = {0, 0};
    ads_point picked = {0, 0, 0};
    int rc = acedEntSel(L"\n选择范围线[绘制范围线(D)]:", name, picked);
    if (rc == RTKWORD) return drawScopeLine();
    if (rc != RTNORM) return {};
    AcDbObjectId id;
    if (acdbGetObjectId(id, name) != Acad::eOk) return {};
    AcDbEntity* entity = nullptr;
    if (acdbOpenAcDbEntity(entity, id, AcDb::kForRead) != Acad::eOk) return {};
    bool polyline = AcDbPolyline::cast(entity) || AcDb2dPolyline::cast(entity);
    entity->close();
    return polyline ? id : AcDbObjectId();
}

}  // namespace

int KovaSelectGHFWX(AcDbObjectIdArray& scopes) {
    AcDbObjectIdArray lines = scopeLines(dk::FAPP_GHFWX);
    int appended = 0;
    if (lines.isEmpty()) {
        AcDbObjectId id = pickOrDraw();
        if (!id.isNull()) {
            scopes.append(id);
            appended = 1;
        }
    } else {
        AcDbObjectId copy = highlight(lines[0]);
        int answer = KovaIsConfirm(L"是否按指定范围线", 1);
        kova::ent::Erase(copy);
        if (answer == 1) {
            highlight(lines[0]);
            scopes.append(lines[0]);
            appended = 1;
        }
        if (answer == 0) {
            KovaDelBlueLine(lines);
            AcDbObjectId id = pickOrDraw();
            if (!id.isNull()) {
                scopes.append(id);
                appended = 1;
            }
        }
    }
    KovaDelBlueLine(lines);
    return appended;
}

namespace {

// The scope lines the user points at; a line pointed at twice is dropped again.
// False when the user cancelled or chose nothing.
bool pointAtScopeLines(const AcDbObjectIdArray& lines, AcDbObjectIdArray& chosen) {
    for (;;) {
        ads_point pt = {0, 0, 0};
        int rc = acedGetPoint(nullptr, L"\n点选规划范围线:", pt);
        if (rc == RTCAN) return false;
        if (rc != RTNORM) break;
        AcDbObjectId id;
        if (!kova::ent::GetRegionEdgeId(AcGePoint3d(pt[X], pt[Y], pt[Z]), lines, id)) continue;
        int at = -1;
        if (!chosen.find(id, at)) {
            highlight(id);
            chosen.append(id);
        } else {
            chosen.removeAt(at);
            FUnColorPolylineViewGL(id);
        }
    }
    return !chosen.isEmpty();
}

// The parcels of the statistic without a scope line; false when the dialogue ends.
bool chooseWithoutScope(AcDbObjectIdArray& scopes, double& totalArea, AcDbObjectIdArray& found,
                        const resbuf* parcelFilter) {
    if (KovaIsConfirm(L"无规划范围线，是否继续统计", 1) != 1) return false;
    acedInitGet(0, L"S F D");
    ACHAR mode[132] = {0};
    int rc = acedGetKword(L"\n确定统计方式[选地块(S)/选闭合线(F)/绘闭合线(D)]<S>:", mode, 132);
    if (rc == RTNONE) {
        mode[0] = L'S';
        mode[1] = 0;
    } else if (rc != RTNORM) {
        return false;
    }
    if (mode[0] == L'S') {
        kova::CFArxSelSet selection;
        if (selection.userSelect(L"\n选择要统计的地块[全部(ALL)]:", nullptr, parcelFilter) !=
            kova::CFArxSelSet::kSelected)
            return false;
        selection.asArray(found);
        if (found.isEmpty()) return false;
        ads_real typed = 0;
        rc = acedGetReal(L"\n输入总用地面积<不确定>:", &typed);
        if (rc == RTNORM)
            totalArea = typed;
        else if (rc != RTNONE)
            return false;
        return true;
    }
    if (mode[0] == L'F') {
        resbuf* closed = acutBuildList(RTDXF0, L"*POLYLINE", 70, 1, 0);
        kova::CFArxSelSet selection;
        auto status = selection.userSelect(L"\n选择闭合线:", nullptr, closed);
        acutRelRb(closed);
        if (status != kova::CFArxSelSet::kSelected) return false;
        selection.asArray(scopes);
        return true;
    }
    AcDbObjectId drawn;
    if (!kova::ent::DrawD(drawn)) return false;
    found = FSSGetByEntBoundaryZoomIds(drawn, parcelFilter, 0, -0.5, 1);
    double area = 0;
    kova::ent::GetArea(drawn, area);
    totalArea = area * 0.0001;
    kova::ent::Erase(drawn);
    return !found.isEmpty();
}

}  // namespace

int KovaSelectPlot(AcDbObjectIdArray& scopes, double& totalArea, AcDbObjectIdArray& parcels) {
    AcDbObjectIdArray lines = scopeLines(kScopeApps);
    resbuf* parcelFilter = spaceFilter(dk::LIST_GHXZDK);
    AcDbObjectIdArray chosen, found;
    bool go = true;
    if (!lines.isEmpty()) {
        PanEnt(lines[0]);
        AcDbObjectId copy = highlight(lines[0]);
        int answer = KovaIsConfirm(L"是否按指定规划范围线统计", 1);
        kova::ent::Erase(copy);
        if (answer == 1) {
            highlight(lines[0]);
            chosen.append(lines[0]);
        } else if (answer == 0) {
            KovaDelBlueLine(lines);
            go = pointAtScopeLines(lines, chosen);
        } else {
            go = false;
        }
    } else {
        go = chooseWithoutScope(chosen, totalArea, found, parcelFilter);
    }
    int written = 0;
    if (go) {
        if (!chosen.isEmpty()) {
            AcDbObjectIdArray inScope;
            for (AcDbObjectId line : chosen) {
                inScope.append(FSSGetByEntBoundaryZoomIds(line, parcelFilter, 0, -0.5, 1));
                kova::ent::FRemoveRepeatId(inScope);
            }
            scopes = chosen;
            parcels = inScope;
            written = 1;
        } else if (!found.isEmpty()) {
            parcels = found;
            written = 1;
        }
    }
    acutRelRb(parcelFilter);
    KovaDelBlueLine(lines);
    return written;
}

int FPreViewAllPlot(AcDbObjectId boundary, const AcDbObjectIdArray& parcels,
                    const AcDbObjectIdArray& crossing, AcDbObjectIdArray& hatches) {
    if (!kova::ent::FIsValidId(boundary) || parcels.isEmpty()) return 0;
    AcDbObjectId scope;
    if (!KovaCad::Fun::PlineToRegionEx(boundary, scope)) return 0;
    for (AcDbObjectId parcel : parcels) {
        if (!crossing.contains(parcel)) {
            FHideDK(parcel, 0);
            continue;
        }
        AcDbObjectId region;
        if (!KovaCad::Fun::PlineToRegionEx(parcel, region)) continue;
        int color = kova::ent::GetEntColor(parcel);
        if (color < 0) color = 7;
        AcDbObjectIdArray linked, islands;
        kova::dat::GetSoftIds(parcel, dk::LINK_ISLAND, linked);
        for (AcDbObjectId island : linked) {
            AcDbObjectId r;
            if (kova::ent::FIsValidId(island) && KovaCad::Fun::PlineToRegionEx(island, r))
                islands.append(r);
        }
        AcDbObjectId holes;
        if (islands.length() == 1) {
            holes = islands[0];
        } else if (islands.length() > 1) {
            FConBase::CFReginGen::UnionMutilRegion(islands, holes);
            kova::ent::Erase(islands);
        }
        if (!holes.isNull()) {
            AcDbObjectId cut;
            if (FConBase::CFReginGen::SubtractRegion(region, holes, cut, 1, 0)) {
                kova::ent::Erase(region);
                region = cut;
            }
            kova::ent::Erase(holes);
        }
        AcDbObjectId part, hatch;
        if (FConBase::CFReginGen::SubtractRegion(scope, region, part, 0, 1) &&
            FHatch(part, hatch)) {
            kova::ent::ChangeColor(hatch, static_cast<unsigned short>(color));
            hatches.append(hatch);
        }
        kova::ent::Erase(part);
        kova::ent::Erase(region);
    }
    kova::ent::Erase(scope);
    return 1;
}
