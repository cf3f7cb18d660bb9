#include "cli/Drawing.h"

#include "cli/ClassTableCheck.h"
#include "cli/Messages.h"
#include "cli/OptionValues.h"

#include <cctype>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <system_error>
#include <unordered_set>

#include "host/arx/dbcurve.h"
#include "host/arx/dbsymtb.h"
#include "host/arx/peek.h"
#include "host/db/ExecutablePath.h"
#include "host/db/InstalledData.h"
#include "host/db/TextCodec.h"
#include "host/db/Utf8Path.h"
#include "host/dxf/Dxf.h"
#include "host/kova/KovaDB.h"
#include "host/kova/KovaDataSet.h"
#include "host/mfc/CString.h"
#include "record/DKBJXDInfo.h"
#include "record/DKKeys.h"
#include "record/ObjectIdHash.h"
#include "record/XDataAccess.h"
#include "report/DrawingAreas.h"

namespace kplan::cli {

namespace fs = std::filesystem;

namespace {

CString wide(const std::string& utf8) {
    return CString::FromUtf8(utf8);
}

bool exists(const fs::path& path, bool directory) {
    std::error_code ec;
    return directory ? fs::is_directory(path, ec) : fs::is_regular_file(path, ec);
}

// The project parameters a run may set: those the library reads.
const std::wstring_view kProjectParams[] = {dk::PARAM_CALC_AREA, dk::PARAM_CUT_BOUNDARY};

// "NAME=Y" into the parameter's full name and its value; NAME is the full name or the
// part before its bracket.
bool splitParam(const std::string& param, std::string& name, std::string& value,
                std::string& error) {
    std::size_t at = param.rfind('=');
    std::string given = at == std::string::npos ? param : param.substr(0, at);
    value = at == std::string::npos ? std::string() : param.substr(at + 1);
    if (value == "y") value = "Y";
    if (value == "n") value = "N";
    name.clear();
    std::string known;
    for (std::wstring_view full : kProjectParams) {
        std::string utf8 = db::wideToUtf8(full);
        if (given == utf8 || given == utf8.substr(0, utf8.find('['))) name = utf8;
        known += (known.empty() ? " " : "; ") + utf8;
    }
    if (name.empty()) {
        error = "--param " + param +
                ": unknown project parameter; known are (by full name or "
                "the name before its bracket):" +
                known;
        return false;
    }
    if (value != "Y" && value != "N") {
        error = "--param " + param + ": expected NAME=Y or NAME=N";
        return false;
    }
    return true;
}

}  // namespace

void addStandardOptions(CLI::App& command, StandardOptions& options, const char* tableOption) {
    command
        .add_option("--data", options.data,
                    "Standards directory (default: KPLAN_DATA, else the shipped one)")
        ->type_name(kFolderValue);
    command.add_option("--standard", options.standard,
                       "Standard, a folder of the standards directory (default: 通用国标)");
    command.add_option(tableOption, options.table,
                       "Land-use class table of the standard (default: 2011国标城乡用地类别.txt)");
    command
        .add_option("--param", options.params,
                    "Project parameter for this run, NAME=Y or NAME=N (repeatable, one value "
                    "each)")
        ->allow_extra_args(false)
        ->check(CLI::Validator(
            [](std::string& param) {
                std::string name, value, error;
                // The parser names the option itself.
                return splitParam(param, name, value, error) ? std::string()
                                                             : error.substr(error.find(' ') + 1);
            },
            ""));
}

void addReadOptions(CLI::App& command, bool& recover, std::string& codePage) {
    command.add_flag("--recover", recover,
                     "Read what a lenient reader reads (missing ENDSEC or EOF, header "
                     "variables after ENDSEC, handles given twice, numbers that are not "
                     "numbers) and say what was repaired");
    command.add_option("--codepage", codePage,
                       "Code page of the strings of a file before AC1021 (ANSI_1252, "
                       "ANSI_936, ...), over what the file says; default: its $DWGCODEPAGE, "
                       "else decided from its text");
}

std::unique_ptr<AcDbDatabase> loadDrawing(const std::string& path, bool recover,
                                          const std::string& codePage, std::string& error) {
    // A DWG file starts with its version ("AC1032"); a DXF file with a group code or the
    // binary DXF sentinel.
    char head[6] = {};
    if (std::ifstream probe(db::utf8Path(path), std::ios::binary);
        probe.read(head, sizeof head) && std::string_view(head, 4) == "AC10" &&
        std::isdigit(static_cast<unsigned char>(head[4]))) {
        error = path + ": DWG is not read; save it as DXF";
        return nullptr;
    }
    dxf::ReadOptions options;
    options.recover = recover;
    options.codePage = codePage;
    std::unique_ptr<AcDbDatabase> database;
    if (path == "-") {
        database = std::make_unique<AcDbDatabase>(false);
        if (!dxf::read(std::cin, *database, error, "<stdin>", options)) database.reset();
    } else {
        database = dxf::load(path, error, options);
    }
    if (database) {
        for (const std::string& warning : dxf::readReport(*database).warnings)
            warn() << "kplan: warning: " << warning << "\n";
    }
    return database;
}

void addForceOption(CLI::App& command, bool& force) {
    command.add_flag("--force", force, "Write the drawing even to a name without .dxf");
}

void addDrawingInAndOut(CLI::App& command, std::string& drawing, std::string& out) {
    command.add_option("DRAWING", drawing, "DXF file to read")
        ->type_name(kDrawingValue)
        ->required();
    command.add_option("-o,--output", out, "DXF file to write")
        ->type_name(kDrawingValue)
        ->required();
}

int checkDxfOutput(const std::string& path, bool force) {
    std::string extension = db::utf8Name(db::utf8Path(path).extension());
    for (char& c : extension)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    if (force || extension == ".dxf" || path == "-") return 0;
    std::cerr << "kplan: " << path
              << ": the output is written as DXF; name it .dxf (or --force to write it anyway)\n";
    return 2;
}

bool applyStandard(const StandardOptions& options, std::string& error) {
    // A standard given as a path (it holds a "/") is that folder, whatever --data says.
    std::string data = options.data, standardName = options.standard;
    if (standardName.find('/') != std::string::npos) {
        fs::path folder = db::utf8Path(standardName).lexically_normal();
        if (!folder.has_filename()) folder = folder.parent_path();
        if (!exists(folder, true)) {
            error = "--standard " + options.standard + ": no such folder";
            return false;
        }
        data = db::utf8Name(fs::absolute(folder).parent_path());
        standardName = db::utf8Name(folder.filename());
    }
    CKovaDataSet::FSetGStandardDirPath(wide(data));
    CKovaDataSet::FSetStandardName(wide(standardName));
    CKovaDataSet::FSetCurYDLB(wide(options.table));
    fs::path root = db::utf8Path(CKovaDataSet::FGetGStandardDirPath().ToUtf8());
    std::string standard = CKovaDataSet::FGetStandardName().ToUtf8();
    if (!exists(root, true)) {
        error = "no standards directory " + db::utf8Name(root);
        return false;
    }
    if (!exists(root / db::utf8Path(standard), true)) {
        error = "unknown standard \"" + standard + "\": no folder " +
                db::utf8Name(root / db::utf8Path(standard));
        return false;
    }
    CString table;
    if (!CKovaDataSet::FGetGStandardOneFilePath(table, L"用地分类\\", CKovaDataSet::FGetCurYDLB(),
                                                CKovaDataSet::FGetStandardName(), 1)) {
        error = "unknown class table \"" + CKovaDataSet::FGetCurYDLB().ToUtf8() + "\": not in " +
                db::utf8Name(root / db::utf8Path(standard) / db::utf8Path("用地分类"));
        return false;
    }
    if (!checkClassTable(table.ToUtf8(), error)) return false;
    for (const std::string& param : options.params) {
        std::string name, value;
        if (!splitParam(param, name, value, error)) return false;
    }
    return true;
}

std::string samplePlanPath() {
    std::vector<fs::path> candidates;
    if (fs::path installed = db::installedDataFolder("samples"); !installed.empty())
        candidates.push_back(installed);
    if (fs::path exe = db::executablePath(); !exe.empty())
        candidates.push_back(exe.parent_path() / ".." / "share" / "kplan" / "samples");
    // A program run from its build tree takes the sample of the sources it was built from.
    candidates.push_back(db::utf8Path(KPLAN_SOURCE_DIR) / "data" / "samples");
    for (const fs::path& dir : candidates) {
        fs::path plan = (dir / "sample-plan.dxf").lexically_normal();
        if (exists(plan, false)) return shownPath(db::utf8Name(plan));
    }
    return {};
}

std::string shownPath(const std::string& path) {
    std::error_code ec;
    fs::path whole = fs::absolute(db::utf8Path(path), ec).lexically_normal();
    if (ec) return path;
    fs::path here = fs::current_path(ec);
    fs::path relative = ec ? fs::path() : whole.lexically_relative(here);
    bool inside = !relative.empty() && *relative.begin() != "..";
    return db::utf8Name(inside ? relative : whole);
}

std::string classTableShown() {
    CString table;
    if (CKovaDataSet::FGetGStandardOneFilePath(table, L"用地分类\\", CKovaDataSet::FGetCurYDLB(),
                                               CKovaDataSet::FGetStandardName(), 1) == 1)
        return shownPath(table.ToUtf8());
    return CKovaDataSet::FGetCurYDLB().ToUtf8();
}

LoadedDrawing::~LoadedDrawing() {
#if defined(__SANITIZE_ADDRESS__)
    if (document_ != nullptr) acDocManager->closeDocument(document_);
#else
    // Freeing a large drawing object by object takes longer than the statistics on it;
    // the program ends right after (main leaves with _Exit), and the system takes the
    // memory back at once.
#endif
}

bool LoadedDrawing::open(const std::string& path, const StandardOptions& options,
                         std::string& error) {
    if (exists(path, true)) {
        error = path + ": is a folder, not a drawing";
        return false;
    }
    std::unique_ptr<AcDbDatabase> database =
        loadDrawing(path, options.recover, options.codePage, error);
    if (!database) return false;
    document_ = acDocManager->appendDocument(std::move(database), wide(path));
    acDocManager->setCurDocument(document_);
    KovaDB::CCustomDatabase project(document_->database());
    for (const std::string& param : options.params) {
        std::string name, value;
        if (!splitParam(param, name, value, error)) return false;
        if (!project.SetOtherCustomParam(wide(name), wide(value))) {
            error = "--param " + param + ": the drawing took no project parameter";
            return false;
        }
    }
    return true;
}

void LoadedDrawing::close() {
    if (document_ != nullptr) acDocManager->closeDocument(document_);
    document_ = nullptr;
}

AcDbDatabase* LoadedDrawing::database() const {
    return document_ != nullptr ? document_->database() : nullptr;
}

AcDbObjectIdArray olderGenerationParcels(AcDbDatabase& database, const AcDbObjectIdArray& found) {
    std::unordered_set<AcDbObjectId, dk::ObjectIdHash> known(found.begin(), found.end());
    AcDbObjectIdArray older;
    auto* space = arx::peek<AcDbBlockTableRecord>(database.modelSpaceId());
    if (space == nullptr) return older;
    for (AcDbObjectId id : space->entityIds()) {
        if (id.isErased() || known.count(id) || AcDbCurve::cast(arx::peekObject(id)) == nullptr)
            continue;
        int generation = CheckDKDataVer(id);
        if ((generation == 1 || generation == 2) && CDKBJXDInfo(id).IsDkbj()) older.append(id);
    }
    return older;
}

int openWithStandard(const std::string& path, const StandardOptions& options,
                     LoadedDrawing& drawing) {
    std::string error;
    if (!applyStandard(options, error) || !drawing.open(path, options, error)) {
        std::cerr << "kplan: " << error << "\n";
        return 1;
    }
    return 0;
}

int openForReport(const std::string& drawingArgument, const std::string& formatArgument,
                  const StandardOptions& options, Format& format, LoadedDrawing& drawing,
                  std::string& path) {
    if (!parseFormat(formatArgument, format)) {
        std::cerr << "kplan: --format " << formatArgument << ": expected table, csv or json\n";
        return 2;
    }
    std::string error;
    if (!applyStandard(options, error)) {
        std::cerr << "kplan: " << error << "\n";
        return 1;
    }
    path = drawingArgument.empty() ? samplePlanPath() : drawingArgument;
    if (path.empty()) {
        std::cerr << "kplan: the sample plan (data/samples/sample-plan.dxf) is not installed; "
                     "name a drawing\n";
        return 1;
    }
    if (!drawing.open(path, options, error)) {
        std::cerr << "kplan: " << error << "\n";
        return 1;
    }
    path = reportName(path);
    return 0;
}

std::string reportName(const std::string& path) {
    // Reports are UTF-8.
    std::wstring decoded;
    if (!db::isValidUtf8(path) && db::decodeCodePage(path, "GBK", decoded))
        return db::wideToUtf8(decoded);
    return path;
}

std::string handleText(AcDbObjectId id) {
    return report::handleOf(id);
}

}  // namespace kplan::cli
