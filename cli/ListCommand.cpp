// "kplan list": the records of a drawing, one row each: parcels with their main
// indicators (the default), or units, blocks, buildings, hatches or red lines with their
// fields.
#include <algorithm>
#include <functional>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "cli/ClassNames.h"
#include "cli/Commands.h"
#include "cli/Drawing.h"
#include "cli/DrawingBatch.h"
#include "cli/OptionValues.h"
#include "cli/Output.h"
#include "geometry/LabelPoint.h"
#include "host/arx/dbhatch.h"
#include "host/arx/peek.h"
#include "record/DKBJXDInfo.h"
#include "record/DKKeys.h"
#include "record/DKTCInfo.h"
#include "record/DYBJInfo.h"
#include "record/GHHXInfo.h"
#include "record/JFBJInfo.h"
#include "record/JZBJInfo.h"
#include "record/LabelList.h"
#include "record/XDataAccess.h"
#include "report/JsonWriter.h"
#include "standard/KovaAttribSet.h"

namespace kplan::cli {

namespace {

const char* const kKinds[] = {"parcel", "unit", "block", "building", "hatch", "redline"};

struct ListArgs {
    std::vector<std::string> drawings;  // none: the sample plan; several or a folder: a batch
    bool recursive = false;
    std::string format = "table";
    std::string kind = "parcel";
    std::string classPrefix;
    std::string number;
    bool hasClass = false, hasNumber = false;
    StandardOptions standard;
};

// ------------------------------------------------------------------ listing

struct Column {
    std::string key;      // CSV and JSON
    std::string title;    // the table
    bool right = false;   // right-aligned in the table
    bool number = false;  // a JSON number
    bool tableToo = true;
};

struct Cell {
    std::string value, shown;  // for machines, for people
};

struct Listing;
// Writes one row as soon as it is made, the columns being known by then.
using RowStream = std::function<void(const Listing& listing, const std::vector<Cell>& row)>;

// What a kind lists, printed the same way for every kind.
struct Listing {
    std::vector<Column> columns;
    // Kept only when nothing streams them: the table needs them all for its widths; CSV and
    // JSON are written row by row, so that a large drawing's list costs no more memory than
    // one row.
    std::vector<std::vector<Cell>> rows;
    std::size_t count = 0;
    RowStream stream;
    const char* one = "record";
    const char* many = "records";
    // The table leaves out field columns that no row fills.
    std::size_t fixedColumns = 0;
    bool dropEmptyFields = false;

