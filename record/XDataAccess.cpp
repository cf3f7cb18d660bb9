#include "record/XDataAccess.h"

#include <cwchar>
#include <cwctype>

#include "host/arx/acedads.h"
#include "host/arx/dbcolor.h"
#include "host/kova/ArxDataXData.h"
#include "host/kova/KovaCad.h"
#include "host/kova/KovaDat.h"
#include "host/kova/KovaDataSet.h"
#include "host/kova/KovaEnt.h"
#include "host/kova/fgbfile.h"
#include "host/kova/fgdutil.h"
#include "record/DKKeys.h"
#include "record/RecordSession.h"
#include "standard/KovaAttribSet.h"

namespace {

const wchar_t* const kAssocKey = L"TZ_DKH_DKW";
const wchar_t* const kColourDict = L"FQMDKCOLOR";

// Dictionary keys may not hold "/" (class codes like "R2/B1" become "R2B1").
CString dictKey(const CString& key) {
    CString cleaned = key;
    cleaned.Remove(L'/');
    return cleaned;
}

// Every number written in the text, as written.
CStringArray numbersIn(const CString& text) {
    CStringArray numbers;
    int n = text.GetLength();
    for (int i = 0; i < n;) {
        wchar_t c = text.GetAt(i);
        bool sign = c == L'-' && i + 1 < n && std::iswdigit(text.GetAt(i + 1)) &&
                    (i == 0 || !(std::iswdigit(text.GetAt(i - 1)) || text.GetAt(i - 1) == L'.'));
        if (!std::iswdigit(c) && !sign) {
            ++i;
            continue;
        }
        int start = i++;
        bool dot = false;
        while (i < n &&
               (std::iswdigit(text.GetAt(i)) ||
                (!dot && text.GetAt(i) == L'.' && i + 1 < n && std::iswdigit(text.GetAt(i + 1))))) {
            dot = dot || text.GetAt(i) == L'.';
            ++i;
        }
        numbers.Add(text.Mid(start, i - start));
    }
    return numbers;
}

int extremeNumber(const CString& text, CString& value, bool largest) {
    CStringArray numbers = numbersIn(text);
    if (numbers.IsEmpty()) return 0;
    int best = 0;
    for (int i = 1; i < numbers.GetSize(); ++i) {
        double a = std::wcstod(numbers.GetAt(i), nullptr);
        double b = std::wcstod(numbers.GetAt(best), nullptr);
        if (largest ? a > b : a < b) best = i;
    }
    value = numbers.GetAt(best);
    return 1;
}

}  // namespace

namespace {

int generationOf(AcDbObjectId id) {
    CStringArray names;
    ARX_DATA::CFSimpleXData::GetAllAppNames(id, names);
    int index = -1;
    for (const wchar_t* app :
         {dk::FAPP_GHDK, dk::FAPP_XZDK, dk::FAPP_GHDK_FG, dk::FAPP_GHDK_ZG, dk::FAPP_GHDK_TX}) {
        if (fgdutil::StrArrFindStr(names, app, index)) return 3;
    }
    if (fgdutil::StrArrFindStr(names, dk::APP_DKSX, index)) return 2;
    if (fgdutil::StrArrFindStr(names, dk::APP_DKBJ, index)) return 1;
    return 0;
}

}  // namespace

int CheckDKDataVer(AcDbObjectId id) {
    if (!id.isValid() || id.isErased()) return 0;
    double unused = 0;
    return dk::RememberedNumber(id, L"CheckDKDataVer", unused,
                                [id](double&) { return generationOf(id); });
}

int FIsNewStandardDK(AcDbObjectId id) {
    CString value;
    return ARX_DATA::CFSimpleXData::GetFrom(id, L"FS_Standard", value) ? 1 : 0;
}

int FGetEntAppName(AcDbObjectId id, CString& appName) {
    CStringArray apps, fields, values;
    ARX_DATA::CFGisXData::GetAllXDatas(id, apps, fields, values);
    for (const CString& app : apps) {
        if (app.Find(L"FAPP_") >= 0 && app != dk::FAPP_ENTCODE) {
            appName = app;
            return 1;
        }
    }
    return 0;
}

int FGetRegFAppCurMap(CStringArray& appNames) {
    CStringArray names;
    kova::cad::GetSymTable(L"APPID", names);
    int index = -1;
    for (const CString& name : names) {
        if (name.Left(5) == L"FAPP_" && !fgdutil::StrArrFindStr(appNames, name, index)) {
            appNames.Add(name);
        }
    }
    return 1;
}

int FReadDataFromDict(const CString& dictName, const CString& key, CString& value) {
    resbuf* list = nullptr;
    if (!kova::dat::ReadNamedObjDict(dictName, dictKey(key), list) || list == nullptr) {
        acutRelRb(list);
        return 0;
    }
    int ok = 0;
    if (list->restype == 300 || acutValueKindOfType(list->restype) == db::ValueKind::String) {
        value = list->resval.rstring;
        ok = 1;
    }
    acutRelRb(list);
    return ok;
}

