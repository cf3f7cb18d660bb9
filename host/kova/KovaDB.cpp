#include "host/kova/KovaDB.h"

#include "host/arx/acutads.h"
#include "host/arx/dbapserv.h"
#include "host/kova/KovaDat.h"
#include "host/kova/KovaDataSet.h"
#include "host/kova/fgbfile.h"

#include <cwchar>

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

CQmCustomDatabase::CQmCustomDatabase() {
    CString path;
    if (CKovaDataSet::FGetGStandardOneFilePath(path, L"参数配置\\", L"图层标准.ini",
                                               CKovaDataSet::FGetStandardName(), 0)) {
        path_ = path;
    }
}

CQmCustomDatabase qmGetQmCustomDatabase() {
    return CQmCustomDatabase();
}

int qmGetLayerParam(const ACHAR* layerKey, CLayerParam& param, const CQmCustomDatabase& database) {
    if (layerKey == nullptr || *layerKey == 0 || database.GetPath().IsEmpty()) return 0;
    fgbfile::CIniFile ini(database.GetPath(), 0);
    CStringArray keys, values;
    if (!ini.IsOpen() || !ini.GetValue(layerKey, keys, values)) return 0;
    auto value = [&ini, layerKey](const ACHAR* key, CString& out) {
        CString text = ini.GetValue(layerKey, key);
        text.Trim();
        if (text.IsEmpty()) return false;
        out = text;
        return true;
    };
    CString text;
    if (value(L"图层名", text)) param.strLayerName = text;
    if (value(L"线型", text)) param.strLineType = text;
    if (value(L"说明", text)) param.strRemark = text;
    if (value(L"颜色", text)) {
        wchar_t* end = nullptr;
        long index = std::wcstol(text, &end, 10);
        if (end != nullptr && *end == 0 && index >= 1 && index <= 256) {
            param.nColorIndex = static_cast<int>(index);
        }
    }
    if (value(L"线宽", text)) {
        wchar_t* end = nullptr;
        double weight = std::wcstod(text, &end);
        if (end != nullptr && *end == 0 && weight >= 0) param.dLineWeight = weight;
    }
    return 1;
}

}  // namespace KovaDB
