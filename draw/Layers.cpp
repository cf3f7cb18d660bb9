#include "draw/Layers.h"

#include <algorithm>

#include "host/arx/dbapserv.h"
#include "host/arx/dbsymtb.h"
#include "host/kova/KovaError.h"

namespace {

AcDbDatabase* working() {
    return acdbHostApplicationServices()->workingDatabase();
}

// The layer record opened in the given mode; null when missing or when it cannot be.
AcDbLayerTableRecord* openLayer(const wchar_t* name, AcDb::OpenMode mode, bool& exists) {
    exists = false;
    AcDbDatabase* database = working();
    AcDbLayerTable* table = nullptr;
    if (database == nullptr || name == nullptr ||
        database->getLayerTable(table, AcDb::kForRead) != Acad::eOk) {
        return nullptr;
    }
    AcDbObjectId id;
    exists = table->getAt(name, id) == Acad::eOk;
    table->close();
    AcDbLayerTableRecord* record = nullptr;
    if (exists && acdbOpenObject(record, id, mode) != Acad::eOk) record = nullptr;
    return record;
}

// Adds a layer with the continuous linetype; setColour colours the new record.
template <typename SetColour>
bool addLayer(const CString& name, SetColour setColour) {
    if (FIsLayerExist(name)) return true;
    AcDbDatabase* database = working();
    AcDbLayerTable* table = nullptr;
    if (database == nullptr || database->getLayerTable(table, AcDb::kForWrite) != Acad::eOk) {
        return false;
    }
    auto* record = new AcDbLayerTableRecord();
    bool added = record->setName(name) == Acad::eOk;
    if (added) {
        record->setLinetypeObjectId(database->continuousLinetype());
        setColour(*record);
        added = table->add(record) == Acad::eOk;
    }
    if (added) {
        record->close();
    } else {
        delete record;
    }
    table->close();
    return added;
}

}  // namespace

bool FIsLayerExist(const CString& name) {
    return kova::Guarded(L"FIsLayerExist", false, [&] {
        AcDbDatabase* database = working();
        AcDbLayerTable* table = nullptr;
        if (database == nullptr || database->getLayerTable(table, AcDb::kForRead) != Acad::eOk) {
            return false;
        }
        bool has = table->has(name);
        table->close();
        return has;
    });
}

bool FMakeLayer(const CString& name, int colorIndex, const CString&) {
    return kova::Guarded(L"FMakeLayer", false, [&] {
        return addLayer(name, [colorIndex](AcDbLayerTableRecord& record) {
            AcCmColor color;
            int index = (std::max)(0, (std::min)(colorIndex, 256));
            if (color.setColorIndex(static_cast<Adesk::UInt16>(index)) == Acad::eOk) {
                record.setColor(color);
            }
        });
    });
}

bool FMakeLayer(const CString& name, const AcCmColor& color, const CString&) {
    return kova::Guarded(L"FMakeLayer", false, [&] {
        return addLayer(name, [&color](AcDbLayerTableRecord& record) { record.setColor(color); });
    });
}

int FChangeLayerColor(const wchar_t* name, const AcCmColor& color) {
    return kova::Guarded(L"FChangeLayerColor", 2, [&] {
        bool exists = false;
        AcDbLayerTableRecord* record = openLayer(name, AcDb::kForWrite, exists);
        if (!exists) return 1;
        if (record == nullptr) return 2;
        record->setColor(color);
        record->close();
        return 0;
    });
}

int FGetLayerColor(const CString& name, AcCmColor& color) {
    return kova::Guarded(L"FGetLayerColor", 0, [&] {
        bool exists = false;
        AcDbLayerTableRecord* record = openLayer(name, AcDb::kForRead, exists);
        if (record == nullptr) return 0;
        color = record->color();
        record->close();
        return 1;
    });
}
