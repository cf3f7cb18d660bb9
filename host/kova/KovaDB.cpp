#include "host/kova/KovaDB.h"

#include "host/arx/acutads.h"
#include "host/arx/dbapserv.h"
#include "host/kova/KovaDat.h"
#include "host/kova/KovaDataSet.h"
#include "host/kova/fgbfile.h"

#include <algorithm>
#include <cwchar>
#include <iterator>

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

void LAYERPARAM2013EX::SetLayerName(const ACHAR* name) {
    std::size_t length = name ? std::wcslen(name) : 0;
    length = (std::min)(length, std::size(szLayerName) - 1);
    std::wmemcpy(szLayerName, name ? name : L"", length);
    szLayerName[length] = 0;
}

int qmGetLayerParam(const CString& layerKey, LAYERPARAM2013EX& param, int, int, int,
                    CCustomDatabase*) {
    CLayerParam found;
    found.strLayerName = param.szLayerName;
    found.nColorIndex = param.nColorIndex;
    found.strLineType = param.strLineType;
    found.dLineWeight = param.dLineWeight;
    found.strRemark = param.strRemark;
    if (!qmGetLayerParam(layerKey, found, qmGetQmCustomDatabase())) return 0;
    param.SetLayerName(found.strLayerName);
    param.nColorIndex = found.nColorIndex;
    param.strLineType = found.strLineType;
    param.dLineWeight = found.dLineWeight;
    param.strRemark = found.strRemark;
    return 1;
}

int qmGetLayerNameFromDict(const ACHAR* key, CString& name, AcDbDatabase* database) {
    name.Empty();
    resbuf* list = nullptr;
    if (!kova::dat::ReadNamedObjDict(kLayerNameDict, key, list, database)) return 0;
    for (const resbuf* rb = list; rb != nullptr; rb = rb->rbnext) {
        if (rb->restype == 1 && rb->resval.rstring != nullptr) {
            name = rb->resval.rstring;
            break;
        }
    }
    acutRelRb(list);
    return name.IsEmpty() ? 0 : 1;
}

int qmPutLayerNameIntoDict(const ACHAR* key, const ACHAR* name, AcDbDatabase* database) {
    if (key == nullptr || *key == 0 || name == nullptr || *name == 0) return 0;
    resbuf* list = acutBuildList(1, name, 0);
    int ok = kova::dat::AddNamedObjDict(kLayerNameDict, key, list, database);
    acutRelRb(list);
    return ok;
}

}  // namespace KovaDB