int FWriteDataToDict(const CString& dictName, const CString& key, const CString& value) {
    resbuf* list = acutBuildList(300, value.GetString(), 0);
    int ok = kova::dat::AddNamedObjDict(dictName, dictKey(key), list);
    acutRelRb(list);
    return ok;
}

int FReadColorToDict(const CString& key, CString& value) {
    return FReadDataFromDict(kColourDict, key, value);
}

int FWriteColorToDict(const CString& key, const CString& value) {
    return FWriteDataToDict(kColourDict, key, value);
}

int FSetObjXDataToTwo(AcDbObjectId from, AcDbObjectId to) {
    AcDbObject* source = nullptr;
    if (acdbOpenObject(source, from, AcDb::kForRead) != Acad::eOk) return 0;
    resbuf* xdata = source->xData();
    source->close();
    AcDbObject* target = nullptr;
    if (acdbOpenObject(target, to, AcDb::kForWrite) != Acad::eOk) {
        acutRelRb(xdata);
        return 0;
    }
    Acad::ErrorStatus es = xdata ? target->setXData(xdata) : Acad::eOk;
    target->close();
    acutRelRb(xdata);
    return es == Acad::eOk ? 1 : 0;
}

int FSetOneXDataToTwo(AcDbObjectId from, AcDbObjectId to) {
    if (!kova::ent::FIsValidId(from) || !kova::ent::FIsValidId(to)) return 0;
    CStringArray apps, fields, values;
    ARX_DATA::CFGisXData::GetAllXDatas(from, apps, fields, values);
    return ARX_DATA::CFGisXData::SetTo(to, apps, fields, values);
}

int FSetOneXDataToTwo(AcDbObjectId from, const AcDbObjectIdArray& to) {
    int done = 0;
    for (AcDbObjectId target : to)
        done += FSetOneXDataToTwo(from, target);
    return done == to.length() && done > 0 ? 1 : 0;
}

int FDelXData(AcDbObjectId id, const CString& appNames) {
    CStringArray names;
    fgdutil::Str2StrArr(appNames, names, L",");
    return FDelXData(id, names);
}

int FDelXData(AcDbObjectId id, const CStringArray& appNames) {
    AcDbObject* obj = nullptr;
    if (acdbOpenObject(obj, id, AcDb::kForWrite) != Acad::eOk) return 0;
    for (const CString& name : appNames) {
        if (name.IsEmpty()) continue;
        ARX_DATA::ArxDbgAppXdata(name, obj->database()).setXdata(obj);
    }
    obj->close();
    return 1;
}

int FWriteAssocDataToTZKDict(AcDbObjectId id, const CString& data) {
    resbuf* list = acutBuildList(1000, data.GetString(), 0);
    int ok = kova::dat::AddObjExtDict(id, kAssocKey, list);
    acutRelRb(list);
    return ok;
}

int FWriteAssocDataToTZKDict(AcDbObjectId sheet, const AcDbObjectIdArray& parcels) {
    if (parcels.isEmpty()) return 0;
    CString data;
    for (int i = 0; i < parcels.length(); ++i) {
        CString code;
        ARX_DATA::CFGisXData::GetFrom(parcels[i], dk::FS_ENTCODE, code);
        if (code.IsEmpty()) code = parcels[i].handle().text();
        if (code.IsEmpty()) continue;
        CString item;
        item.Format(L"%d,%s", i + 1, code.GetString());
        data += item + L"|";
    }
    data.TrimRight(L'|');
    return FWriteAssocDataToTZKDict(sheet, data);
}

int FReadAssocDataFromTZKDict(AcDbObjectId id, CString& data) {
    CString simple;
    if (ARX_DATA::CFSimpleXData::GetFrom(id, kAssocKey, simple) && !simple.IsEmpty()) {
        data = simple;
        return 1;
    }
    resbuf* list = nullptr;
    kova::dat::ReadObjExtDict(id, kAssocKey, list);
    for (resbuf* rb = list; rb != nullptr; rb = rb->rbnext) {
        if (rb->restype == 1000) data = rb->resval.rstring;
    }
    acutRelRb(list);
    return data.IsEmpty() ? 0 : 1;
}

int FReadAssocDKFromTZKDict(AcDbObjectId sheet, const AcDbObjectIdArray& candidates,
                            AcDbObjectIdArray& matched) {
    CString data;
    if (!FReadAssocDataFromTZKDict(sheet, data)) return 0;
    CStringArray codes;
    for (int i = 0; i < candidates.length(); ++i) {
        CString code;
        ARX_DATA::CFGisXData::GetFrom(candidates[i], dk::FS_ENTCODE, code);
        codes.Add(code);
    }
    CStringArray items;
    fgdutil::Str2StrArr(data, items, L"|");
    for (const CString& item : items) {
        CStringArray parts;
        if (fgdutil::Str2StrArr(item, parts, L",") < 2) continue;
        int index = -1;
        if (!parts.GetAt(1).IsEmpty() && fgdutil::StrArrFindStr(codes, parts.GetAt(1), index) &&
            !matched.contains(candidates[index])) {
            matched.append(candidates[index]);
        }
    }
    return matched.isEmpty() ? 0 : 1;
}

