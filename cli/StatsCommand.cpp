// "kplan stats": the land-use balance table of a drawing, within its planning scope line
// when it has one.
#include <algorithm>
#include <array>
#include <cctype>
#include <iostream>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "cli/ClassNames.h"
#include "cli/Commands.h"
#include "cli/Drawing.h"
#include "cli/Output.h"
#include "host/arx/dbcurve.h"
#include "host/arx/dbents.h"
#include "host/arx/dbpl.h"
#include "host/arx/dbsymtb.h"
#include "host/arx/peek.h"
#include "host/dxf/Dxf.h"
#include "host/kova/KovaDataSet.h"
#include "host/kova/KovaEnt.h"
#include "host/kova/KovaStatusBar.h"
#include "record/DKBJXDInfo.h"
#include "record/DKKeys.h"
#include "record/XDataAccess.h"
#include "report/Balance.h"
#include "report/ClassHierarchy.h"
#include "report/CsvWriter.h"
#include "report/JsonWriter.h"
#include "report/PlanReport.h"
#include "report/TerminalWriter.h"
#include "report/XlsxWriter.h"
#include "stats/BoundaryClip.h"
#include "stats/BoundaryStats.h"
#include "stats/ClassTotals.h"
#include "stats/GpcAdaptor.h"

namespace kplan::cli {

namespace {

struct StatsArgs {
    std::string drawing;
    std::string boundary = "auto";
    std::string format = "table";
    std::string output;  // -o, the spreadsheet's file
    bool status = false;
    std::string lang = "zh";
    std::string remainder;
    std::string units = "hm2";
    int decimals = 2;
    long population = -1;  // -1: the parcels' own (FN_ZRKS)
    std::string mixed = "first";
    std::string by;  // "unit" or "block": tables per planning unit or block as well
    StandardOptions standard;
};

// The twelve totals of the balance table, in its order.
using ListTotal = int (*)(const AcDbObjectIdArray&, double&);
using BoundaryTotal = int (*)(AcDbObjectId, const AcDbObjectIdArray&, const AcDbObjectIdArray&,
                              double&);
struct TotalRow {
    const char* code;
    ListTotal list;
    BoundaryTotal withBoundary;
    bool construction;  // a part of H, so its share of H is shown
};
const std::array<TotalRow, 12> kTotals = {{
    {"H", FGetHArea, FGetHArea, true},
    {"H1", FGetH1Area, FGetH1Area, true},
    {"H11", FGetH11Area, FGetH11Area, true},
    {"H2", FGetH2Area, FGetH2Area, true},
    {"H3", FGetH3Area, FGetH3Area, true},
    {"H4", FGetH4Area, FGetH4Area, true},
    {"H5", FGetH5Area, FGetH5Area, true},
    {"H9", FGetH9Area, FGetH9Area, true},
    {"E", FGetEArea, FGetEArea, false},
    {"E1", FGetE1Area, FGetE1Area, false},
    {"E2", FGetE2Area, FGetE2Area, false},
    {"E3", FGetE3Area, FGetE3Area, false},
}};

struct ClassArea {
    std::string code, name;
    double hectares = 0;
};

struct Balance {
    AcDbObjectId boundary;
    AcDbObjectIdArray olderGeneration;
    double boundaryHectares = 0;
    long parcels = 0, crossing = 0;
    std::array<double, 12> totals{};
    std::vector<ClassArea> majorClasses, classes;
    int population = 0;
};

bool isScopeLine(AcDbObjectId id) {
    auto* curve = arx::peek<AcDbCurve>(id);
    if (curve == nullptr || id.isErased() || !curve->isClosed()) return false;
    if (AcDbPolyline::cast(curve) == nullptr && AcDb2dPolyline::cast(curve) == nullptr)
        return false;
    bool scope = false;
    curve->withXdata([&](const db::ValueList& values) {
        scope = std::any_of(values.begin(), values.end(), [](const db::Value& v) {
            // Application names are compared ignoring case, as the host does.
            return v.code == 1001 && v.text() && arx::foldCase(v.text()->c_str()) == dk::FAPP_GHFWX;
        });
    });
    return scope;
}

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

bool isHex(const std::string& text) {
    return !text.empty() && text.size() <= 16 &&
           std::all_of(text.begin(), text.end(), [](unsigned char c) { return std::isxdigit(c); });
}

// The boundary the run uses: null for none. False with a message when the user named one
// that is not there.
bool chooseBoundary(const StatsArgs& args, AcDbDatabase& database, AcDbObjectId& boundary,
                    std::string& error) {
    if (args.boundary == "none") return true;
    if (args.boundary == "auto") {
        auto lines = scopeLines(database);
        if (lines.empty()) return true;
        boundary = lines.front().second;
        if (lines.size() > 1) {
            std::cerr << "kplan: " << lines.size() << " planning scope lines; using the largest, "
                      << handleText(boundary) << " (" << fixed(lines.front().first / 10000, 2)
                      << " ha); --boundary HANDLE chooses another\n";
        }
        return true;
    }
    std::string handle = args.boundary;
    std::transform(handle.begin(), handle.end(), handle.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    AcDbObjectId id;
    if (!isHex(handle) ||
        database.getAcDbObjectId(id, false, AcDbHandle(CString(handle.c_str()))) != Acad::eOk ||
        id.isNull() || id.isErased()) {
        error = args.drawing + ": no object with handle " + args.boundary +
                " (--boundary takes auto, none or the handle of a closed polyline)";
        return false;
    }
    auto* curve = arx::peek<AcDbCurve>(id);
    if (curve == nullptr || !curve->isClosed()) {
        error = args.drawing + ": the object with handle " + handle + " is not a closed curve";
        return false;
    }
    boundary = id;
    return true;
}

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

Balance measure(AcDbDatabase& database, AcDbObjectId boundary, bool status,
                const report::ParcelLists& parcels, const ClassNames& names) {
    // Nothing here changes the drawing, so each parcel is clipped once for all the totals.
    stats::ClipSession session;
    Balance b;
    b.boundary = boundary;
    AcDbObjectIdArray all = status ? parcels.current : parcels.planned, counted, crossing;
    if (!status) {
        // The balance counts the parcels the current-generation scan finds, as the CAD
        // command does; say so when the drawing has others.
        b.olderGeneration = olderGenerationParcels(database, all);
        int older = b.olderGeneration.length();
        if (older > 0) {
            std::cerr << "kplan: " << older << (older == 1 ? " parcel carries" : " parcels carry")
                      << " only records of an older generation (地块属性, 地块边界) and "
                      << (older == 1 ? "is" : "are") << " not counted; kplan list shows them\n";
        }
    }
    AcDbObjectIdArray boundaries;
    if (boundary.isNull()) {
        counted = all;
        for (std::size_t i = 0; i < kTotals.size(); ++i)
            kTotals[i].list(counted, b.totals[i]);
    } else {
        kova::ent::GetArea(boundary, b.boundaryHectares);
        b.boundaryHectares /= 10000;
        boundaries.append(boundary);
        // The clipping is the long part of the run: each parcel is clipped once, on every
        // core, in chunks so that the bar moves; the overlap tests and the totals below
        // find the answers the session keeps.
        KovaCad::CStatusBarControl bar;
        bar.start(L"范围线内地块", all.length());
        std::shared_ptr<stats::BoundaryClip> clip = stats::ClipOf(boundary);
        std::vector<stats::BoundaryClip::Answer> answers;
        const int chunk = std::max(4096, all.length() / 20);
        for (int from = 0; from < all.length(); from += chunk) {
            AcDbObjectIdArray part;
            for (int i = from; i < std::min(all.length(), from + chunk); ++i)
                part.append(all[i]);
            clip->classifyMany(part, answers);
            bar.step(part.length());
        }
        bar.end();
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
    return b;
}

using report::Section;

void printTable(const StatsArgs& args, const std::string& path, const Balance& b,
                const report::Report& tables) {
    bool en = args.lang == "en";
    std::cout << (en ? "drawing: " : "图纸：") << path << "\n";
    std::cout << (en ? "standard: " : "标准：") << CKovaDataSet::FGetStandardName().ToUtf8()
              << (en ? ", class table: " : "，类别表：") << CKovaDataSet::FGetCurYDLB().ToUtf8()
              << "\n";
    if (b.boundary.isNull()) {
        std::cout << (en ? "boundary: none, the whole drawing\n" : "范围线：无，统计全图\n");
    } else {
        std::cout << (en ? "boundary: " : "范围线：") << handleText(b.boundary)
                  << (en ? ", " : "，") << fixed(b.boundaryHectares, 2) << (en ? " ha" : " 公顷")
                  << "\n";
    }
    if (en) {
        std::cout << (args.status ? "current-status" : "planned") << " parcels: " << b.parcels;
        if (!b.boundary.isNull()) std::cout << " (" << b.crossing << " crossing the boundary)";
    } else {
        std::cout << (args.status ? "现状地块：" : "规划地块：") << b.parcels;
        if (!b.boundary.isNull()) std::cout << "（" << b.crossing << " 块与范围线相交）";
    }
    std::cout << "\n\n" << report::terminalTables(tables, en);
    std::string warnings = report::terminalWarnings(tables, en);
    if (!warnings.empty()) std::cout << "\n" << warnings;
}

// The standard's tables and the warnings first, then the totals of the library and the
// tabulation by class, one value a row as before.
void printCsv(const StatsArgs& args, const Balance& b, const ClassNames& names,
              const report::Report& tables, const std::vector<Section>& sections) {
    bool en = args.lang == "en";
    std::cout << report::kUtf8ByteOrderMark << report::csvTables(tables, en)
              << report::csvWarnings(tables, en);
    // A unit's or block's tables: their rows name it after the table ("rural_urban@JX-02").
    for (const Section& section : sections) {
        report::Report named = section.tables;
        for (report::Table& table : named.tables)
            table.key += "@" + section.number;
        std::cout << report::csvTables(named, en);
    }
    std::cout << csvRow({"table", "code", "name", "value"});
    for (std::size_t i = 0; i < kTotals.size(); ++i) {
        std::cout << csvRow(
            {"totals", kTotals[i].code, names.of(kTotals[i].code), jsonNumber(b.totals[i])});
    }
    for (const ClassArea& a : b.majorClasses)
        std::cout << csvRow({"major_classes", a.code, a.name, jsonNumber(a.hectares)});
    for (const ClassArea& a : b.classes)
        std::cout << csvRow({"classes", a.code, a.name, jsonNumber(a.hectares)});
    std::cout << csvRow({"parcels", "", "", std::to_string(b.parcels)});
    std::cout << csvRow({"population", "", "", std::to_string(b.population)});
}

void printJson(const std::string& path, const Balance& b, const report::Report& tables,
               const std::vector<Section>& sections) {
    using nlohmann::json;
    auto list = [](const std::vector<ClassArea>& areas) {
        json rows = json::array();
        for (const ClassArea& a : areas)
            rows.push_back({{"code", a.code}, {"name", a.name}, {"area_ha", a.hectares}});
        return rows;
    };
    json out;
    out["schema"] = report::kJsonSchema;
    out["drawing"] = path;
    out["standard"] = CKovaDataSet::FGetStandardName().ToUtf8();
    out["class_table"] = CKovaDataSet::FGetCurYDLB().ToUtf8();
    out["boundary"] = b.boundary.isNull() ? json()
                                          : json{{"handle", handleText(b.boundary)},
                                                 {"area_ha", b.boundaryHectares}};
    out["parcels"] = b.parcels;
    json totals = json::object();
    for (std::size_t i = 0; i < kTotals.size(); ++i)
        totals[kTotals[i].code] = b.totals[i];
    out["totals"] = totals;
    out["major_classes"] = list(b.majorClasses);
    out["classes"] = list(b.classes);
    out["population"] = b.population;
    out["tables"] = report::tablesJson(tables);
    out["warnings"] = report::warningsJson(tables);
    out["balance"] = report::balanceJson(tables);
    if (!sections.empty()) {
        json by = json::array();
        for (const Section& section : sections) {
            by.push_back({{"kind", section.kind},
                          {"number", section.number},
                          {"handle", section.handle},
                          {"tables", report::tablesJson(section.tables)},
                          {"warnings", report::warningsJson(section.tables)},
                          {"balance", report::balanceJson(section.tables)}});
        }
        out["by"] = by;
    }
    std::cout << report::dumpJson(out);
}

report::PlanOptions planOptions(const StatsArgs& args, report::AreaUnit unit) {
    report::PlanOptions options;
    options.balance.remainderCode = args.remainder;
    options.balance.unit = unit;
    options.balance.decimals = args.decimals;
    options.balance.mixed =
        args.mixed == "split" ? report::MixedCodes::Split : report::MixedCodes::First;
    options.currentOnly = args.status;
    options.population = args.population;
    return options;
}

bool buildTables(const StatsArgs& args, const report::ParcelLists& parcels, AcDbObjectId boundary,
                 report::AreaUnit unit, const Balance& balance, report::Report& tables,
                 std::string& error) {
    if (!report::buildPlanReport(parcels, boundary, planOptions(args, unit), tables, error))
        return false;
    if (!balance.olderGeneration.isEmpty()) {
        report::Warning w;
        w.kind = "left_out";
        w.detail = "只有旧版记录（地块属性、地块边界），统计不读";
        w.detailEn = "records of an older generation only (地块属性, 地块边界)";
        for (AcDbObjectId id : balance.olderGeneration)
            w.handles.push_back(handleText(id));
        tables.warnings.push_back(w);
    }
    return true;
}

int runStats(StatsArgs args) {
    Format format;
    LoadedDrawing drawing;
    std::string path, error;
    // A spreadsheet is written to a file; the other formats go to standard output.
    bool xlsx = args.format == "xlsx";
    if (!xlsx && !parseFormat(args.format, format)) {
        std::cerr << "kplan: --format " << args.format << ": expected table, csv, json or xlsx\n";
        return 2;
    }
    if (xlsx && !args.by.empty()) {
        std::cerr << "kplan: --by is written as table, csv or json; a spreadsheet holds the "
                     "whole plan only\n";
        return 2;
    }
    if (xlsx != !args.output.empty()) {
        std::cerr << (xlsx ? "kplan: --format xlsx writes a file: name it with -o FILE\n"
                           : "kplan: -o FILE is for --format xlsx; the other formats go to "
                             "standard output\n");
        return 2;
    }
    if (int failed = openForReport(args.drawing, xlsx ? "table" : args.format, args.standard,
                                   format, drawing, path))
        return failed;
    AcDbObjectId boundary;
    if (!chooseBoundary(args, *drawing.database(), boundary, error)) {
        std::cerr << "kplan: " << error << "\n";
        return 1;
    }
    report::AreaUnit unit;
    if (!report::parseAreaUnit(args.units, unit)) {
        std::cerr << "kplan: --units " << args.units << ": expected hm2, m2, mu or km2\n";
        return 2;
    }
    ClassNames names;
    // The balance tables measure the same parcels again: one session clips each once.
    stats::ClipSession session;
    report::ParcelLists parcels = report::findParcels(args.status);
    Balance balance = measure(*drawing.database(), boundary, args.status, parcels, names);
    report::Report tables;
    std::vector<Section> sections;
    if (!buildTables(args, parcels, boundary, unit, balance, tables, error) ||
        (!args.by.empty() &&
         !report::buildSections(parcels, args.by, planOptions(args, unit), sections, error))) {
        std::cerr << "kplan: " << error << "\n";
        return 2;
    }
    // What a lenient read kept as read is no curve, so no parcel: say how many were.
    int leftOut = 0;
    report::Warning unread;
    unread.kind = "left_out";
    unread.detail = "边界线含有不是数字的值，未能读取";
    unread.detailEn = "the outline holds a value that is not a number";
    for (AcDbObjectId id : dxf::readReport(*drawing.database()).keptAsRead) {
        if (CheckDKDataVer(id) == 0) continue;
        ++leftOut;
        unread.handles.push_back(handleText(id));
    }
    if (leftOut > 0) tables.warnings.push_back(unread);
    if (leftOut > 0) {
        std::cerr << "kplan: " << leftOut
                  << (leftOut == 1 ? " parcel is left out of the statistics: its outline holds "
                                     "a value that is not a number"
                                   : " parcels are left out of the statistics: their outlines "
                                     "hold values that are not numbers")
                  << " (see the warnings above)\n";
    }
    if (xlsx) {
        if (!report::writeXlsx(tables, args.output, args.lang == "en", error)) {
            std::cerr << "kplan: " << error << "\n";
            return 1;
        }
        return 0;
    }
    switch (format) {
        case Format::Table:
            printTable(args, path, balance, tables);
            for (const Section& section : sections) {
                bool en = args.lang == "en";
                std::cout << "\n"
                          << (section.kind == "unit" ? (en ? "== unit " : "== 单元 ")
                                                     : (en ? "== block " : "== 街坊 "))
                          << section.number << (en ? " (" : "（") << section.handle
                          << (en ? ") ==\n" : "）==\n")
                          << report::terminalTables(section.tables, en);
                std::string warnings = report::terminalWarnings(section.tables, en);
                if (!warnings.empty()) std::cout << "\n" << warnings;
            }
            break;
        case Format::Csv:
            printCsv(args, balance, names, tables, sections);
            break;
        case Format::Json:
            printJson(path, balance, tables, sections);
            break;
    }
    std::cout.flush();
    return std::cout ? 0 : 1;
}

}  // namespace

void addStatsCommand(CLI::App& app, int& exitCode) {
    auto* command = app.add_subcommand(
        "stats",
        "Land-use balance tables of the drawing's standard (城乡用地汇总表, 城市建设用地平衡表), "
        "within its scope line");
    auto args = std::make_shared<StatsArgs>();
    command->add_option("DRAWING", args->drawing, "DXF file (default: the sample plan)");
    command
        ->add_option("--boundary", args->boundary,
                     "auto (the largest planning scope line), none, or a handle")
        ->capture_default_str();
    command->add_flag("--status", args->status,
                      "Count the current-status parcels instead of the planned ones");
    command->add_option("--format", args->format, "table, csv, json or xlsx (with -o FILE)")
        ->capture_default_str();
    command->add_option("-o,--output", args->output, "The spreadsheet file of --format xlsx");
    command->add_option("--lang", args->lang, "Language of the table: zh or en")
        ->check(CLI::IsMember({"zh", "en"}))
        ->capture_default_str();
    command->add_option("--remainder", args->remainder,
                        "Class of the land in the scope that no parcel covers (e.g. S1 for "
                        "roads drawn as gaps); default: a row of its own");
    command->add_option("--units", args->units, "Area unit: hm2, m2, mu or km2")
        ->capture_default_str();
    command->add_option("--decimals", args->decimals, "Decimals of the areas")
        ->check(CLI::Range(0, 6))
        ->capture_default_str();
    command
        ->add_option("--population", args->population,
                     "Population for the per-person column (default: the parcels' FN_ZRKS)")
        ->check(CLI::NonNegativeNumber);
    command
        ->add_option("--mixed", args->mixed,
                     "Compound codes (R2/B1): first counts the first code, split divides by "
                     "the mix ratio FS_HHBL")
        ->check(CLI::IsMember({"first", "split"}))
        ->capture_default_str();
    command
        ->add_option("--by", args->by,
                     "Tables for each planning unit or block as well, within its outline")
        ->check(CLI::IsMember({"unit", "block"}));
    addStandardOptions(*command, args->standard);
    addReadOptions(*command, args->standard.recover, args->standard.codePage);
    command->callback([args, &exitCode] { exitCode = runStats(*args); });
}

}  // namespace kplan::cli
