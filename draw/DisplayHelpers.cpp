#include "draw/DisplayHelpers.h"

#include "draw/Highlight.h"
#include "host/arx/acedads.h"
#include "host/arx/adscodes.h"
#include "host/kova/KovaCad.h"
#include "host/kova/KovaEnt.h"
#include "host/kova/KovaError.h"
#include "host/kova/KovaGeo.h"

namespace {

// Extents in world coordinates to user coordinates.
void toUser(const AcGePoint3d& a, const AcGePoint3d& b, AcGePoint3d& lowerLeft,
            AcGePoint3d& upperRight) {
    kova::geo::Wcs2ucs(a, lowerLeft);
    kova::geo::Wcs2ucs(b, upperRight);
}

// The entity's extents in user coordinates; false when it has none.
bool extentsOf(AcDbObjectId id, AcGePoint3d& lowerLeft, AcGePoint3d& upperRight) {
    if (id.isNull() || id.isErased()) return false;
    AcGePoint3d a, b;
    if (!kova::ent::GetEntRect(id, a, b)) return false;
    toUser(a, b, lowerLeft, upperRight);
    return true;
}

// The two forms differ in the command's spelling and the margins; both deliberately.
int zoomAround(const AcGePoint3d& lowerLeft, const AcGePoint3d& upperRight, const ACHAR* command,
               double marginX, double marginY) {
    ads_point a = {lowerLeft.x - marginX, lowerLeft.y - marginY, 0};
    ads_point b = {upperRight.x + marginX, upperRight.y + marginY, 0};
    return acedCommand(RTSTR, command, RTSTR, L"W", RTPOINT, a, RTPOINT, b, 0);
}

// Touching the view's border counts as outside.
int panTo(const AcGePoint3d& lowerLeft, const AcGePoint3d& upperRight) {
    AcGePoint3d viewLowerLeft, viewUpperRight;
    kova::cad::ScrlbrtPt(viewLowerLeft, viewUpperRight);
    bool inside = lowerLeft.x > viewLowerLeft.x && lowerLeft.y > viewLowerLeft.y &&
                  upperRight.x < viewUpperRight.x && upperRight.y < viewUpperRight.y;
    if (inside) return 0;
    return zoomAround(lowerLeft, upperRight, L"._ZOOM", 100, 60);
}

}  // namespace

int PanEnt(AcDbObjectId id) {
    return kova::Guarded(L"QMPlot::PanEnt", 0, [&] {
        AcGePoint3d lowerLeft, upperRight;
        if (!extentsOf(id, lowerLeft, upperRight)) return 0;
        return panTo(lowerLeft, upperRight);
    });
}

int PanEnts(const AcDbObjectIdArray& ids) {
    return kova::Guarded(L"QMPlot::PanEnts", 0, [&] {
        AcGePoint3d a, b, lowerLeft, upperRight;
        if (!kova::ent::GetEntsRect(ids, a, b)) return 0;
        toUser(a, b, lowerLeft, upperRight);
        return panTo(lowerLeft, upperRight);
    });
}

int ZoomEnt(AcDbObjectId id) {
    return kova::Guarded(L"QMPlot::ZoomEnt", 0, [&] {
        AcGePoint3d lowerLeft, upperRight;
        if (!extentsOf(id, lowerLeft, upperRight)) return 0;
        return zoomAround(lowerLeft, upperRight, L"ZOOM", 120, 80);
    });
}

int FZoomFlashObj(AcDbObjectId id) {
    return kova::Guarded(L"QMPlot::FZoomFlashObj", 0, [&] {
        if (ZoomEnt(id) != RTNORM) return 0;
        AcDbObjectIdArray one;
        one.append(id);
        return kova_ent_HighLightIds(one) == 1 ? 1 : 0;
    });
}
