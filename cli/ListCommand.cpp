// "kplan list": the parcels of a drawing, one row each, with their main indicators.
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "cli/ClassNames.h"
#include "cli/Commands.h"
#include "cli/Drawing.h"
#include "cli/Output.h"
#include "record/DKBJXDInfo.h"
#include "record/DKKeys.h"
#include "record/XDataAccess.h"

namespace kplan::cli {

namespace {

struct ListArgs {
    std::string drawing;
    std::string format = "table";
    std::string classPrefix;
    std::string number;
    bool hasClass = false, hasNumber = false;
    StandardOptions standard;
};

struct Kind {
    const char* name;
    AcDbObjectIdArray ids;
    bool underground;
};

const char* const kColumns[] = {"handle",      "generation", "kind",         "number",
                                "class",       "class_name", "area_ha",      "far",
                                "green_ratio", "density",    "height_limit", "population"};
const wchar_t* const kFields[] = {dk::FS_DKBH, dk::FS_DKXZ, dk::FD_RJL, dk::FD_LDL,
                                  dk::FD_JZMD, dk::FD_JZXG, dk::FN_ZRKS};

struct Row {
    std::string handle, kind, number, cls, className, far, green, density, height, population;
    int generation = 0;
    double hectares = 0;
};

std::string text(const CString& value) {
    CString trimmed = value;
    trimmed.Trim();
    return trimmed.ToUtf8();
}

Row readRow(AcDbObjectId id, const Kind& kind, const ClassNames& names) {
    CDKBJXDInfo parcel(id);
    CStringArray keys, values, apps;
    for (const wchar_t* key : kFields)
        keys.Add(key);
    parcel.GetData(keys, values, apps);
    Row row;
    row.handle = handleText(id);
    row.generation = CheckDKDataVer(id);
    row.kind = kind.name;
    row.number = text(values[0]);
    row.cls = text(values[1]);
    if (kind.underground) {
        CString value;
        if (row.number.empty() && parcel.GetData(dk::FS_DXKJBH, value)) row.number = text(value);
        if (parcel.GetData(dk::FS_DXKJXZ, value) && !text(value).empty()) row.cls = text(value);
    }
    row.className = names.of(row.cls);
    parcel.GetArea(row.hectares);
    row.far = text(values[2]);
    row.green = text(values[3]);
    row.density = text(values[4]);
    row.height = text(values[5]);
    row.population = text(values[6]);
    return row;
}

std::vector<std::string> cells(const Row& r, bool forPeople) {
    return {r.handle,
            std::to_string(r.generation),
            r.kind,
            r.number,
            r.cls,
            r.className,
            forPeople ? fixed(r.hectares, 4) : jsonNumber(r.hectares),
            r.far,
            r.green,
            r.density,
            r.height,
            r.population};
}

// The parcels to list by kind, narrowed by --number and --class.
std::vector<Kind> select(const ListArgs& args, AcDbDatabase& database) {
    std::vector<Kind> kinds = {{"planned", {}, false},
                               {"current status", {}, false},
                               {"underground planned", {}, true},
                               {"underground current", {}, true}};
    CDKBJXDInfo::GetDkbj(kinds[0].ids);
    kinds[0].ids.append(olderGenerationParcels(database, kinds[0].ids));
    CDKBJXDInfo::GetAllXZYD(kinds[1].ids);
    CDKBJXDInfo::GetDXKJ(kinds[2].ids, 1);
    CDKBJXDInfo::GetDXKJ(kinds[3].ids, 0);
    if (args.hasNumber) {
        CString number = CString::FromUtf8(args.number);
        for (Kind& kind : kinds) {
            AcDbObjectIdArray found;
            if (kind.underground) {
                CDKBJXDInfo::GetDXKJByBH(number, kind.ids, found);
            } else {
                CDKBJXDInfo::GetDkbjByBH(number, kind.ids, found);
            }
            kind.ids = found;
        }
    }
    if (args.hasClass) {
        CString prefix = CString::FromUtf8(args.classPrefix);
        for (std::size_t k = 0; k < kinds.size(); ++k) {
            AcDbObjectIdArray found;
            if (k < 2) CDKBJXDInfo::GetDkbjByClass(prefix, kinds[k].ids, found, k == 0 ? 1 : 0);
            kinds[k].ids = found;
        }
    }
    return kinds;
}

int runList(const ListArgs& args) {
    Format format;
    LoadedDrawing drawing;
    std::string path;
    if (int failed = openForReport(args.drawing, args.format, args.standard, format, drawing, path))
        return failed;
    ClassNames names;
    std::vector<Row> rows;
    for (const Kind& kind : select(args, *drawing.database())) {
        for (AcDbObjectId id : kind.ids)
            rows.push_back(readRow(id, kind, names));
    }
    std::vector<std::string> header(std::begin(kColumns), std::end(kColumns));
    if (format == Format::Table) {
        std::vector<std::vector<std::string>> table = {header};
        for (const Row& r : rows)
            table.push_back(cells(r, true));
        std::cout << alignedTable(
            table, {false, true, false, false, false, false, true, true, true, true, true, true});
        std::cout << rows.size() << (rows.size() == 1 ? " parcel\n" : " parcels\n");
    } else if (format == Format::Csv) {
        std::cout << csvRow(header);
        for (const Row& r : rows)
            std::cout << csvRow(cells(r, false));
    } else {
        std::cout << "[";
        for (std::size_t i = 0; i < rows.size(); ++i) {
            std::vector<std::string> values = cells(rows[i], false);
            std::cout << (i ? ",\n " : "\n ") << "{";
            for (std::size_t c = 0; c < values.size(); ++c) {
                bool number = c == 1 || c == 6;
                std::cout << (c ? ", " : "") << jsonString(kColumns[c]) << ": "
                          << (number ? values[c] : jsonString(values[c]));
            }
            std::cout << "}";
        }
        std::cout << (rows.empty() ? "]\n" : "\n]\n");
    }
    std::cout.flush();
    return std::cout ? 0 : 1;
}

}  // namespace

void addListCommand(CLI::App& app, int& exitCode) {
    auto* command = app.add_subcommand("list", "One row per parcel with its main indicators");
    auto args = std::make_shared<ListArgs>();
    command->add_option("DRAWING", args->drawing, "DXF file (default: the sample plan)");
    command->add_option("--format", args->format, "table, csv or json")->capture_default_str();
    command->add_option("--class", args->classPrefix,
                        "Only planned and current-status parcels whose class begins so");
    command->add_option("--number", args->number, "Only the parcels with this number");
    addStandardOptions(*command, args->standard);
    command->callback([args, command, &exitCode] {
        args->hasClass = command->count("--class") > 0;
        args->hasNumber = command->count("--number") > 0;
        exitCode = runList(*args);
    });
}

}  // namespace kplan::cli
