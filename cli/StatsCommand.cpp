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
                const ClassNames& names) {
    // Nothing here changes the drawing, so each parcel is clipped once for all the totals.
    stats::ClipSession session;
    Balance b;
    b.boundary = boundary;
    AcDbObjectIdArray all, counted, crossing;
    if (status) {
        CDKBJXDInfo::GetAllXZYD(all);
    } else {
        CDKBJXDInfo::GetDkbj(all);
        // The balance counts the parcels the current-generation scan finds, as the CAD
        // command does; say so when the drawing has others.
        int older = olderGenerationParcels(database, all).length();
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

std::string percent(double part, double whole) {
    return whole > 1e-12 ? fixed(part / whole * 100, 2) : "";
}

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
    if (int failed = openForReport(args.drawing, args.format, args.standard, format, drawing, path))
        return failed;
    AcDbObjectId boundary;
    if (!chooseBoundary(args, *drawing.database(), boundary, error)) {
        std::cerr << "kplan: " << error << "\n";
        return 1;
    }
    ClassNames names;
    Balance balance = measure(*drawing.database(), boundary, args.status, names);
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
    addStandardOptions(*command, args->standard);
    addReadOptions(*command, args->standard.recover, args->standard.codePage);
    command->callback([args, &exitCode] { exitCode = runStats(*args); });
}

}  // namespace kplan::cli
