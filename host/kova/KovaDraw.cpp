#include "host/kova/KovaDraw.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "host/arx/acedads.h"
#include "host/arx/dbpl.h"
#include "host/kova/CFRegion.h"
#include "host/kova/KovaEnt.h"

namespace kova::ent {

int DrawD(AcDbObjectId& id) {
    id = AcDbObjectId();
    std::vector<AcGePoint2d> points;
    ads_point last = {0, 0, 0};
    double elevation = 0;
    for (;;) {
        ads_point pt = {0, 0, 0};
        int rc = points.empty() ? acedGetPoint(nullptr, L"\n指定起点:", pt)
                                : acedGetPoint(last, L"\n指定下一点:", pt);
        if (rc == RTNONE || rc == RTKWORD) break;
        if (rc != RTNORM) return 0;
        if (points.empty()) elevation = pt[Z];
        points.emplace_back(pt[X], pt[Y]);
        last[X] = pt[X];
        last[Y] = pt[Y];
        last[Z] = pt[Z];
    }
    if (points.size() < 3) return 0;
    auto* pline = new AcDbPolyline();
    for (unsigned int i = 0; i < points.size(); ++i)
        pline->addVertexAt(i, points[i]);
    pline->setElevation(elevation);
    pline->setClosed(true);
    AcDbEntity* entity = pline;
    id = SafeAddToDb(entity);
    return id.isNull() ? 0 : 1;
}

int GetIdsAsAreaOrder(AcDbObjectIdArray& ids) {
    std::vector<std::pair<double, AcDbObjectId>> byArea;
    for (AcDbObjectId id : ids) {
        double area = 0;
        GetArea(id, area);
        byArea.emplace_back(area, id);
    }
    std::stable_sort(byArea.begin(), byArea.end(),
                     [](const auto& a, const auto& b) { return a.first > b.first; });
    for (std::size_t i = 0; i < byArea.size(); ++i)
        ids[static_cast<int>(i)] = byArea[i].second;
    return ids.length();
}

}  // namespace kova::ent

namespace KovaCad::Fun {

int PlineToRegionEx(AcDbObjectId curve, AcDbObjectId& region) {
    return kova::CFRegion::PlineToRegion(curve, region);
}

}  // namespace KovaCad::Fun
