#include "cli/Balance.h"

#include <algorithm>
#include <cctype>
#include <iostream>
#include <memory>

#include "cli/Drawing.h"
#include "cli/Messages.h"
#include "cli/Output.h"
#include "host/arx/dbcurve.h"
#include "host/arx/dbents.h"
#include "host/arx/dbpl.h"
#include "host/arx/dbsymtb.h"
#include "host/arx/peek.h"
#include "host/kova/KovaEnt.h"
#include "record/DKBJXDInfo.h"
#include "record/DKKeys.h"
#include "record/RecordSession.h"
#include "record/XDataAccess.h"
#include "report/DrawingAreas.h"
#include "report/TerminalWriter.h"
#include "stats/BoundaryClip.h"
#include "stats/BoundaryStats.h"
#include "stats/ClassTotals.h"
#include "stats/GpcAdaptor.h"

namespace kplan::cli {

const std::array<TotalRow, 12> kTotals = {{
    {"H", FGetHArea, true},
    {"H1", FGetH1Area, true},
    {"H11", FGetH11Area, true},
    {"H2", FGetH2Area, true},
    {"H3", FGetH3Area, true},
    {"H4", FGetH4Area, true},
    {"H5", FGetH5Area, true},
    {"H9", FGetH9Area, true},
    {"E", FGetEArea, false},
    {"E1", FGetE1Area, false},
    {"E2", FGetE2Area, false},
    {"E3", FGetE3Area, false},
}};

namespace {

bool isScopeLine(AcDbObjectId id) {
    auto* curve = arx::peek<AcDbCurve>(id);
    if (curve == nullptr || id.isErased() || !curve->isClosed()) return false;
    if (AcDbPolyline::cast(curve) == nullptr && AcDb2dPolyline::cast(curve) == nullptr)
        return false;
    bool scope = false;
    curve->forEachXdataApp([&](const std::wstring& app) {
        // Application names are compared ignoring case, as the host does.
        scope = arx::foldCase(app.c_str()) == dk::FAPP_GHFWX;
        return !scope;
    });
    return scope;
}

}  // namespace

// The scope lines of model space, the largest first.
std::vector<std::pair<double, AcDbObjectId>> scopeLines(AcDbDatabase& database) {
    std::vector<std::pair<double, AcDbObjectId>> lines;
    auto* space = arx::peek<AcDbBlockTableRecord>(database.modelSpaceId());
    if (space == nullptr) return lines;
    for (AcDbObjectId id : space->entityIds()) {
        double area = 0;
        if (isScopeLine(id) && kova::ent::GetArea(id, area)) lines.emplace_back(area, id);
    }
    std::stable_sort(lines.begin(), lines.end(),
                     [](const auto& a, const auto& b) { return a.first > b.first; });
    return lines;
}

namespace {

bool isHex(const std::string& text) {
    return !text.empty() && text.size() <= 16 &&
           std::all_of(text.begin(), text.end(), [](unsigned char c) { return std::isxdigit(c); });
}

}  // namespace

// The boundary the run uses: null for none. False with a message when the user named one
// that is not there.
bool chooseBoundary(const std::string& drawing, const std::string& choice, AcDbDatabase& database,
                    AcDbObjectId& boundary, std::string& error) {
    if (choice == "none") return true;
    if (choice == "auto") {
        auto lines = scopeLines(database);
        if (lines.empty()) return true;
        boundary = lines.front().second;
        if (lines.size() > 1) {
            warn() << "kplan: " << lines.size() << " planning scope lines; using the largest, "
                   << handleText(boundary) << " (" << fixed(lines.front().first / 10000, 2)
                   << " ha); --boundary HANDLE chooses another\n";
        }
        return true;
    }
    std::string handle = choice;
    std::transform(handle.begin(), handle.end(), handle.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    AcDbObjectId id;
    if (!isHex(handle) ||
        database.getAcDbObjectId(id, false, AcDbHandle(CString(handle.c_str()))) != Acad::eOk ||
        id.isNull() || id.isErased()) {
        error = drawing + ": no object with handle " + choice +
                " (--boundary takes auto, none or the handle of a closed polyline)";
        return false;
    }
    auto* curve = arx::peek<AcDbCurve>(id);
    if (curve == nullptr || !curve->isClosed()) {
        error = drawing + ": the object with handle " + handle + " is not a closed curve";
        return false;
    }
    boundary = id;
    return true;
}

namespace {

std::vector<ClassArea> named(const CStringArray& codes, const AcGeDoubleArray& areas,
                             const ClassNames& names) {
    std::vector<ClassArea> rows;
    for (INT_PTR i = 0; i < codes.GetSize(); ++i) {
        std::string code = codes[i].ToUtf8();
        rows.push_back({code, names.of(code), areas[static_cast<int>(i)]});
    }
    std::stable_sort(rows.begin(), rows.end(),
                     [](const ClassArea& a, const ClassArea& b) { return a.code < b.code; });
    return rows;
}

}  // namespace

Balance measure(AcDbDatabase& database, AcDbObjectId boundary, bool status,
                const report::ParcelLists& parcels, const ClassNames& names) {
    // Nothing here changes the drawing, so each parcel is clipped and its record read once
    // for all the totals.
    stats::ClipSession session;
    dk::RecordSession records;
    Balance b;
    b.boundary = boundary;
    AcDbObjectIdArray all = status ? parcels.current : parcels.planned, counted, crossing;
    if (!status) {
        // The balance counts the parcels the current-generation scan finds, as the CAD
        // command does; say so when the drawing has others.
        b.olderGeneration = olderGenerationParcels(database, all);
        int older = b.olderGeneration.length();
        if (older > 0) {
            warn() << "kplan: " << older << (older == 1 ? " parcel carries" : " parcels carry")
                   << " only records of an older generation (地块属性, 地块边界) and "
                   << (older == 1 ? "is" : "are") << " not counted; kplan list shows them\n";
        }
    }
    AcDbObjectIdArray boundaries;
    if (boundary.isNull()) {
        counted = all;
        // The twelve list forms in one reading of the records.
        FGetBalanceAreas(counted, b.totals);
    } else {
        kova::ent::GetArea(boundary, b.boundaryHectares);
        b.boundaryHectares /= 10000;
        boundaries.append(boundary);
        // Each parcel is clipped once, on every core, with the bar moving; the overlap
        // tests and the totals below find the answers the session keeps.
        report::clipParcels({&all}, boundary);
        for (AcDbObjectId id : all) {
            int lies = FIsDKAndBoundaryInter(boundary, id);
            if (lies != -1) counted.append(id);
            if (lies == 1) crossing.append(id);
        }
        for (std::size_t i = 0; i < kTotals.size(); ++i)
            kTotals[i].withBoundary(boundary, counted, crossing, b.totals[i]);
    }
    b.parcels = counted.length();
    b.crossing = crossing.length();
    b.within.counted = counted;
    b.within.crossing = crossing;
    CStringArray majors, classes;
    AcGeDoubleArray majorAreas, classAreas;
    FTJDKAreaByBoundary(boundaries, counted, majors, majorAreas, classes, classAreas);
    b.majorClasses = named(majors, majorAreas, names);
    b.classes = named(classes, classAreas, names);
    if (status) {
        GetXZDKAllRKSForGIS(counted, b.population);
    } else {
        GetGHDKAllRKSForGIS(counted, b.population);
    }
    b.within.population = b.population;
    return b;
}

render::BalanceTable pictureTable(const report::Report& report, bool english) {
    render::BalanceTable picture;
    if (report.tables.empty()) return picture;
    // The rural-urban summary is about the region; the map shows the city's table.
    const report::Table* table = &report.tables.back();
    for (const report::Table& t : report.tables) {
        if (t.key != "rural_urban") {
            table = &t;
            break;
        }
    }
    picture.title = english && !table->titleEn.empty() ? table->titleEn : table->title;
    picture.headers = {english ? "code" : "代码", english ? "name" : "名称"};
    for (const report::Column& column : table->columns)
        picture.headers.push_back(report::columnTitle(*table, column, english));
    for (std::size_t r = 0; r < table->rows.size(); ++r) {
        const report::Row& row = table->rows[r];
        // "其中：" once, before the first part of a class, as the printed table has it.
        bool follows = r > 0 && table->rows[r - 1].among && table->rows[r - 1].level == row.level;
        std::string name = report::rowName(row, english);
        if (follows) name = english && !row.nameEn.empty() ? row.nameEn : row.name;
        render::TableRow line;
        line.indent = row.level;
        line.cells = {row.code, name + (row.outOfRange ? " *" : "")};
        for (std::size_t c = 0; c < table->columns.size() && c < row.values.size(); ++c) {
            double v = row.values[c];
            line.cells.push_back(report::isBlank(v) ? "" : fixed(v, table->columns[c].decimals));
        }
        picture.rows.push_back(std::move(line));
    }
    return picture;
}

}  // namespace kplan::cli
