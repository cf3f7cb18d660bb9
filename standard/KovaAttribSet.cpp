#include "standard/KovaAttribSet.h"

#include "host/kova/KovaDataSet.h"
#include "host/kova/fgbfile.h"
#include "host/kova/fgdutil.h"
#include "standard/ClassTableCache.h"
#include "standard/ClassTableLine.h"
#include "standard/StandardFolders.h"

namespace {

using namespace standard_folders;

const wchar_t* const kLayerSection = L"用地图层前后缀";
const wchar_t* const kDefaultTypeCode = L"KG";
const wchar_t* const kDefaultTypeName = L"控制性详细规划";
// Separates code and name in the host's cache of the planning type.
const wchar_t* const kTypeCacheSeparator = L",";

CString currentClassTable() {
    return CKovaAttribSet::FGetCurStandardFile(kClassDir, CKovaDataSet::FGetCurYDLB(), 1);
}

// The class's own layer, else the table's fixed one, else prefix + code + suffix; a
// table with neither prefix nor suffix gives the class an empty layer.
CString defaultLayer(const CString& own, const CString& fixed, const CString& prefix,
                     const CString& code, const CString& suffix) {
    if (!own.IsEmpty()) return own;
    if (!fixed.IsEmpty()) return fixed;
    if (prefix.IsEmpty() && suffix.IsEmpty()) return CString();
    return prefix + code + suffix;
}

}  // namespace

CString CKovaAttribSet::FGetCurStandardFile(const CString& subDirectory, const CString& fileName,
                                            int flag) {
    CString path;
    if (!CKovaDataSet::FGetGStandardOneFilePath(path, subDirectory, fileName,
                                                CKovaDataSet::FGetStandardName(), flag)) {
        return CString();
    }
    return path;
}

void CKovaAttribSet::FReadCurFile() {
    m_mapBJLayer.clear();
    m_mapTCLayer.clear();
    m_mapName.clear();
    m_mapColor.clear();
    m_mapHatch.clear();
    m_mapRemark.clear();
    std::shared_ptr<const ParsedClassTable> table = ClassTableCache::Get(currentClassTable());
    if (!table) return;
    for (const CString& text : table->ClassLines()) {
        ClassTableLine line;
        if (!line.parse(text)) continue;
        auto store = [&line](CStringMap& map, const CString& value) {
            if (!value.IsEmpty()) map[line.code] = value;
        };
        store(m_mapName, line.name);
        store(m_mapColor, line.colour);
        store(m_mapHatch, line.hatch);
        store(m_mapBJLayer, line.boundaryLayer);
        store(m_mapTCLayer, line.hatchLayer);
        store(m_mapRemark, line.remark);
    }
}

void CKovaAttribSet::FReadCurFile(CStringMap& nameMap, CStringMap& boundaryLayerMap,
                                  CStringMap& hatchLayerMap, CStringMap& colourMap) {
    std::shared_ptr<const ParsedClassTable> table = ClassTableCache::Get(currentClassTable());
    if (!table) return;
    CString kind = table->IsPlanning() ? L"规划" : L"现状";
    auto setting = [&](const wchar_t* what) { return table->Setting(kLayerSection, kind + what); };
    CString fixedBoundary = setting(L"用地边界图层");
    CString fixedHatch = setting(L"用地填充图层");
    CString boundaryPrefix = setting(L"用地边界前缀");
    CString boundarySuffix = setting(L"用地边界后缀");
    CString hatchPrefix = setting(L"用地填充前缀");
    CString hatchSuffix = setting(L"用地填充后缀");

    for (const CString& text : table->ClassLines()) {
        ClassTableLine line;
        if (!line.parseBlankMarked(text)) continue;
        if (!line.name.IsEmpty()) nameMap[line.code] = line.name;
        if (!line.colour.IsEmpty()) colourMap[line.code] = line.colour;
        boundaryLayerMap[line.code] = defaultLayer(line.boundaryLayer, fixedBoundary,
                                                   boundaryPrefix, line.code, boundarySuffix);
        hatchLayerMap[line.code] =
            defaultLayer(line.hatchLayer, fixedHatch, hatchPrefix, line.code, hatchSuffix);
    }
}

