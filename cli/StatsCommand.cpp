// "kplan stats": the land-use balance table of a drawing, within its planning scope line
// when it has one.
#include <algorithm>
#include <array>
#include <cctype>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "cli/Balance.h"
#include "cli/ClassNames.h"
#include "cli/Commands.h"
#include "cli/Drawing.h"
#include "cli/DrawingBatch.h"
#include "cli/InteractiveInput.h"
#include "cli/Messages.h"
#include "cli/OptionValues.h"
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
#include "record/RecordSession.h"
#include "record/XDataAccess.h"
#include "report/Balance.h"
#include "report/ClassHierarchy.h"
#include "report/CombinedReport.h"
#include "report/CsvWriter.h"
#include "report/JsonWriter.h"
#include "report/PlanReport.h"
#include "report/TerminalWriter.h"
#include "stats/BoundaryClip.h"
#include "stats/BoundaryStats.h"
#include "stats/ClassTotals.h"
#include "stats/GpcAdaptor.h"
#include "stats/InteractiveSelection.h"
#if KPLAN_WITH_RENDER
#include "cli/DrawPlan.h"
#endif
#if KPLAN_WITH_XLSX
#include "report/XlsxWriter.h"
#endif

namespace kplan::cli {

namespace {

// The formats of --format; xlsx when the spreadsheet writer is built.
#if KPLAN_WITH_XLSX
constexpr const char* kFormats = "table, csv, json, jsonl or xlsx";
#else
constexpr const char* kFormats = "table, csv, json or jsonl";
#endif

struct StatsArgs {
    std::vector<std::string> drawings;  // none: the sample plan; several or a folder: a batch
    bool recursive = false;             // folders' subfolders too
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
    std::string by;   // "unit" or "block": tables per planning unit or block as well
    std::string map;  // a picture of the plan with the table beside it, written too
    StandardOptions standard;
    bool interactive = false;  // the scope asked on the command line
    std::string preview;       // a copy of the drawing with the crossing parcels hatched
};

using report::Section;

void printTable(std::ostream& out, const StatsArgs& args, const std::string& path, const Balance& b,
                const report::Report& tables) {
    bool en = args.lang == "en";
    out << (en ? "drawing: " : "图纸：") << path << "\n";
    out << (en ? "standard: " : "标准：") << CKovaDataSet::FGetStandardName().ToUtf8()
        << (en ? ", class table: " : "，类别表：") << classTableShown() << "\n";
    if (b.boundary.isNull()) {
        out << (en ? "boundary: none, the whole drawing\n" : "范围线：无，统计全图\n");
    } else {
        out << (en ? "boundary: " : "范围线：") << handleText(b.boundary) << (en ? ", " : "，")
            << fixed(b.boundaryHectares, 2) << (en ? " ha" : " 公顷") << "\n";
    }
    if (en) {
        out << (args.status ? "current-status" : "planned") << " parcels: " << b.parcels;
        if (!b.boundary.isNull()) out << " (" << b.crossing << " crossing the boundary)";
    } else {
        out << (args.status ? "现状地块：" : "规划地块：") << b.parcels;
        if (!b.boundary.isNull()) out << "（" << b.crossing << " 块与范围线相交）";
    }
    out << "\n\n" << report::terminalTables(tables, en);
    std::string warnings = report::terminalWarnings(tables, en);
    if (!warnings.empty()) out << "\n" << warnings;
}

// The standard's tables and the warnings first, then the totals of the library and the
// tabulation by class, one value a row as before.
void printCsv(std::ostream& out, const StatsArgs& args, const Balance& b, const ClassNames& names,
              const report::Report& tables, const std::vector<Section>& sections) {
    bool en = args.lang == "en";
    out << report::kUtf8ByteOrderMark << report::csvTables(tables, en)
        << report::csvWarnings(tables, en);
    // A unit's or block's tables: their rows name it after the table ("rural_urban@JX-02").
    for (const Section& section : sections) {
        report::Report named = section.tables;
        for (report::Table& table : named.tables)
            table.key += "@" + section.number;
        out << report::csvTables(named, en);
    }
    out << csvRow({"table", "code", "name", "value"});
    for (std::size_t i = 0; i < kTotals.size(); ++i) {
        out << csvRow(
            {"totals", kTotals[i].code, names.of(kTotals[i].code), jsonNumber(b.totals[i])});
    }
    for (const ClassArea& a : b.majorClasses)
        out << csvRow({"major_classes", a.code, a.name, jsonNumber(a.hectares)});
    for (const ClassArea& a : b.classes)
        out << csvRow({"classes", a.code, a.name, jsonNumber(a.hectares)});
    out << csvRow({"parcels", "", "", std::to_string(b.parcels)});
    out << csvRow({"population", "", "", std::to_string(b.population)});
}

nlohmann::json statsJson(const std::string& path, const Balance& b, const report::Report& tables,
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
    out["class_table_file"] = classTableShown();
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
    return out;
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
    report::PlanOptions options = planOptions(args, unit);
    options.measured = &balance.within;
    if (!report::buildPlanReport(parcels, boundary, options, tables, error)) return false;
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

// What the tables of one drawing are made of.
struct DrawingStats {
    report::ParcelLists parcels;
    Balance balance;
    report::Report tables;
    std::vector<Section> sections;
};

// The tables of the current drawing within boundary (chosen: the parcels a dialogue chose,
// when it chose some without one scope line). False with a message when the options name
// a class the table lacks.
bool computeStats(const StatsArgs& args, AcDbDatabase& database, AcDbObjectId boundary,
                  const AcDbObjectIdArray& chosen, report::AreaUnit unit, const ClassNames& names,
                  DrawingStats& s, std::string& error) {
    // The balance tables measure the same parcels again: one session clips each once and
    // another reads each record once, until the tables are built.
    stats::ClipSession session;
    dk::RecordSession records;
    s.parcels = report::findParcels(args.status);
    if (!chosen.isEmpty()) {
        for (AcDbObjectIdArray* list : {&s.parcels.current, &s.parcels.planned}) {
            AcDbObjectIdArray kept;
            for (AcDbObjectId id : *list)
                if (chosen.contains(id)) kept.append(id);
            *list = kept;
        }
    }
    s.balance = measure(database, boundary, args.status, s.parcels, names);
    return buildTables(args, s.parcels, boundary, unit, s.balance, s.tables, error) &&
           (args.by.empty() ||
            report::buildSections(s.parcels, args.by, planOptions(args, unit), s.sections, error));
}

// What a lenient read kept as read is no curve, so no parcel: say how many were.
void noteUnreadParcels(AcDbDatabase& database, report::Report& tables) {
    int leftOut = 0;
    report::Warning unread;
    unread.kind = "left_out";
    unread.detail = "边界线含有不是数字的值，未能读取";
    unread.detailEn = "the outline holds a value that is not a number";
    for (AcDbObjectId id : dxf::readReport(database).keptAsRead) {
        if (CheckDKDataVer(id) == 0) continue;
        ++leftOut;
        unread.handles.push_back(handleText(id));
    }
    if (leftOut > 0) tables.warnings.push_back(unread);
    if (leftOut > 0) {
        warn() << "kplan: " << leftOut
               << (leftOut == 1 ? " parcel is left out of the statistics: its outline holds "
                                  "a value that is not a number"
                                : " parcels are left out of the statistics: their outlines "
                                  "hold values that are not numbers")
               << " (see the warnings above)\n";
    }
}

// The tables of each unit or block after the plan's.
void printSections(std::ostream& out, const StatsArgs& args, const std::vector<Section>& sections) {
    bool en = args.lang == "en";
    for (const Section& section : sections) {
        out << "\n"
            << (section.kind == "unit" ? (en ? "== unit " : "== 单元 ")
                                       : (en ? "== block " : "== 街坊 "))
            << section.number << (en ? " (" : "（") << section.handle << (en ? ") ==\n" : "）==\n")
            << report::terminalTables(section.tables, en);
        std::string warnings = report::terminalWarnings(section.tables, en);
        if (!warnings.empty()) out << "\n" << warnings;
    }
}

int runStatsBatch(const StatsArgs& args);

int runStats(StatsArgs args) {
    Format format;
    LoadedDrawing drawing;
    std::string path, error;
    // A spreadsheet is written to a file; the other formats go to standard output.
    bool xlsx = KPLAN_WITH_XLSX && args.format == "xlsx";
#if KPLAN_WITH_RENDER
    render::PictureFormat mapFormat;
    if (!args.map.empty() && !render::pictureFormatOf(args.map, mapFormat, error)) {
        std::cerr << "kplan: --map " << error << "\n";
        return 2;
    }
#endif
    if (args.format == "jsonl" || !singleDrawing(args.drawings)) return runStatsBatch(args);
    const std::string drawingArgument = args.drawings.empty() ? "" : args.drawings[0];
    if (!xlsx && !parseFormat(args.format, format)) {
        std::cerr << "kplan: --format " << args.format << ": expected " << kFormats << "\n";
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
    if (!args.preview.empty() && !args.interactive) {
        std::cerr << "kplan: --preview goes with --interactive\n";
        return 2;
    }
    if (!args.preview.empty()) {
        if (int refused = checkDxfOutput(args.preview, false)) return refused;
    }
    if (int failed = openForReport(drawingArgument, xlsx ? "table" : args.format, args.standard,
                                   format, drawing, path))
        return failed;
    AcDbObjectId boundary;
    AcDbObjectIdArray chosen;  // the parcels the dialogue chose, when it did without one line
    if (args.interactive) {
        AcDbObjectIdArray scopes;
        double total = 0;
        int chose = 0;
        {
            InteractiveSession session;
            chose = KovaSelectPlot(scopes, total, chosen);
        }
        std::cerr << "\n";
        if (!chose) {
            std::cerr << "kplan: no statistics scope chosen in " << path << "\n";
            return 1;
        }
        // One scope line is measured as --boundary measures it (crossing parcels clipped);
        // otherwise the table counts the parcels the dialogue found.
        if (scopes.length() == 1) {
            boundary = scopes[0];
            chosen.setLogicalLength(0);
        } else if (!args.preview.empty()) {
            std::cerr << "kplan: --preview shows one scope line; the scope chosen in " << path
                      << (scopes.isEmpty() ? " has none\n" : " has several\n");
            return 1;
        }
    } else if (!chooseBoundary(drawingArgument, args.boundary, *drawing.database(), boundary,
                               error)) {
        std::cerr << "kplan: " << error << "\n";
        return 1;
    }
    report::AreaUnit unit;
    if (!report::parseAreaUnit(args.units, unit)) {
        std::cerr << "kplan: --units " << args.units << ": expected hm2, m2, mu or km2\n";
        return 2;
    }
    ClassNames names;
    // The preview and the map below ask about the same curves again.
    stats::ClipSession session;
    DrawingStats measured;
    if (!computeStats(args, *drawing.database(), boundary, chosen, unit, names, measured, error)) {
        std::cerr << "kplan: " << error << "\n";
        return 2;
    }
    const report::ParcelLists& parcels = measured.parcels;
    const Balance& balance = measured.balance;
    report::Report& tables = measured.tables;
    const std::vector<Section>& sections = measured.sections;
#if KPLAN_WITH_RENDER
    if (!args.map.empty()) {
        render::BalanceTable table = pictureTable(tables, args.lang == "en");
        if (!drawPlan(*drawing.database(), path, args.map, boundary, args.status, &table, {},
                      error)) {
            std::cerr << "kplan: " << error << "\n";
            return 1;
        }
    }
#endif
    if (!args.preview.empty()) {
        // The parcels the scope line holds or crosses; the crossing ones get their part
        // inside hatched, in a copy: the drawing read stays as it was.
        AcDbObjectIdArray touched, crossing, hatches;
        for (const AcDbObjectIdArray* list : {&parcels.current, &parcels.planned}) {
            for (AcDbObjectId id : *list) {
                int where = FIsDKAndBoundaryInter(boundary, id);
                if (where >= 0) touched.append(id);
                if (where == 1) crossing.append(id);
            }
        }
        if (!touched.isEmpty()) FPreViewAllPlot(boundary, touched, crossing, hatches);
        if (!dxf::save(*drawing.database(), args.preview, error)) {
            std::cerr << "kplan: " << error << "\n";
            return 1;
        }
    }
    noteUnreadParcels(*drawing.database(), tables);
#if KPLAN_WITH_XLSX
    if (xlsx) {
        if (!report::writeXlsx(tables, args.output, args.lang == "en", error)) {
            std::cerr << "kplan: " << error << "\n";
            return 1;
        }
        return 0;
    }
#endif
    switch (format) {
        case Format::Table:
            printTable(std::cout, args, path, balance, tables);
            printSections(std::cout, args, sections);
            break;
        case Format::Csv:
            printCsv(std::cout, args, balance, names, tables, sections);
            break;
        case Format::Json:
            std::cout << report::dumpJson(statsJson(path, balance, tables, sections));
            break;
    }
    std::cout.flush();
    return std::cout ? 0 : 1;
}

// Several drawings, or a folder: each drawing's tables as it alone gives them, then the
// tables of all of them added up.
int runStatsBatch(const StatsArgs& args) {
    BatchFormat format;
    if (int refused = parseBatchFormat(args.format, kFormats, format)) return refused;
    for (const auto& [given, option] :
         {std::pair{args.interactive, "--interactive"},
          std::pair{!args.preview.empty(), "--preview"}, std::pair{!args.map.empty(), "--map"},
          std::pair{!args.output.empty(), "-o"}}) {
        if (given) {
            std::cerr << "kplan: " << option << " works on one drawing, not on several\n";
            return kExitUsage;
        }
    }
    report::AreaUnit unit;
    if (!report::parseAreaUnit(args.units, unit)) {
        std::cerr << "kplan: --units " << args.units << ": expected hm2, m2, mu or km2\n";
        return kExitUsage;
    }
    std::vector<std::string> drawings;
    if (int failed = prepareBatch(args.drawings, args.recursive, args.standard, drawings))
        return failed;
    bool en = args.lang == "en";
    std::vector<report::Report> all;
    BatchOutcome outcome = runDrawings(
        drawings, args.standard, format,
        [&args, format, unit](AcDbDatabase& database, DrawingRun& run, std::string& error) {
            AcDbObjectId boundary;
            ClassNames names;
            DrawingStats measured;
            if (!chooseBoundary(run.path, args.boundary, database, boundary, error) ||
                !computeStats(args, database, boundary, {}, unit, names, measured, error))
                return false;
            noteUnreadParcels(database, measured.tables);
            if (format == BatchFormat::Table) {
                std::ostringstream text;
                printTable(text, args, run.path, measured.balance, measured.tables);
                printSections(text, args, measured.sections);
                run.text = text.str();
            } else {
                run.json =
                    statsJson(run.path, measured.balance, measured.tables, measured.sections);
            }
            run.kept = std::move(measured.tables);
            return true;
        },
        [&all](DrawingRun& run) {
            all.push_back(std::any_cast<report::Report>(std::move(run.kept)));
        });
    std::vector<const report::Report*> reports;
    for (const report::Report& r : all)
        reports.push_back(&r);
    report::Report combined = report::combineReports(reports);
    nlohmann::json total = totalJson(outcome);
    total["tables"] = report::tablesJson(combined);
    total["balance"] = report::balanceJson(combined);
    std::ostringstream end;
    end << "\n"
        << (en ? "== total of " : "== 合计：") << outcome.succeeded
        << (en ? (outcome.succeeded == 1 ? " drawing ==\n" : " drawings ==\n") : " 张图纸 ==\n")
        << report::terminalTables(combined, en);
    return endBatch(format, outcome, total, end.str());
}

}  // namespace

void addStatsCommand(CLI::App& app, int& exitCode) {
    auto* command = app.add_subcommand(
        "stats",
        "Land-use balance tables of the drawing's standard (城乡用地汇总表, 城市建设用地平衡表), "
        "within its scope line");
    auto args = std::make_shared<StatsArgs>();
    command
        ->add_option("DRAWING", args->drawings,
                     "DXF files or folders of them (default: the sample plan); several give "
                     "each one's tables and those of all")
        ->type_name(kDrawingValue);
    command->add_flag("--recursive", args->recursive,
                      "With a folder: the drawings of its subfolders too");
    command
        ->add_option("--boundary", args->boundary,
                     "auto (the largest planning scope line), none, or a handle")
        ->capture_default_str();
    command->add_flag("--status", args->status,
                      "Count the current-status parcels instead of the planned ones");
#if KPLAN_WITH_XLSX
    offerChoices(command->add_option("--format", args->format,
                                     "table, csv, json, jsonl (a line per drawing as it is "
                                     "done, then the total) or xlsx (with -o FILE)"),
                 {"table", "csv", "json", "jsonl", "xlsx"})
        ->capture_default_str();
    command->add_option("-o,--output", args->output, "The spreadsheet file of --format xlsx")
        ->type_name(kFileValue);
#else
    offerChoices(command->add_option("--format", args->format,
                                     "table, csv, json or jsonl (a line per drawing as it is "
                                     "done, then the total)"),
                 {"table", "csv", "json", "jsonl"})
        ->capture_default_str();
#endif
#if KPLAN_WITH_RENDER
    command
        ->add_option("--map", args->map,
                     "Also draw the plan with the table beside it (.png, .svg or .pdf)")
        ->type_name(kFileValue);
#endif
    command->add_option("--lang", args->lang, "Language of the table: zh or en")
        ->check(CLI::IsMember({"zh", "en"}))
        ->capture_default_str();
    command->add_option("--remainder", args->remainder,
                        "Class of the land in the scope that no parcel covers (e.g. S1 for "
                        "roads drawn as gaps); default: a row of its own");
    offerChoices(command->add_option("--units", args->units, "Area unit: hm2, m2, mu or km2"),
                 {"hm2", "m2", "mu", "km2"})
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
    command->add_flag("--interactive", args->interactive,
                      "Ask for the scope on the command line (scope lines, parcels, closed "
                      "lines or a line drawn now), answers one a line from standard input");
    command
        ->add_option("--preview", args->preview,
                     "With --interactive and one scope line: a copy of the drawing with "
                     "the parcels' parts inside the line hatched (.dxf)")
        ->type_name(kDrawingValue);
    command->callback([args, &exitCode] { exitCode = runStats(*args); });
}

}  // namespace kplan::cli