int FRemoveInValidId(AcDbObjectIdArray& ids) {
    AcDbObjectIdArray kept;
    for (AcDbObjectId id : ids) {
        if (id.isValid() && !id.isErased()) kept.append(id);
    }
    ids = kept;
    return ids.length();
}

int FGetValueFromFieldName(const CString& section, const CString& key, CString& value) {
    if (section.IsEmpty() || key.IsEmpty()) return 0;
    CString path;
    if (!CKovaDataSet::FGetGStandardOneFilePath(path, L"参数配置\\", L"FAppDataSet.ini",
                                                CKovaDataSet::FGetStandardName(), 0) ||
        !fgbfile::FileExist(path)) {
        return 0;
    }
    value = fgbfile::CIniFile(path, 0).GetValue(section, key);
    value.MakeLower();
    value.TrimRight(L".ini");
    value.TrimRight(L".txt");
    value.TrimRight(L".xml");
    return 1;
}

int FCalcDKDataCode(const CString& classCode, CString& dataCode) {
    dataCode.Empty();
    CString code = classCode;
    code.Trim();
    if (code.IsEmpty() || code.GetLength() >= 4 || code.Find(L'/') >= 0) return 0;
    wchar_t first = code.GetAt(0);
    dataCode = (first == L'E' || first == L'e' || first == L'H' || first == L'h') ? L"L" : L"D";
    switch (code.GetLength()) {
        case 1:
            dataCode += code + L"00000";
            break;
        case 2:
            dataCode += code + L"0000";
            break;
        default:
            dataCode += code.Left(2) + L"0" + code.Mid(2, 1) + L"00";
            break;
    }
    return 1;
}

int FReadCurGHType() {
    CString code, name;
    CKovaAttribSet::FGetCurGHTypePara(code, name);
    if (code == L"FG") return 1;
    if (code == L"ZG") return 2;
    if (code == L"TX") return 3;
    if (code == L"FJ") return 4;
    return 0;
}

int FStrHaveChinese(const CString& text) {
    for (int i = 0; i < text.GetLength(); ++i) {
        auto c = static_cast<std::uint32_t>(text.GetAt(i));
        if ((c >= 0x4E00 && c <= 0x9FFF) || (c >= 0x3400 && c <= 0x4DBF) ||
            (c >= 0xF900 && c <= 0xFAFF) || (c >= 0x20000 && c <= 0x2FA1F)) {
            return 1;
        }
    }
    return 0;
}

int FGetMaxStrValueFromStr(const CString& text, CString& value) {
    return extremeNumber(text, value, true);
}

int FGetMinStrValueFromStr(const CString& text, CString& value) {
    return extremeNumber(text, value, false);
}

CString FGetDftDKClass() {
    CKovaAttribSet table;
    table.FReadCurFile();
    const CStringMap& names = table.NameMap();
    if (names.empty() || names.count(L"KB")) return L"KB";
    return names.begin()->first;
}

int FGetColorNumFromStr(const CString& text, CString& result) {
    CString trimmed = text;
    trimmed.Trim();
    int end = 0;
    while (end < trimmed.GetLength() && std::wcschr(L"0123456789/(),", trimmed.GetAt(end)) &&
           trimmed.GetAt(end) != 0) {
        ++end;
    }
    result = trimmed.Left(end);
    result.Trim();
    return result.IsEmpty() ? 0 : 1;
}

unsigned long FIndexToColorRef(int index) {
    if (index < 0 || index > 255) return 0;
    Adesk::UInt32 rgb = AcCmEntityColor::lookUpRGB(static_cast<Adesk::UInt8>(index));
    unsigned long red = (rgb >> 16) & 0xFF, green = (rgb >> 8) & 0xFF, blue = rgb & 0xFF;
    return red | (green << 8) | (blue << 16);
}

int KovaIsConfirm(const CString& prompt, int defaultYes) {
    CString text;
    text.Format(defaultYes ? L"\n%s[(Y)/(N)]<Y>:" : L"\n%s[(Y)/(N)]<N>:", prompt.GetString());
    acedInitGet(0, L"Y N");
    ACHAR answer[132] = {0};
    int rc = acedGetKword(text, answer, 132);
    if (rc == RTNONE) return defaultYes ? 1 : 0;
    if (rc != RTNORM) return -1;
    if (std::wcscmp(answer, L"Y") == 0) return 1;
    if (std::wcscmp(answer, L"N") == 0) return 0;
    return -1;
}
