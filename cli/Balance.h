#pragma once
// What the balance table of a drawing is made of, shared by the commands that show it
// (stats prints it, render draws it): the boundary a run uses and the totals measured
// within it.
#include <array>
#include <string>
#include <utility>
#include <vector>

#include "cli/ClassNames.h"
#include "host/arx/dbmain.h"
#include "render/BalanceTable.h"
#include "report/Balance.h"
#include "report/DrawingAreas.h"
#include "report/PlanReport.h"

namespace kplan::cli {

// The twelve totals of the balance table, in its order, which is FGetBalanceAreas's too
// (the totals without a boundary).
using BoundaryTotal = int (*)(AcDbObjectId, const AcDbObjectIdArray&, const AcDbObjectIdArray&,
                              double&);
struct TotalRow {
    const char* code;
    BoundaryTotal withBoundary;
    bool construction;  // a part of H, so its share of H is shown
};
extern const std::array<TotalRow, 12> kTotals;

struct ClassArea {
    std::string code, name;
    double hectares = 0;
};

struct Balance {
    AcDbObjectId boundary;
    AcDbObjectIdArray olderGeneration;  // planned parcels with older records only, not counted
    double boundaryHectares = 0;
    long parcels = 0, crossing = 0;
    std::array<double, 12> totals{};
    std::vector<ClassArea> majorClasses, classes;
    int population = 0;
    report::Counted within;  // the lists the totals counted, for the tables to take
};

// Closed polylines carrying the planning scope line record, the largest first, with
// their areas in square metres.
std::vector<std::pair<double, AcDbObjectId>> scopeLines(AcDbDatabase& database);

// The boundary of a run from --boundary (choice: "auto", "none" or a handle): null for
// none, and for auto when the drawing has no scope line. False with a message naming
// the drawing when the user named one that is not there.
bool chooseBoundary(const std::string& drawing, const std::string& choice, AcDbDatabase& database,
                    AcDbObjectId& boundary, std::string& error);

// The planned (or, with status, current-status) parcels' balance within boundary (the
// whole drawing when it is null), of the parcels report::findParcels found.
Balance measure(AcDbDatabase& database, AcDbObjectId boundary, bool status,
                const report::ParcelLists& parcels, const ClassNames& names);

// The balance table to draw beside the map: the report's table of the land a city builds
// on (城市建设用地平衡表, or the one table of another standard), as printed.
render::BalanceTable pictureTable(const report::Report& report, bool english);

}  // namespace kplan::cli