    void add(std::vector<Cell> row) {
        if (stream) {
            stream(*this, row);
        } else {
            rows.push_back(std::move(row));
        }
        ++count;
    }
};

std::string text(const CString& value) {
    CString trimmed = value;
    trimmed.Trim();
    return trimmed.ToUtf8();
}

Cell plain(const std::string& value) {
    return {value, value};
}

Cell hectares(double value) {
    return {jsonNumber(value), fixed(value, 4)};
}

Cell coordinate(double value) {
    return {jsonNumber(value), fixed(value, 2)};
}

std::vector<std::size_t> tableColumns(const Listing& listing) {
    std::vector<std::size_t> shown;
    for (std::size_t c = 0; c < listing.columns.size(); ++c) {
        if (!listing.columns[c].tableToo) continue;
        bool filled = !listing.dropEmptyFields || c < listing.fixedColumns;
        for (const auto& row : listing.rows)
            filled = filled || !row[c].shown.empty();
        if (filled) shown.push_back(c);
    }
    return shown;
}

void printTable(std::ostream& out, const Listing& listing) {
    std::vector<std::size_t> shown = tableColumns(listing);
    std::vector<std::vector<std::string>> table(1);
    std::vector<bool> right;
    for (std::size_t c : shown) {
        table[0].push_back(listing.columns[c].title);
        right.push_back(listing.columns[c].right);
    }
    for (const auto& row : listing.rows) {
        table.emplace_back();
        for (std::size_t c : shown)
            table.back().push_back(row[c].shown);
    }
    out << alignedTable(table, right);
    out << listing.count << " " << (listing.count == 1 ? listing.one : listing.many) << "\n";
}

nlohmann::json rowJson(const Listing& listing, const std::vector<Cell>& row) {
    nlohmann::json object = nlohmann::json::object();
    for (std::size_t c = 0; c < listing.columns.size(); ++c) {
        const Column& column = listing.columns[c];
        object[column.key] = jsonValue(row[c].value, column.number);
    }
    return object;
}

nlohmann::json rowsJson(const Listing& listing) {
    nlohmann::json rows = nlohmann::json::array();
    for (const auto& row : listing.rows)
        rows.push_back(rowJson(listing, row));
    return rows;
}

// CSV as the rows come: the header before the first (or alone, when there is none).
void csvHeader(std::ostream& out, const Listing& listing) {
    std::vector<std::string> header;
    for (const Column& column : listing.columns)
        header.push_back(column.key);
    out << csvRow(header);
}

RowStream csvStream(std::ostream& out) {
    return [&out](const Listing& listing, const std::vector<Cell>& row) {
        if (listing.count == 0) csvHeader(out, listing);
        std::vector<std::string> values;
        for (const Cell& cell : row)
            values.push_back(cell.value);
        out << csvRow(values);
    };
}

void endCsv(std::ostream& out, const Listing& listing) {
    if (listing.count == 0) csvHeader(out, listing);
}

// The JSON array of report::dumpJson, written object by object.
RowStream jsonStream(std::ostream& out) {
    return [&out](const Listing& listing, const std::vector<Cell>& row) {
        out << (listing.count == 0 ? "[\n" : ",\n");
        std::string object = report::dumpJson(rowJson(listing, row));
        object.pop_back();
        std::size_t start = 0;
        while (start < object.size()) {
            std::size_t end = object.find('\n', start);
            if (end == std::string::npos) end = object.size();
            out << "  ";
            out.write(object.data() + start, static_cast<std::streamsize>(end - start));
            if (end < object.size()) out << "\n";
            start = end + 1;
        }
    };
}

void endJson(std::ostream& out, const Listing& listing) {
    out << (listing.count == 0 ? "[]\n" : "\n]\n");
}

// ------------------------------------------------------------------ parcels

struct ParcelKind {
    const char* name;
    AcDbObjectIdArray ids;
    bool underground;
};

const wchar_t* const kParcelFields[] = {dk::FS_DKBH, dk::FS_DKXZ, dk::FD_RJL, dk::FD_LDL,
                                        dk::FD_JZMD, dk::FD_JZXG, dk::FN_ZRKS};

std::vector<Cell> parcelRow(AcDbDatabase& database, AcDbObjectId id, const ParcelKind& kind,
                            const ClassNames& names) {
    CDKBJXDInfo parcel(id);
    CStringArray keys, values, apps;
    for (const wchar_t* key : kParcelFields)
        keys.Add(key);
    parcel.GetData(keys, values, apps);
    std::string number = text(values[0]), cls = text(values[1]);
    if (kind.underground) {
        CString value;
        if (number.empty() && parcel.GetData(dk::FS_DXKJBH, value)) number = text(value);
        if (parcel.GetData(dk::FS_DXKJXZ, value) && !text(value).empty()) cls = text(value);
    }
    double area = 0;
    parcel.GetArea(area);
    // Where a sibling module would place the parcel's label; empty when none is found. The
    // temporary copies it is measured on are erased again: freed at once, a large drawing's
    // list stays within the drawing's own memory.
    AcGePoint3d label;
    std::size_t scratch = database.size();
    bool labelled = FGetCenterPt(id, label) != 0;
    database.dropErasedSince(scratch);
    return {plain(handleText(id)),
            plain(std::to_string(CheckDKDataVer(id))),
            plain(kind.name),
            plain(number),
            plain(cls),
            plain(names.of(cls)),
            hectares(area),
            plain(text(values[2])),
            plain(text(values[3])),
            plain(text(values[4])),
            plain(text(values[5])),
            plain(text(values[6])),
            labelled ? coordinate(label.x) : Cell{},
            labelled ? coordinate(label.y) : Cell{}};
}

// The parcels to list by kind, narrowed by --number and --class.
std::vector<ParcelKind> selectParcels(const ListArgs& args, AcDbDatabase& database) {
    std::vector<ParcelKind> kinds = {{"planned", {}, false},
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
        for (ParcelKind& kind : kinds) {
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

void listParcels(const ListArgs& args, AcDbDatabase& database, Listing& listing) {
    listing.one = "parcel";
    listing.many = "parcels";
    const char* keys[] = {"handle",       "generation", "kind",    "number",      "class",
                          "class_name",   "area_ha",    "far",     "green_ratio", "density",
                          "height_limit", "population", "label_x", "label_y"};
    for (const char* key : keys) {
        std::string k = key;
        // Indicators are numbers in JSON when the record's text reads as one.
        bool right = k == "generation" || k == "area_ha" || k == "label_x" || k == "label_y" ||
                     k == "far" || k == "green_ratio" || k == "density" || k == "height_limit" ||
                     k == "population";
        listing.columns.push_back({k, k, right, right});
    }
    ClassNames names;
    for (const ParcelKind& kind : selectParcels(args, database)) {
        for (AcDbObjectId id : kind.ids)
            listing.add(parcelRow(database, id, kind, names));
    }
}

// ------------------------------------------------------------------ units, blocks, buildings

// The fields a kind shows: those its attribute file switches on, else its fixed labels.
void addFieldColumns(Listing& listing, const wchar_t* app, dk::LabelTable fallback,
                     CStringArray& keys) {
    CString path;
    CStringArray aliases;
    CKovaAttribSet::FGetAttFileAndAppName(app, path, keys, aliases);
    if (keys.IsEmpty()) {
        for (const dk::LabelKey& field : fallback) {
            keys.Add(field.key);
            aliases.Add(field.label);
        }
    }
    listing.fixedColumns = listing.columns.size();
    listing.dropEmptyFields = true;
    for (INT_PTR i = 0; i < keys.GetSize(); ++i) {
        std::string title = text(aliases[i]);
        std::string key = keys[i].ToUtf8();
        // Real and integer fields (FD_, FDC_, FN_) are numbers in JSON when they read as one.
        bool number = key.rfind("FD", 0) == 0 || key.rfind("FN_", 0) == 0;
        listing.columns.push_back({key, title.empty() ? key : title, false, number});
    }
}

void addFieldCells(const CBoundaryRecord& record, const CStringArray& keys,
                   std::vector<Cell>& row) {
    for (const CString& key : keys) {
        CString value;
        record.GetData(key, value);
        row.push_back(plain(text(value)));
    }
}

// Units and blocks: area, the planned parcels they hold, their fields.
template <typename Record>
void listAreas(const wchar_t* app, dk::LabelTable fields, const AcDbObjectIdArray& ids,
               const char* one, const char* many, Listing& listing) {
    listing.one = one;
    listing.many = many;
    listing.columns = {{"handle", "handle"},
                       {"area_ha", "area_ha", true, true},
                       {"parcels", "parcels", true, true},
                       {"parcel_numbers", "parcel_numbers", false, false, false}};
    CStringArray keys;
    addFieldColumns(listing, app, fields, keys);
    for (AcDbObjectId id : ids) {
        Record record;
        record.SetObject(id);
        double area = 0;
        record.GetArea(area);
        AcDbObjectIdArray parcels;
        record.GetDkbj(parcels);
        std::string numbers;
        for (AcDbObjectId parcel : parcels) {
            CString number;
            CDKBJXDInfo(parcel).GetData(dk::FS_DKBH, number);
            numbers += (numbers.empty() ? "" : " ") + text(number);
        }
        std::vector<Cell> row = {plain(handleText(id)), hectares(area),
                                 plain(std::to_string(parcels.length())), plain(numbers)};
        addFieldCells(record, keys, row);
        listing.add(std::move(row));
    }
}

void listUnits(Listing& listing) {
    AcDbObjectIdArray ids;
    CDYBJInfo::GetDYbj(ids);
    listAreas<CDYBJInfo>(dk::FAPP_GHDY, dk::UNIT_FIELDS, ids, "unit", "units", listing);
}

void listBlocks(Listing& listing) {
    AcDbObjectIdArray ids;
    CJFBJInfo::GetJFbj(ids);
    listAreas<CJFBJInfo>(dk::FAPP_GHJF, dk::BLOCK_FIELDS, ids, "block", "blocks", listing);
}

void listBuildings(Listing& listing) {
    listing.one = "building";
    listing.many = "buildings";
    listing.columns = {{"handle", "handle"}, {"area_ha", "area_ha", true, true}};
    CStringArray keys;
    addFieldColumns(listing, dk::FAPP_JZLKX, dk::BUILDING_FIELDS, keys);
    AcDbObjectIdArray ids;
    CJZBJInfo::GetJZbj(ids);
    for (AcDbObjectId id : ids) {
        CJZBJInfo building(id);
        double area = 0;
        building.GetArea(area);
        std::vector<Cell> row = {plain(handleText(id)), hectares(area)};
        addFieldCells(building, keys, row);
        listing.add(std::move(row));
    }
}

// ------------------------------------------------------------------ hatches, red lines

std::string patternOf(AcDbObjectId id) {
    auto* hatch = AcDbHatch::cast(arx::peekObject(id));
    return hatch != nullptr ? CString(hatch->patternName()).ToUtf8() : "SOLID";
}

std::string titleOr(const CString& alias, const wchar_t* fallback) {
    return alias.IsEmpty() ? CString(fallback).ToUtf8() : alias.ToUtf8();
}

// Hatches with the parcel number and class of their list, and the parcel they fill.
void listHatches(Listing& listing) {
    listing.one = "hatch";
    listing.many = "hatches";
    listing.columns = {{"handle", "handle"},
                       {"FS_DKBH", titleOr(CKovaAttribSet::FGetGHAlias(dk::FS_DKBH), dk::LBL_DKBH)},
                       {"FS_DKXZ", titleOr(CKovaAttribSet::FGetGHAlias(dk::FS_DKXZ), dk::LBL_DKLB)},
                       {"pattern", "pattern"},
                       {"parcel", "parcel"}};
    AcDbObjectIdArray ids;
    CDKTCInfo::GetDktc(ids);
    for (AcDbObjectId id : ids) {
        CDKTCInfo hatch(id);
        CString number, cls;
        hatch.GetData(dk::LBL_DKBH, number);
        hatch.GetData(dk::LBL_DKLB, cls);
        AcDbObjectId parcel;
        listing.add({plain(handleText(id)), plain(text(number)), plain(text(cls)),
                     plain(patternOf(id)), plain(hatch.GetDkbj(parcel) ? handleText(parcel) : "")});
    }
}

// Red lines of both spaces with their kind ("规划类型") and whatever else their lists hold.
void listRedLines(AcDbDatabase& database, Listing& listing) {
    listing.one = "red line";
    listing.many = "red lines";
    AcDbObjectIdArray ids;
    CGHHXInfo::GetGhhx(dk::GHHX_ALL, ids);
    std::vector<std::string> labels = {CString(dk::LBL_GHLX).ToUtf8()};
    std::vector<std::pair<CStringArray, CStringArray>> lists(ids.length());
    for (int i = 0; i < ids.length(); ++i) {
        dk::ReadListPairs(ids[i], dk::APP_GHHX, lists[i].first, lists[i].second);
        for (const CString& label : lists[i].first) {
            if (std::find(labels.begin(), labels.end(), label.ToUtf8()) == labels.end())
                labels.push_back(label.ToUtf8());
        }
    }
    listing.columns = {{"handle", "handle"}, {"space", "space"}};
    for (const std::string& label : labels)
        listing.columns.push_back({label, label});
    for (int i = 0; i < ids.length(); ++i) {
        auto* entity = AcDbEntity::cast(arx::peekObject(ids[i]));
        bool paper = entity != nullptr && entity->ownerId() != database.modelSpaceId();
        std::vector<Cell> row = {plain(handleText(ids[i])), plain(paper ? "paper" : "model")};
        for (const std::string& label : labels) {
            CString value;
            CGHHXInfo(ids[i]).GetData(CString::FromUtf8(label), value);
            row.push_back(plain(text(value)));
        }
        listing.add(std::move(row));
    }
}

// ------------------------------------------------------------------ the command

// The rows of the kind, kept in the listing, or each given to stream when there is one.
Listing listKind(const ListArgs& args, AcDbDatabase& database, RowStream stream = {}) {
    Listing listing;
    listing.stream = std::move(stream);
    if (args.kind == "unit") {
        listUnits(listing);
    } else if (args.kind == "block") {
        listBlocks(listing);
    } else if (args.kind == "building") {
        listBuildings(listing);
    } else if (args.kind == "hatch") {
        listHatches(listing);
    } else if (args.kind == "redline") {
        listRedLines(database, listing);
    } else {
        listParcels(args, database, listing);
    }
    return listing;
}

// Several drawings, or a folder: each drawing's rows as it alone gives them, then how many
// there are in all.
int runListBatch(const ListArgs& args) {
    BatchFormat format;
    std::vector<std::string> drawings;
    if (int refused = parseBatchFormat(args.format, "table, csv, json or jsonl", format))
        return refused;
    if (int failed = prepareBatch(args.drawings, args.recursive, args.standard, drawings))
        return failed;
    std::size_t rows = 0;
    const char* many = "records";
    BatchOutcome outcome = runDrawings(
        drawings, args.standard, format,
        [&args, format](AcDbDatabase& database, DrawingRun& run, std::string&) {
            Listing listing = listKind(args, database);
            if (format == BatchFormat::Table) {
                std::ostringstream text;
                text << "drawing: " << run.path << "\n";
                printTable(text, listing);
                run.text = text.str();
            } else {
                run.json = {{"rows", rowsJson(listing)}};
            }
            run.kept = std::pair<std::size_t, const char*>(listing.count, listing.many);
            return true;
        },
        [&rows, &many](DrawingRun& run) {
            auto [count, kind] = std::any_cast<std::pair<std::size_t, const char*>>(run.kept);
            rows += count;
            many = kind;
        });
    nlohmann::json total = totalJson(outcome);
    total["rows"] = rows;
    return endBatch(format, outcome, total,
                    "\n== total of " + std::to_string(outcome.succeeded) +
                        (outcome.succeeded == 1 ? " drawing: " : " drawings: ") +
                        std::to_string(rows) + " " + many + " ==\n");
}

int runList(const ListArgs& args) {
    if (args.kind != "parcel" && (args.hasClass || args.hasNumber)) {
        std::cerr << "kplan: --class and --number narrow parcels only, not --kind " << args.kind
                  << "\n";
        return 2;
    }
    if (args.format == "jsonl" || !singleDrawing(args.drawings)) return runListBatch(args);
    Format format;
    LoadedDrawing drawing;
    std::string path;
    if (int failed = openForReport(args.drawings.empty() ? "" : args.drawings[0], args.format,
                                   args.standard, format, drawing, path))
        return failed;
    if (format == Format::Table) {
        printTable(std::cout, listKind(args, *drawing.database()));
    } else if (format == Format::Csv) {
        endCsv(std::cout, listKind(args, *drawing.database(), csvStream(std::cout)));
    } else {
        endJson(std::cout, listKind(args, *drawing.database(), jsonStream(std::cout)));
    }
    std::cout.flush();
    return std::cout ? 0 : 1;
}

}  // namespace

void addListCommand(CLI::App& app, int& exitCode) {
    auto* command = app.add_subcommand("list", "One row per record: parcels, or another kind");
    auto args = std::make_shared<ListArgs>();
    command
        ->add_option("DRAWING", args->drawings,
                     "DXF files or folders of them (default: the sample plan)")
        ->type_name(kDrawingValue);
    command->add_flag("--recursive", args->recursive,
                      "With a folder: the drawings of its subfolders too");
    offerChoices(command->add_option("--format", args->format,
                                     "table, csv, json or jsonl (a line per drawing as it is "
                                     "done, then the total)"),
                 {"table", "csv", "json", "jsonl"})
        ->capture_default_str();
    command->add_option("--kind", args->kind, "parcel, unit, block, building, hatch or redline")
        ->check(CLI::IsMember(std::vector<std::string>(std::begin(kKinds), std::end(kKinds))))
        ->capture_default_str();
    command->add_option("--class", args->classPrefix,
                        "Only planned and current-status parcels whose class begins so");
    command->add_option("--number", args->number, "Only the parcels with this number");
    addStandardOptions(*command, args->standard);
    addReadOptions(*command, args->standard.recover, args->standard.codePage);
    command->callback([args, command, &exitCode] {
        args->hasClass = command->count("--class") > 0;
        args->hasNumber = command->count("--number") > 0;
        exitCode = runList(*args);
    });
}

}  // namespace kplan::cli
