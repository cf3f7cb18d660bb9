// "kplan label DRAWING -o OUT.dxf": each parcel's number and class as text at its label
// point, on a layer of their own, so that a plan drawn without labels can be read.
#include <cmath>
#include <iostream>
#include <memory>
#include <string>
#include <unordered_set>

#include "cli/Commands.h"
#include "cli/Drawing.h"
#include "cli/Messages.h"
#include "geometry/LabelPoint.h"
#include "geometry/OptimalPoint.h"
#include "host/arx/dbents.h"
#include "host/arx/dbsymtb.h"
#include "host/dxf/Dxf.h"
#include "record/DKBJXDInfo.h"
#include "record/DKKeys.h"
#include "record/ObjectIdHash.h"

namespace kplan::cli {

namespace {

struct LabelArgs {
    std::string drawing, out, layer = "labels";
    bool force = false;
};

std::wstring wide(const std::string& text) {
    return static_cast<const wchar_t*>(CString::FromUtf8(text));
}

// The layer of the labels, made when the drawing has none; its id, null on failure.
AcDbObjectId labelLayer(AcDbDatabase& database, const std::wstring& name) {
    AcDbLayerTable* table = nullptr;
    if (database.getLayerTable(table, AcDb::kForWrite) != Acad::eOk) return {};
    AcDbObjectId id;
    if (table->getAt(name.c_str(), id) != Acad::eOk) {
        auto* record = new AcDbLayerTableRecord();
        record->setName(name.c_str());
        if (table->add(id, record) == Acad::eOk) {
            record->close();
        } else {
            delete record;
            id = AcDbObjectId();
        }
    }
    table->close();
    return id;
}

// The layer is the labels' own: what an earlier run put there goes before a new run.
int eraseOldLabels(AcDbDatabase& database, AcDbObjectId layer) {
    AcDbBlockTableRecord* space = nullptr;
    if (acdbOpenObject(space, database.modelSpaceId(), AcDb::kForRead) != Acad::eOk) return 0;
    std::vector<AcDbObjectId> ids = space->entityIds();
    space->close();
    int erased = 0;
    for (AcDbObjectId id : ids) {
        if (id.isErased()) continue;
        AcDbText* text = nullptr;
        if (acdbOpenObject(text, id, AcDb::kForWrite) != Acad::eOk) continue;
        if (text->layerId() == layer && text->erase() == Acad::eOk) ++erased;
        text->close();
    }
    return erased;
}

std::wstring fieldOf(AcDbObjectId parcel, const wchar_t* key) {
    CString value;
    CDKBJXDInfo(parcel).GetData(key, value);
    value.Trim();
    return static_cast<const wchar_t*>(value);
}

bool addText(AcDbBlockTableRecord& space, AcDbObjectId layer, const std::wstring& text,
             const AcGePoint3d& at, double height) {
    auto* entity = new AcDbText(at, text.c_str(), AcDbObjectId(), height);
    entity->setDatabaseDefaults(space.database());
    entity->setLayer(layer);
    entity->setColorIndex(256);
    entity->setHorizontalMode(AcDb::kTextCenter);
    entity->setVerticalMode(AcDb::kTextVertMid);
    entity->setAlignmentPoint(at);
    if (space.appendAcDbEntity(entity) != Acad::eOk) {
        delete entity;
        return false;
    }
    entity->close();
    return true;
}

int runLabel(const LabelArgs& args) {
    if (int refused = checkDxfOutput(args.out, args.force)) return refused;
    LoadedDrawing drawing;
    std::string error;
    if (!drawing.open(args.drawing, StandardOptions{}, error)) {
        std::cerr << "kplan: " << error << "\n";
        return 1;
    }
    AcDbDatabase& database = *drawing.database();
    AcDbObjectIdArray parcels, current;
    CDKBJXDInfo::GetDkbj(parcels);
    parcels.append(olderGenerationParcels(database, parcels));
    CDKBJXDInfo::GetAllXZYD(current);
    std::unordered_set<AcDbObjectId, dk::ObjectIdHash> listed(parcels.begin(), parcels.end());
    for (AcDbObjectId id : current) {
        if (listed.insert(id).second) parcels.append(id);
    }
    AcDbObjectId layer = labelLayer(database, wide(args.layer));
    if (layer.isNull()) {
        std::cerr << "kplan: " << args.layer << ": the layer cannot be made\n";
        return 1;
    }
    eraseOldLabels(database, layer);
    AcDbBlockTableRecord* space = nullptr;
    if (acdbOpenObject(space, database.modelSpaceId(), AcDb::kForWrite) != Acad::eOk) {
        std::cerr << "kplan: " << args.drawing << ": model space cannot be written\n";
        return 1;
    }
    int labelled = 0, missed = 0;
    for (AcDbObjectId id : parcels) {
        std::wstring number = fieldOf(id, dk::FS_DKBH), cls = fieldOf(id, dk::FS_DKXZ);
        if (number.empty() && cls.empty()) continue;
        AcGePoint3d at;
        double room = 0;
        if (!FGetCurveOptimalPt(id, at, 0, &room)) {
            ++missed;
            continue;
        }
        // Two lines, each 0.3 of the room's radius high, fit the widest circle inside
        // the parcel; so a label never spills over a small parcel's edge.
        double height = 0.3 * room;
        bool ok = true;
        if (!number.empty() && !cls.empty()) {
            ok = addText(*space, layer, number, {at.x, at.y + 0.65 * height, at.z}, height) &&
                 addText(*space, layer, cls, {at.x, at.y - 0.65 * height, at.z}, height);
        } else {
            ok = addText(*space, layer, number.empty() ? cls : number, at, height);
        }
        if (ok) ++labelled;
    }
    space->close();
    if (!dxf::save(database, args.out, error)) {
        std::cerr << "kplan: " << error << "\n";
        return 1;
    }
    std::cout << "labelled " << labelled << (labelled == 1 ? " parcel" : " parcels") << " on layer "
              << args.layer << ": " << args.out << "\n";
    if (missed > 0) {
        warn() << "kplan: " << missed << (missed == 1 ? " parcel has" : " parcels have")
               << " no inside (an open or empty outline) and " << (missed == 1 ? "is" : "are")
               << " not labelled\n";
    }
    return 0;
}

}  // namespace

void addLabelCommand(CLI::App& app, int& exitCode) {
    auto* command =
        app.add_subcommand("label", "Write each parcel's number and class at its label point");
    auto args = std::make_shared<LabelArgs>();
    addDrawingInAndOut(*command, args->drawing, args->out);
    command->add_option("--layer", args->layer, "layer of the labels (default: labels)");
    addForceOption(*command, args->force);
    command->callback([args, &exitCode] { exitCode = runLabel(*args); });
}

}  // namespace kplan::cli
