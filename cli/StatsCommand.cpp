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

#include "cli/Balance.h"
#include "cli/ClassNames.h"
#include "cli/Commands.h"
#include "cli/DrawPlan.h"
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
    bool status = false;
    std::string map;  // a picture of the plan with the table beside it, written too
    StandardOptions standard;
};

void printTable(const StatsArgs& args, const std::string& path, const Balance& b,
                const ClassNames& names) {
    std::cout << "drawing: " << path << "\n";
    std::cout << "standard: " << CKovaDataSet::FGetStandardName().ToUtf8()
              << ", class table: " << CKovaDataSet::FGetCurYDLB().ToUtf8() << "\n";
    if (b.boundary.isNull()) {
        std::cout << "boundary: none, the whole drawing\n";
    } else {
        std::cout << "boundary: " << handleText(b.boundary) << ", " << fixed(b.boundaryHectares, 2)
                  << " ha\n";
    }
    std::cout << (args.status ? "current-status" : "planned") << " parcels: " << b.parcels;
    if (!b.boundary.isNull()) std::cout << " (" << b.crossing << " crossing the boundary)";
    std::cout << "\n\nLand-use balance\n";
    double h = b.totals[0];
    std::vector<std::vector<std::string>> rows = {{"code", "name", "area (ha)", "% of H"}};
    for (std::size_t i = 0; i < kTotals.size(); ++i) {
        rows.push_back({kTotals[i].code, names.of(kTotals[i].code), fixed(b.totals[i], 2),
                        kTotals[i].construction ? percent(b.totals[i], h) : ""});
    }
    std::cout << alignedTable(rows, {false, false, true, true});
    auto tabulation = [&](const char* title, const std::vector<ClassArea>& areas) {
        std::cout << "\n" << title << "\n";
        double sum = 0;
        for (const ClassArea& a : areas)
            sum += a.hectares;
        std::vector<std::vector<std::string>> lines = {{"code", "name", "area (ha)", "%"}};
        for (const ClassArea& a : areas)
            lines.push_back({a.code, a.name, fixed(a.hectares, 2), percent(a.hectares, sum)});
        lines.push_back({"", "total", fixed(sum, 2), areas.empty() ? "" : "100.00"});
        std::cout << alignedTable(lines, {false, false, true, true});
    };
    tabulation("By major class", b.majorClasses);
    tabulation("By class", b.classes);
    std::cout << "\npopulation: " << b.population << "\n";
}

void printCsv(const Balance& b, const ClassNames& names) {
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

void printJson(const std::string& path, const Balance& b) {
    auto list = [](const std::vector<ClassArea>& areas) {
        std::string out = "[";
        for (std::size_t i = 0; i < areas.size(); ++i) {
            out += (i ? ",\n    " : "\n    ");
            out += "{\"code\": " + jsonString(areas[i].code) +
                   ", \"name\": " + jsonString(areas[i].name) +
                   ", \"area_ha\": " + jsonNumber(areas[i].hectares) + "}";
        }
        return out + (areas.empty() ? "]" : "\n  ]");
    };
    std::cout << "{\n  \"drawing\": " << jsonString(path) << ",\n";
    std::cout << "  \"standard\": " << jsonString(CKovaDataSet::FGetStandardName().ToUtf8())
              << ",\n";
    std::cout << "  \"class_table\": " << jsonString(CKovaDataSet::FGetCurYDLB().ToUtf8()) << ",\n";
    if (b.boundary.isNull()) {
        std::cout << "  \"boundary\": null,\n";
    } else {
        std::cout << "  \"boundary\": {\"handle\": " << jsonString(handleText(b.boundary))
                  << ", \"area_ha\": " << jsonNumber(b.boundaryHectares) << "},\n";
    }
    std::cout << "  \"parcels\": " << b.parcels << ",\n  \"totals\": {";
    for (std::size_t i = 0; i < kTotals.size(); ++i) {
        std::cout << (i ? ", " : "") << jsonString(kTotals[i].code) << ": "
                  << jsonNumber(b.totals[i]);
    }
    std::cout << "},\n  \"major_classes\": " << list(b.majorClasses) << ",\n";
    std::cout << "  \"classes\": " << list(b.classes) << ",\n";
    std::cout << "  \"population\": " << b.population << "\n}\n";
}

int runStats(StatsArgs args) {
    Format format;
    LoadedDrawing drawing;
    std::string path, error;
    render::PictureFormat mapFormat;
    if (!args.map.empty() && !render::pictureFormatOf(args.map, mapFormat, error)) {
        std::cerr << "kplan: --map " << error << "\n";
        return 2;
    }
    if (int failed = openForReport(args.drawing, args.format, args.standard, format, drawing, path))
        return failed;
    AcDbObjectId boundary;
    if (!chooseBoundary(args.drawing, args.boundary, *drawing.database(), boundary, error)) {
        std::cerr << "kplan: " << error << "\n";
        return 1;
    }
    ClassNames names;
    Balance balance = measure(*drawing.database(), boundary, args.status, names);
    if (!args.map.empty()) {
        render::BalanceTable table = pictureTable(balance, names);
        if (!drawPlan(*drawing.database(), path, args.map, boundary, args.status, &table, {},
                      error)) {
            std::cerr << "kplan: " << error << "\n";
            return 1;
        }
    }
    // What a lenient read kept as read is no curve, so no parcel: say how many were.
    int leftOut = 0;
    for (AcDbObjectId id : dxf::readReport(*drawing.database()).keptAsRead) {
        if (CheckDKDataVer(id) != 0) ++leftOut;
    }
    if (leftOut > 0) {
        std::cerr << "kplan: " << leftOut
                  << (leftOut == 1 ? " parcel is left out of the statistics: its outline holds "
                                     "a value that is not a number"
                                   : " parcels are left out of the statistics: their outlines "
                                     "hold values that are not numbers")
                  << " (see the warnings above)\n";
    }
    switch (format) {
        case Format::Table:
            printTable(args, path, balance, names);
            break;
        case Format::Csv:
            printCsv(balance, names);
            break;
        case Format::Json:
            printJson(path, balance);
            break;
    }
    std::cout.flush();
    return std::cout ? 0 : 1;
}

}  // namespace

void addStatsCommand(CLI::App& app, int& exitCode) {
    auto* command = app.add_subcommand(
        "stats", "Land-use balance table: totals H to E3, areas by class, population");
    auto args = std::make_shared<StatsArgs>();
    command->add_option("DRAWING", args->drawing, "DXF file (default: the sample plan)");
    command
        ->add_option("--boundary", args->boundary,
                     "auto (the largest planning scope line), none, or a handle")
        ->capture_default_str();
    command->add_flag("--status", args->status,
                      "Count the current-status parcels instead of the planned ones");
    command->add_option("--format", args->format, "table, csv or json")->capture_default_str();
    command->add_option("--map", args->map,
                        "Also draw the plan with the table beside it (.png, .svg or .pdf)");
    addStandardOptions(*command, args->standard);
    addReadOptions(*command, args->standard.recover, args->standard.codePage);
    command->callback([args, &exitCode] { exitCode = runStats(*args); });
}

}  // namespace kplan::cli
