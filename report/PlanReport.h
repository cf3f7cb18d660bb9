#pragma once
// The balance tables of the drawing that is open: its parcels measured within a boundary
// (current status beside the plan when it has parcels there), and per planning unit or
// block within their outlines.
#include <string>
#include <vector>

#include "host/arx/dbmain.h"
#include "report/Balance.h"
#include "report/DrawingAreas.h"

namespace kplan::report {

// The parcels of the drawing, found once for every table of a run.
struct ParcelLists {
    AcDbObjectIdArray current, planned;
};
// The current-status parcels, and the planned ones unless currentOnly.
ParcelLists findParcels(bool currentOnly);

struct PlanOptions {
    BalanceOptions balance;
    bool currentOnly = false;  // the current-status parcels alone (no plan)
    long population = -1;      // of the plan (or of current status alone); -1: FN_ZRKS
    // The statistics of the run measured the plan (or current status alone) within the
    // same boundary already: their lists and population are taken, not asked again.
    const Counted* measured = nullptr;
};

// The column groups of the tables: 现状 where current-status parcels lie within the
// boundary (always with currentOnly), then 规划.
std::vector<Measured> measureScenarios(const ParcelLists& parcels, AcDbObjectId boundary,
                                       const PlanOptions& options);

// The tables within boundary (null: the whole drawing). False with a message when the
// options name a class the table lacks.
bool buildPlanReport(const ParcelLists& parcels, AcDbObjectId boundary, const PlanOptions& options,
                     Report& report, std::string& error);

// The tables of one planning unit or block.
struct Section {
    std::string kind;  // "unit" or "block"
    std::string number, handle;
    Report tables;
};

// Every unit's (by "unit") or block's (by "block") tables within its outline, ordered by
// number; the population given holds for the whole plan, so each counts its parcels' own.
bool buildSections(const ParcelLists& parcels, const std::string& by, const PlanOptions& options,
                   std::vector<Section>& sections, std::string& error);

}  // namespace kplan::report
