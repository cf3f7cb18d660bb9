#include <iostream>
#include <map>
#include <memory>
#include <string>

#include "cli/Commands.h"
#include "cli/Drawing.h"
#include "cli/OptionValues.h"
#include "cli/Output.h"
#include "host/arx/dbsymtb.h"
#include "host/arx/dbunknown.h"
#include "host/arx/peek.h"
#include "host/db/TextCodec.h"
#include "host/dxf/Dxf.h"
#include "host/kova/ArxDataXData.h"
#include "record/BoundaryRecord.h"
#include "record/DKKeys.h"
#include "record/DYBJInfo.h"
#include "record/JFBJInfo.h"

namespace kplan::cli {

namespace {

std::string utf8(const std::wstring& text) {
    return db::wideToUtf8(text);
}

std::string typeName(const AcDbObject* obj) {
    if (auto* kept = AcDbUnknownEntity::cast(obj)) return kept->dxfName();
    return utf8(obj->isA()->dxfName());
}

const char* releaseOf(const std::string& version) {
    static const std::map<std::string, const char*> releases = {
        {"AC1009", "R12"},          {"AC1012", "R13"},          {"AC1014", "R14"},
        {"AC1015", "AutoCAD 2000"}, {"AC1018", "AutoCAD 2004"}, {"AC1021", "AutoCAD 2007"},
        {"AC1024", "AutoCAD 2010"}, {"AC1027", "AutoCAD 2013"}, {"AC1032", "AutoCAD 2018"}};
    auto it = releases.find(version);
    return it == releases.end() ? "unknown release" : it->second;
}

// The outlines a statistic can be bounded by, with their handles for --boundary: scope
// lines, units and blocks, each with its number and area.
void printBoundaries() {
    struct Kind {
        const char* name;
        AcDbObjectIdArray ids;
        const wchar_t* numberKey;
    };
    Kind kinds[] = {
        {"scope line", {}, nullptr}, {"unit", {}, dk::FS_DYBH}, {"block", {}, dk::FS_JFBH}};
    dk::SelectOutlines(dk::FAPP_GHFWX, kinds[0].ids);
    CDYBJInfo::GetDYbj(kinds[1].ids);
    CJFBJInfo::GetJFbj(kinds[2].ids);
    long count = 0;
    for (const Kind& kind : kinds)
        count += kind.ids.length();
    std::cout << "boundaries (--boundary HANDLE):" << (count == 0 ? " none" : "") << "\n";
    for (const Kind& kind : kinds) {
        for (AcDbObjectId id : kind.ids) {
            double area = 0;
            dk::OutlineArea(id, area);
            CString number;
            if (kind.numberKey != nullptr)
                ARX_DATA::CFGisXData::GetFrom(id, kind.numberKey, number);
            number.Trim();
            std::cout << "  " << kind.name << " " << handleText(id)
                      << (number.IsEmpty() ? "" : " " + number.ToUtf8()) << ": " << fixed(area, 2)
                      << " ha\n";
        }
    }
}

struct InfoArgs {
    std::string path, codePage;
    bool recover = false;
};

int runInfo(const InfoArgs& args) {
    const std::string& path = args.path;
    std::string error;
    std::unique_ptr<AcDbDatabase> loaded = loadDrawing(path, args.recover, args.codePage, error);
    if (!loaded) {
        std::cerr << "kplan: " << error << "\n";
        return 1;
    }
    // The current document, so that the record scans see it.
    AcApDocument* document =
        acDocManager->appendDocument(std::move(loaded), CString::FromUtf8(path));
    acDocManager->setCurDocument(document);
    AcDbDatabase* database = document->database();
    dxf::DrawingInfo info = dxf::drawingInfo(*database);
    std::map<std::string, long> entities, applications;
    long entityCount = 0;
    for (const db::Stub& stub : database->stubs()) {
        auto* obj = static_cast<const AcDbObject*>(stub.object.get());
        if (obj == nullptr || stub.erased) continue;
        // Names only: expanding every record would take several times the file's memory.
        std::map<std::wstring, bool> apps;
        obj->forEachXdataApp([&](const std::wstring& app) {
            apps[app] = true;
            return true;
        });
        for (const auto& app : apps)
            ++applications[utf8(app.first)];
    }
    auto* blocks = arx::peek<AcDbBlockTable>(database->blockTableId());
    for (AcDbObjectId space : {database->modelSpaceId(), database->paperSpaceId()}) {
        auto* record = arx::peek<AcDbBlockTableRecord>(space);
        if (record == nullptr) continue;
        for (AcDbObjectId id : record->entityIds()) {
            if (id.isErased() || arx::peekObject(id) == nullptr) continue;
            ++entities[typeName(arx::peekObject(id))];
            ++entityCount;
        }
    }
    std::cout << "file: " << path << "\n";
    std::cout << "version: " << info.version << " (" << releaseOf(info.version) << ")\n";
    std::cout << "code page: " << info.codePage << "\n";
    std::cout << "entities: " << entityCount << "\n";
    for (const auto& [type, count] : entities)
        std::cout << "  " << type << ": " << count << "\n";
    std::cout << "xdata records by application:" << (applications.empty() ? " none" : "") << "\n";
    for (const auto& [app, count] : applications)
        std::cout << "  " << app << ": " << count << "\n";
    auto* layers = arx::peek<AcDbLayerTable>(database->layerTableId());
    long layerCount = 0;
    if (layers) {
        for (AcDbObjectId id : layers->recordIds())
            layerCount += id.isErased() ? 0 : 1;
    }
    printBoundaries();
    std::cout << "layers: " << layerCount << "\n";
    if (layers) {
        for (AcDbObjectId id : layers->recordIds()) {
            auto* layer = arx::peek<AcDbLayerTableRecord>(id);
            if (layer == nullptr || id.isErased()) continue;
            AcCmColor c = layer->color();
            std::cout << "  " << utf8(layer->nameText()) << ": colour ";
            if (c.isByColor()) {
                std::cout << int(c.red()) << "," << int(c.green()) << "," << int(c.blue());
            } else {
                std::cout << c.colorIndex();
            }
            if (layer->isOff()) std::cout << ", off";
            if (layer->isFrozen()) std::cout << ", frozen";
            if (layer->isLocked()) std::cout << ", locked";
            std::cout << "\n";
        }
    }
    (void)blocks;
    acDocManager->closeDocument(document);
    return 0;
}

}  // namespace

void addInfoCommand(CLI::App& app, int& exitCode) {
    auto* command = app.add_subcommand("info", "Show what a drawing holds");
    auto args = std::make_shared<InfoArgs>();
    command->add_option("DRAWING", args->path, "DXF file")->type_name(kDrawingValue)->required();
    addReadOptions(*command, args->recover, args->codePage);
    command->callback([args, &exitCode] { exitCode = runInfo(*args); });
}

}  // namespace kplan::cli
