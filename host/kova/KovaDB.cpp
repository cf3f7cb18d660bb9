#include "host/kova/KovaDB.h"

#include "host/arx/acutads.h"
#include "host/arx/dbapserv.h"
#include "host/kova/KovaDat.h"

namespace KovaDB {

namespace {

AcDbDatabase* orWorking(AcDbDatabase* database) {
    return database ? database : acdbHostApplicationServices()->workingDatabase();
}

}  // namespace

int CCustomDatabase::GetOtherCustomParam(const ACHAR* name, CString& value,
                                         const ACHAR* defaultValue) const {
    value = defaultValue;
    AcDbDatabase* database = orWorking(database_);
    if (database == nullptr || name == nullptr || *name == 0) return 0;
    resbuf* list = nullptr;
    kova::dat::ReadNamedObjDict(kProjectDict, kOtherParamKey, list, database);
    CString stored;
    int found = kova::dat::GetRbString(list, name, stored);
    acutRelRb(list);
    if (found) value = stored;
    return found;
}

int CCustomDatabase::SetOtherCustomParam(const ACHAR* name, const ACHAR* value) {
    AcDbDatabase* database = orWorking(database_);
    if (database == nullptr || name == nullptr || *name == 0) return 0;
    if (value == nullptr) value = L"";
    resbuf* list = nullptr;
    kova::dat::ReadNamedObjDict(kProjectDict, kOtherParamKey, list, database);
    if (!kova::dat::SetRbString(list, name, value)) {
        resbuf* pair = acutBuildList(1000, name, 1000, value, 0);
        if (list == nullptr) {
            list = pair;
        } else {
            resbuf* tail = list;
            while (tail->rbnext)
                tail = tail->rbnext;
            tail->rbnext = pair;
        }
    }
    int ok = kova::dat::AddNamedObjDict(kProjectDict, kOtherParamKey, list, database);
    acutRelRb(list);
    return ok;
}

CCustomDatabase qmGetCustomDatabase(AcDbDatabase* database) {
    return CCustomDatabase(database);
}

}  // namespace KovaDB
