#include "report/DrawingAreas.h"

#include <algorithm>
#include <memory>

#include "host/arx/dbcurve.h"
#include "host/kova/KovaEnt.h"
#include "host/kova/KovaStatusBar.h"
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

void clipParcels(const std::vector<const AcDbObjectIdArray*>& lists, AcDbObjectId boundary) {
    int total = 0;
    for (const AcDbObjectIdArray* list : lists)
        total += list->length();
    if (boundary.isNull() || total == 0) return;
    // The clipping is the long part of a run: a fiftieth at a time moves the bar while the
    // cores work. Each part ends with the cores waiting for the last clips, so the parts
    // are not made smaller.
    KovaCad::CStatusBarControl bar;
    bar.start(L"范围线内地块", total);
    std::shared_ptr<stats::BoundaryClip> clip = stats::ClipOf(boundary);
    std::vector<stats::BoundaryClip::Answer> answers;
    const int chunk = std::max(2048, total / 50);
    AcDbObjectIdArray part;
    auto clipPart = [&] {
        clip->classifyMany(part, answers);
        bar.step(part.length());
        part.setLogicalLength(0);
    };
    for (const AcDbObjectIdArray* list : lists) {
        for (AcDbObjectId id : *list) {
            part.append(id);
            if (part.length() == chunk) clipPart();
        }
    }
    if (!part.isEmpty()) clipPart();
    bar.end();
}

Measured measureParcels(const AcDbObjectIdArray& parcels, AcDbObjectId boundary, Scenario scenario,
                        bool readMixRatio, const Counted* known) {
    Measured m;
    m.scenario = scenario;
    m.scoped = !boundary.isNull();
    if (m.scoped) {
        kova::ent::GetArea(boundary, m.scopeHectares);
        m.scopeHectares /= 10000;
    }
    // Every parcel clipped at once on all cores; within a stats::ClipSession the answers
    // are kept for the measures below. The statistics clipped them already.
    if (known == nullptr) clipParcels({&parcels}, boundary);
    // The statistics' lists follow the parcels' order, so they are read side by side.
    int nextCounted = 0, nextCrossing = 0;
    bool fits = true, samePeople = true;
    auto knownPlace = [&](AcDbObjectId id) {
        int lies = -1;
        if (nextCounted < known->counted.length() && known->counted[nextCounted] == id) {
            ++nextCounted;
            lies = 0;
        }
        if (nextCrossing < known->crossing.length() && known->crossing[nextCrossing] == id) {
            ++nextCrossing;
            fits = fits && lies == 0;
            lies = 1;
        }
        return lies;
    };
    AcDbObjectIdArray counted;
    for (AcDbObjectId id : parcels) {
        int lies = known != nullptr ? knownPlace(id) : 0;
        // An open outline holds no land: it is left out, and named.
        AcDbCurve* curve = nullptr;
        if (acdbOpenObject(curve, id, AcDb::kForRead) == Acad::eOk) {
            bool closed = curve->isClosed();
            curve->close();
            if (!closed) {
                m.openOutlines.push_back(handleOf(id));
                // The statistics' population counted it.
                if (lies != -1) samePeople = false;
                continue;
            }
        }
        ParcelArea p;
        CDKBJXDInfo record(id);
        if (!m.scoped) {
            fits = fits && lies == 0;
            record.GetArea(p.hectares);
        } else {
            if (known == nullptr) lies = FIsDKAndBoundaryInter(boundary, id);
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
        p.handle = handleOf(id);
        if (!(p.hectares > 1e-9)) m.zeroAreas.push_back(p.handle);
        CString code, ratio;
        record.GetData(dk::FS_DKXZ, code);
        if (readMixRatio) record.GetData(dk::FS_HHBL, ratio);
        p.code = code.ToUtf8();
        p.ratio = ratio.ToUtf8();
        m.parcels.push_back(std::move(p));
    }
    if (known != nullptr) {
        if (!fits || nextCounted != known->counted.length() ||
            nextCrossing != known->crossing.length())
            return measureParcels(parcels, boundary, scenario, readMixRatio);
    }
    if (known != nullptr && samePeople) {
        m.population = known->population;
    } else {
        int people = 0;
        if (scenario == Scenario::Current) {
            GetXZDKAllRKSForGIS(counted, people);
        } else {
            GetGHDKAllRKSForGIS(counted, people);
        }
        m.population = people;
    }
    Overlaps overlaps = findOverlaps(counted, boundary);
    m.overlapHectares = overlaps.hectares;
    m.overlapping = overlaps.handles;
    return m;
}

}  // namespace kplan::report
