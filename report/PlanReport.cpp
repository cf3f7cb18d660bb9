#include "report/PlanReport.h"

#include <algorithm>

#include "host/kova/ArxDataXData.h"
#include "host/kova/SelectByApplications.h"
#include "record/DKBJXDInfo.h"
#include "record/DKKeys.h"
#include "record/DYBJInfo.h"
#include "record/JFBJInfo.h"
#include "report/ClassHierarchy.h"
#include "report/DrawingAreas.h"

namespace kplan::report {

ParcelLists findParcels(bool currentOnly) {
    ParcelLists lists;
    if (currentOnly) {
        CDKBJXDInfo::GetAllXZYD(lists.current);
        return lists;
    }
    // The scans of CDKBJXDInfo::GetAllXZYD and GetDkbj, in one walk of the drawing.
    std::vector<AcDbObjectIdArray> found;
    kova::SelectByApplications(dk::TYPES_PARCEL, {dk::FAPP_XZDK, dk::LIST_GHDK}, found);
    lists.current = std::move(found[0]);
    lists.planned = std::move(found[1]);
    return lists;
}

std::vector<Measured> measureScenarios(const ParcelLists& parcels, AcDbObjectId boundary,
                                       const PlanOptions& options) {
    std::vector<Measured> measured;
    bool split = options.balance.mixed == MixedCodes::Split;
    // A plan without current-status parcels costs no clipping or overlap search for them.
    if (options.currentOnly || !parcels.current.isEmpty()) {
        Measured status = measureParcels(parcels.current, boundary, Scenario::Current, split,
                                         options.currentOnly ? options.measured : nullptr);
        if (options.currentOnly || !status.parcels.empty()) measured.push_back(std::move(status));
    }
    if (!options.currentOnly)
        measured.push_back(
            measureParcels(parcels.planned, boundary, Scenario::Planned, split, options.measured));
    if (options.population >= 0) measured.back().population = options.population;
    return measured;
}

bool buildPlanReport(const ParcelLists& parcels, AcDbObjectId boundary, const PlanOptions& options,
                     Report& report, std::string& error) {
    return buildReport(ClassHierarchy::Current(), measureScenarios(parcels, boundary, options),
                       options.balance, report, error);
}

bool buildSections(const ParcelLists& parcels, const std::string& by, const PlanOptions& options,
                   std::vector<Section>& sections, std::string& error) {
    bool units = by == "unit";
    AcDbObjectIdArray outlines;
    if (units) {
        CDYBJInfo::GetDYbj(outlines);
    } else {
        CJFBJInfo::GetJFbj(outlines);
    }
    PlanOptions own = options;
    own.population = -1;
    own.measured = nullptr;
    for (AcDbObjectId id : outlines) {
        Section section;
        section.kind = by;
        CString number;
        ARX_DATA::CFGisXData::GetFrom(id, units ? dk::FS_DYBH : dk::FS_JFBH, number);
        number.Trim();
        section.number = number.ToUtf8();
        section.handle = handleOf(id);
        if (!buildPlanReport(parcels, id, own, section.tables, error)) return false;
        sections.push_back(std::move(section));
    }
    std::stable_sort(sections.begin(), sections.end(),
                     [](const Section& a, const Section& b) { return a.number < b.number; });
    return true;
}

}  // namespace kplan::report
