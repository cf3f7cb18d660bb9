#include "report/DrawingAreas.h"

#include "host/arx/dbcurve.h"
#include "host/kova/KovaEnt.h"
#include "record/DKBJXDInfo.h"
#include "record/DKKeys.h"
#include "report/Overlaps.h"
#include "stats/BoundaryClip.h"
#include "stats/BoundaryStats.h"
#include "stats/ClassTotals.h"
#include "stats/GpcAdaptor.h"

namespace kplan::report {

std::string handleOf(AcDbObjectId id) {
    ACHAR text[17] = {};
    id.handle().getIntoAsciiBuffer(text);
    return CString(text).ToUtf8();
}

Measured measureParcels(const AcDbObjectIdArray& parcels, AcDbObjectId boundary, Scenario scenario,
                        bool readMixRatio) {
    Measured m;
    m.scenario = scenario;
    m.scoped = !boundary.isNull();
    if (m.scoped) {
        kova::ent::GetArea(boundary, m.scopeHectares);
        m.scopeHectares /= 10000;
    }
    if (m.scoped) {
        // Every parcel clipped at once on all cores; within a stats::ClipSession the
        // answers are kept for the measures below.
        std::vector<stats::BoundaryClip::Answer> answers;
        stats::ClipOf(boundary)->classifyMany(parcels, answers);
    }
    AcDbObjectIdArray counted;
    for (AcDbObjectId id : parcels) {
        // An open outline holds no land: it is left out, and named.
        AcDbCurve* curve = nullptr;
        if (acdbOpenObject(curve, id, AcDb::kForRead) == Acad::eOk) {
            bool closed = curve->isClosed();
            curve->close();
            if (!closed) {
                m.openOutlines.push_back(handleOf(id));
                continue;
            }
        }
        ParcelArea p;
        CDKBJXDInfo record(id);
        if (!m.scoped) {
            record.GetArea(p.hectares);
        } else {
            int lies = FIsDKAndBoundaryInter(boundary, id);
            if (lies == -1) continue;
            if (lies == 0) {
                record.GetArea(p.hectares);
            } else {
                AcDbObjectIdArray one;
                one.append(id);
                FGetDKAreaByBoundary(boundary, one, p.hectares);
            }
        }
        counted.append(id);
        if (!(p.hectares > 1e-9)) m.zeroAreas.push_back(handleOf(id));
        CString code, ratio;
        record.GetData(dk::FS_DKXZ, code);
        if (readMixRatio) record.GetData(dk::FS_HHBL, ratio);
        p.handle = handleOf(id);
        p.code = code.ToUtf8();
        p.ratio = ratio.ToUtf8();
        m.parcels.push_back(std::move(p));
    }
    int people = 0;
    if (scenario == Scenario::Current) {
        GetXZDKAllRKSForGIS(counted, people);
    } else {
        GetGHDKAllRKSForGIS(counted, people);
    }
    m.population = people;
    Overlaps overlaps = findOverlaps(counted, boundary);
    m.overlapHectares = overlaps.hectares;
    m.overlapping = overlaps.handles;
    return m;
}

}  // namespace kplan::report