int CKovaAttribSet::FCurStandardIsGH(const CString& file) {
    std::shared_ptr<const ParsedClassTable> table = ClassTableCache::Get(file);
    return table ? table->IsPlanning() : 1;
}

int CKovaAttribSet::FCurStandardIsGH() {
    return FCurStandardIsGH(currentClassTable());
}

void CKovaAttribSet::FGetCurGHTypePara(CString& code, CString& name) {
    code = kDefaultTypeCode;
    name = kDefaultTypeName;
    CStringArray parts;
    fgdutil::Str2StrArr(CKovaDataSet::FGetNameDict_GHType(), parts, kTypeCacheSeparator);
    if (parts.GetSize() == 2) {
        code = parts.GetAt(0);
        name = parts.GetAt(1);
        return;
    }
    CString path = FGetCurStandardFile(kParamDir, L"KovaGHTypeSet.ini");
    if (!path.IsEmpty() && fgbfile::FileExist(path)) {
        fgbfile::CIniFile ini(path, 0);
        CStringArray keys, values;
        if (ini.GetValue(L"GHTYPE", keys, values)) {
            int index = -1;
            if (fgdutil::StrArrFindStr(keys, L"DEFAULT", index)) {
                CString type = values.GetAt(index);
                int typeIndex = -1;
                if (!type.IsEmpty() && fgdutil::StrArrFindStr(keys, type, typeIndex)) {
                    code = type;
                    name = values.GetAt(typeIndex);
                }
            }
        }
    }
    CKovaDataSet::FSetNameDict_GHType(code + kTypeCacheSeparator + name);
}

int CKovaAttribSet::FGetMenuValue(const CString& facility, CString& menu) {
    menu.Empty();
    if (facility.IsEmpty()) return 0;
    CString path = FGetCurStandardFile(kFacilityDir, facility + L".ini");
    if (path.IsEmpty() || !fgbfile::FileExist(path)) return 0;
    fgbfile::CIniFile ini(path, 0);
    menu = ini.GetValue(facility, L"MENU");
    if (menu.IsEmpty()) {
        CStringArray sections;
        ini.GetSections(sections);
        for (const CString& section : sections) {
            menu = ini.GetValue(section, L"MENU");
            if (!menu.IsEmpty()) break;
        }
    }
    menu.Trim();
    return menu.IsEmpty() ? 0 : 1;
}

int CKovaAttribSet::FGetMenuValue(const CString& facility, CStringArray& items) {
    items.RemoveAll();
    CString menu;
    if (!FGetMenuValue(facility, menu)) return 0;
    CStringArray parts;
    fgdutil::Str2StrArr(menu, parts, L";");
    for (CString item : parts) {
        item.Trim();
        if (!item.IsEmpty()) items.Add(item);
    }
    return items.IsEmpty() ? 0 : 1;
}

int CKovaAttribSet::FGetPTGJParaData(const CString& section, const CString& key, CString& value) {
    value.Empty();
    if (section.IsEmpty() || key.IsEmpty()) return 0;
    CString path = FGetCurStandardFile(kFacilityDir, L"公共配套设施参数.ini");
    if (path.IsEmpty() || !fgbfile::FileExist(path)) return 0;
    value = fgbfile::CIniFile(path, 0).GetValue(section, key);
    value.Trim();
    return value.IsEmpty() ? 0 : 1;
}

CString CKovaAttribSet::FGetPTGJFAppName(const CString& facilityClass) {
    CString wanted = facilityClass;
    wanted.Trim();
    if (wanted.IsEmpty()) return CString();
    CString path = FGetCurStandardFile(kParamDir, L"分类要素对应表_配套设施.ini");
    if (path.IsEmpty() || !fgbfile::FileExist(path)) return CString();
    fgbfile::CIniFile ini(path, 0);
    CString code = ini.GetValue(wanted, L"要素码");
    if (!code.IsEmpty()) return code;
    // A facility code: the kind whose class prefix starts it, the longest prefix winning.
    CStringArray sections;
    ini.GetSections(sections);
    int best = 0;
    for (const CString& section : sections) {
        CString prefix = ini.GetValue(section, L"分类代码");
        prefix.Trim();
        if (prefix.GetLength() > best && wanted.Left(prefix.GetLength()) == prefix) {
            best = prefix.GetLength();
            code = ini.GetValue(section, L"要素码");
        }
    }
    code.Trim();
    return code;
}
