#include "host/kova/KovaCad.h"

#include <climits>

#include "host/arx/acedads.h"
#include "host/arx/acutads.h"
#include "host/arx/dbapserv.h"
#include "host/arx/dbsymtb.h"
#include "host/arx/peek.h"

namespace kova::cad {

namespace {

AcDbDatabase* orWorking(AcDbDatabase* database) {
    return database ? database : acdbHostApplicationServices()->workingDatabase();
}

AcDbObjectId tableId(AcDbDatabase* database, const ACHAR* tableName) {
    std::wstring key = arx::foldCase(tableName);
    if (key == L"APPID") return database->regAppTableId();
    if (key == L"LAYER") return database->layerTableId();
    if (key == L"LTYPE") return database->linetypeTableId();
    if (key == L"BLOCK_RECORD") return database->blockTableId();
    return {};
}

// The variable's current value; a string in it is the caller's to free.
bool readVar(const ACHAR* name, resbuf& value) {
    value = resbuf{};
    return name != nullptr && acedGetVar(name, &value) == RTNORM;
}

void freeVar(resbuf& value) {
    if (value.restype == RTSTR) acutDelString(value.resval.rstring);
}

}  // namespace

int GetCurSpace(AcDbDatabase* database) {
    database = orWorking(database);
    if (database == nullptr) return 0;
    return database->currentSpaceId() == database->paperSpaceId() ? 1 : 0;
}

int IsPaperSpace(AcDbDatabase* database) {
    return GetCurSpace(database) == 1 ? 1 : 0;
}

int GetSymTable(const ACHAR* tableName, CStringArray& names, AcDbDatabase* database) {
    names.RemoveAll();
    database = orWorking(database);
    if (database == nullptr || tableName == nullptr) return 0;
    AcDbSymbolTable* table = nullptr;
    if (acdbOpenObject(table, tableId(database, tableName), AcDb::kForRead) != Acad::eOk) return 0;
    AcDbSymbolTableIterator* it = nullptr;
    table->newIterator(it);
    for (; it && !it->done(); it->step()) {
        AcDbSymbolTableRecord* record = nullptr;
        if (it->getRecord(record, AcDb::kForRead) != Acad::eOk) continue;
        names.Add(CString(record->nameText()));
        record->close();
    }
    delete it;
    table->close();
    return static_cast<int>(names.GetSize());
}

int GetSysVar(const ACHAR* name, int& value) {
    resbuf rb;
    if (!readVar(name, rb)) return 0;
    int result = 1;
    if (rb.restype == RTSHORT) {
        value = rb.resval.rint;
    } else if (rb.restype == RTLONG) {
        value = rb.resval.rlong;
    } else {
        result = 0;
    }
    freeVar(rb);
    return result;
}

int GetSysVar(const ACHAR* name, double& value) {
    resbuf rb;
    if (!readVar(name, rb)) return 0;
    int result = 1;
    if (rb.restype == RTREAL || rb.restype == RTANG) {
        value = rb.resval.rreal;
    } else if (rb.restype == RTSHORT) {
        value = rb.resval.rint;
    } else if (rb.restype == RTLONG) {
        value = rb.resval.rlong;
    } else {
        result = 0;
    }
    freeVar(rb);
    return result;
}

int GetSysVar(const ACHAR* name, CString& value) {
    resbuf rb;
    if (!readVar(name, rb)) return 0;
    int result = 0;
    if (rb.restype == RTSTR) {
        value = CString(rb.resval.rstring);
        result = 1;
    }
    freeVar(rb);
    return result;
}

int SetSysVar(const ACHAR* name, int value) {
    resbuf current;
    if (!readVar(name, current)) return 0;
    freeVar(current);
    resbuf rb{};
    if (current.restype == RTLONG) {
        rb.restype = RTLONG;
        rb.resval.rlong = value;
    } else {
        if (value < SHRT_MIN || value > SHRT_MAX) return 0;
        rb.restype = RTSHORT;
        rb.resval.rint = static_cast<short>(value);
    }
    return acedSetVar(name, &rb) == RTNORM ? 1 : 0;
}

int SetSysVar(const ACHAR* name, double value) {
    resbuf rb{};
    rb.restype = RTREAL;
    rb.resval.rreal = value;
    return name && acedSetVar(name, &rb) == RTNORM ? 1 : 0;
}

int SetSysVar(const ACHAR* name, const ACHAR* value) {
    if (name == nullptr || value == nullptr) return 0;
    resbuf rb{};
    rb.restype = RTSTR;
    ACHAR* copy = acutNewString(value);
    rb.resval.rstring = copy;
    int result = acedSetVar(name, &rb) == RTNORM ? 1 : 0;
    acutDelString(copy);
    return result;
}

int GetLastEnt(ads_name entity, AcDbDatabase* database) {
    ads_name_clear(entity);
    database = orWorking(database);
    if (database == nullptr) return 0;
    AcDbBlockTable* blocks = nullptr;
    if (database->getBlockTable(blocks, AcDb::kForRead) != Acad::eOk) return 0;
    AcDbBlockTableIterator* it = nullptr;
    blocks->newIterator(it);
    AcDbObjectId last;
    for (; it && !it->done(); it->step()) {
        AcDbBlockTableRecord* block = nullptr;
        if (it->getRecord(block, AcDb::kForRead) != Acad::eOk) continue;
        if (block->isLayout()) {
            // Handles are given in order of creation, so the largest is the newest.
            for (AcDbObjectId id : block->entityIds()) {
                if (!id.isErased() &&
                    (last.isNull() || id.handle().value() > last.handle().value())) {
                    last = id;
                }
            }
        }
        block->close();
    }
    delete it;
    blocks->close();
    ads_name name;
    if (last.isNull() || acdbGetAdsName(name, last) != Acad::eOk) return 0;
    ads_name_set(name, entity);
    return 1;
}

int ScrlbrtPt(AcGePoint3d& lowerLeft, AcGePoint3d& upperRight) {
    AcDbDatabase* database = orWorking(nullptr);
    AcDbDatabase::View view = database ? database->view() : AcDbDatabase::View();
    double halfWidth = view.height * view.aspect / 2, halfHeight = view.height / 2;
    lowerLeft = AcGePoint3d(view.centerX - halfWidth, view.centerY - halfHeight, 0);
    upperRight = AcGePoint3d(view.centerX + halfWidth, view.centerY + halfHeight, 0);
    return 1;
}

}  // namespace kova::cad
