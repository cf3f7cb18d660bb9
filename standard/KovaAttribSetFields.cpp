// Field sets per application: the register "FAppDataSet.ini", the attribute files it
// names, the fixed field lists of parcels and underground spaces, and the facility files.
#include <algorithm>
#include <cwchar>
#include <initializer_list>

#include "host/kova/KovaDataSet.h"
#include "host/kova/fgbfile.h"
#include "host/kova/fgdutil.h"
#include "standard/KovaAttribSet.h"
#include "standard/StandardFolders.h"

namespace {

using namespace standard_folders;

const wchar_t* const kRegister = L"FAppDataSet.ini";
const wchar_t* const kFacilityTable = L"分类要素对应表_配套设施.ini";

const wchar_t* const kGHDK = L"FAPP_GHDK";
const wchar_t* const kXZDK = L"FAPP_XZDK";
const wchar_t* const kGHDX = L"FAPP_GHDK_DX";
const wchar_t* const kXZDX = L"FAPP_XZDK_DX";
const wchar_t* const kGHJF = L"FAPP_GHJF";
const wchar_t* const kGHDY = L"FAPP_GHDY";
const wchar_t* const kDLZX = L"FAPP_DLZX";
const wchar_t* const kPTGJ = L"FAPP_PTGJ";

using Keys = std::initializer_list<const wchar_t*>;

// The basic fields of a parcel.
const Keys kBasic = {L"FS_DKBH", L"FS_DKXZ",   L"FS_XZMC",   L"FD_RJL",   L"FD_LDL",
                     L"FD_JZMD", L"FD_JZXG",   L"FN_JDCW",   L"FN_FJDCW", L"FN_ZHS",
                     L"FN_ZRKS", L"FS_RKMD",   L"FS_DLKKFX", L"FS_PTSS",  L"FD_YDMJ",
                     L"FD_JZMJ", L"FD_DXJZMJ", L"FS_JRXZ",   L"FS_HHBL",  L"FS_BZ"};
// The fields that are not custom fields: not the basic list (see the header).
const Keys kNotCustom = {L"FS_DKBH",   L"FS_DKXZ", L"FS_XZMC",   L"FD_RJL",   L"FD_LDL",
                         L"FD_JZMD",   L"FD_JZXG", L"FN_JDCW",   L"FN_FJDCW", L"FN_ZHS",
                         L"FN_ZRKS",   L"FS_RKMD", L"FS_DLKKFX", L"FS_PTSS",  L"FD_JZMJ",
                         L"FD_DXJZMJ", L"FS_HHBL", L"FS_BZ",     L"FS_DKZT"};
const Keys kParcelMinimum = {L"FS_DKBH", L"FS_DKXZ", L"FS_XZMC"};
const Keys kUndergroundMinimum = {L"FS_DXKJBH", L"FS_SJDKBH", L"FS_DXKJXZ", L"FD_DXJZMJ",
                                  L"FS_JZMJBL", L"FN_DXKJCS", L"FN_DXJDCW"};

bool listed(const Keys& list, const CString& key) {
    for (const wchar_t* entry : list) {
        if (key == entry) return true;
    }
    return false;
}

// The full path of a file of the current standard, composed whether it exists or not.
CString settingsFile(const wchar_t* subDirectory, const CString& name) {
    CString path;
    CKovaDataSet::FGetGStandardOneFilePath(path, subDirectory, name,
                                           CKovaDataSet::FGetStandardName(), 0);
    return path;
}

bool exists(const CString& path) {
    return !path.IsEmpty() && fgbfile::FileExist(path);
}

// A value of the register; "" when it or the key is missing.
CString registerValue(const CString& appName, const wchar_t* key) {
    CString path = settingsFile(kParamDir, kRegister);
    if (appName.IsEmpty() || !exists(path)) return CString();
    CString value = fgbfile::CIniFile(path, 0).GetValue(appName, key);
    value.Trim();
    return value;
}

// A file name as the register means it: ".ini" unless it names another kind of file.
CString withExtension(CString name) {
    CString last = name.Right(4);
    if (last.CompareNoCase(L".ini") != 0 && last.CompareNoCase(L".txt") != 0 &&
        last.CompareNoCase(L".xml") != 0) {
        name += L".ini";
    }
    return name;
}

CString fileNameOf(CString path) {
    int slash = (std::max)(path.ReverseFind(L'/'), path.ReverseFind(L'\\'));
    return slash >= 0 ? path.Mid(slash + 1) : path;
}

// A field line's value split into its alias and whether it is switched on; false for an
// empty value, which is no field at all.
bool parseField(const CString& value, CString& alias, bool& on) {
    CStringArray parts;
    if (fgdutil::Str2StrArr(value, parts, L";") == 0) return false;
    alias = parts[0];
    on = parts.GetSize() == 1 || std::wcstod(parts[1], nullptr) > 0;
    return true;
}

enum class Pick { On, Off };

// The fields of a section that are switched on (or off) and pass the test, in file order.
template <typename Test>
int scanFields(const CString& file, const CString& section, Pick pick, Test test,
               CStringArray& keys, CStringArray& aliases) {
    keys.RemoveAll();
    aliases.RemoveAll();
    if (!exists(file)) return 0;
    CStringArray names, values;
    fgbfile::CIniFile(file, 0).GetValue(section, names, values);
    for (INT_PTR i = 0; i < names.GetSize(); ++i) {
        CString alias;
        bool on = false;
        if (!parseField(values[i], alias, on) || on != (pick == Pick::On)) continue;
        if (!test(names[i])) continue;
        keys.Add(names[i]);
        aliases.Add(alias);
    }
    return static_cast<int>(keys.GetSize());
}

int appFields(const CString& appName, Pick pick, const Keys* only, const Keys* except,
              CStringArray& keys, CStringArray& aliases) {
    CString path;
    CKovaAttribSet::FGetAttFileByFAppName(appName, path);
    return scanFields(
        path, appName, pick,
        [&](const CString& key) {
            return (only == nullptr || listed(*only, key)) &&
                   (except == nullptr || !listed(*except, key));
        },
        keys, aliases);
}

int validFields(const CString& appName, CStringArray& keys, CStringArray& aliases) {
    return appFields(appName, Pick::On, nullptr, nullptr, keys, aliases);
}

template <typename Alias>
int minimum(const Keys& list, Alias alias, CStringArray& keys, CStringArray& aliases) {
    keys.RemoveAll();
    aliases.RemoveAll();
    for (const wchar_t* key : list) {
        keys.Add(key);
        aliases.Add(alias(key));
    }
    return static_cast<int>(keys.GetSize());
}

CString undergroundApp(int planned) {
    return planned ? kGHDX : kXZDX;
}

// The section of the facility table for a facility kind, or for a facility code by its
// kind's code prefix (the longest one wins); "" when the table knows neither.
CString facilityKind(const fgbfile::CIniFile& table, const CString& facility) {
    CStringArray sections;
    table.GetSections(sections);
    CString kind;
    int best = 0;
    for (const CString& section : sections) {
        if (section.CompareNoCase(facility) == 0) return section;
        CString prefix = table.GetValue(section, L"分类代码");
        prefix.Trim();
        if (prefix.GetLength() > best && facility.Left(prefix.GetLength()) == prefix) {
            best = prefix.GetLength();
            kind = section;
        }
    }
    return kind;
}

// The drawing of attribute blocks named by the kind's own file, in the kind's folder.
CString kindBlockFile(const fgbfile::CIniFile& table, const CString& kind) {
    CString relative = table.GetValue(kind, L"文件");
    relative.Trim();
    if (relative.IsEmpty()) relative = CString(kFacilityDir) + kind + L".ini";
    relative.Replace(L'/', L'\\');
    int slash = relative.ReverseFind(L'\\');
    CString folder = slash >= 0 ? relative.Left(slash + 1) : CString();
    CString kindFile = settingsFile(folder, relative.Mid(slash + 1));
    if (!exists(kindFile)) return CString();
    CString block = fgbfile::CIniFile(kindFile, 0).GetValue(kind, L"BLKFILE");
    block.Trim();
    return block.IsEmpty() ? CString() : settingsFile(folder, block);
}

CString registerBlockFile(const CString& appName) {
    CString block = registerValue(appName, L"BLKFILE");
    return block.IsEmpty() ? CString() : settingsFile(kFacilityDir, block);
}

}  // namespace

int CKovaAttribSet::FGetAttFileByFAppName(const CString& appName, CString& path) {
    path.Empty();
    CString name = registerValue(appName, L"FILE");
    if (name.IsEmpty()) return 0;
    path = settingsFile(kParamDir, withExtension(name));
    return path.IsEmpty() ? 0 : 1;
}

int CKovaAttribSet::FGetAppDescByFAppName(const CString& appName, CString& desc) {
    desc = registerValue(appName, L"NAME");
    return desc.IsEmpty() ? 0 : 1;
}

int CKovaAttribSet::FGetAttFileAndAppName(const CString& appName, CString& path, CStringArray& keys,
                                          CStringArray& aliases) {
    FGetAttFileByFAppName(appName, path);
    return FGetValidAppName(path, appName, keys, aliases);
}

int CKovaAttribSet::FGetValidAppName(const CString& file, const CString& section,
                                     CStringArray& keys, CStringArray& aliases) {
    return scanFields(
        file, section, Pick::On, [](const CString&) { return true; }, keys, aliases);
}

int CKovaAttribSet::FGetGHValidAppName(CStringArray& keys, CStringArray& aliases) {
    return validFields(kGHDK, keys, aliases);
}

int CKovaAttribSet::FGetXZValidAppName(CStringArray& keys, CStringArray& aliases) {
    return validFields(kXZDK, keys, aliases);
}

int CKovaAttribSet::FGetJFValidAppName(CStringArray& keys, CStringArray& aliases) {
    return validFields(kGHJF, keys, aliases);
}

int CKovaAttribSet::FGetDYValidAppName(CStringArray& keys, CStringArray& aliases) {
    return validFields(kGHDY, keys, aliases);
}

int CKovaAttribSet::FGetDLValidAppName(CStringArray& keys, CStringArray& aliases) {
    return validFields(kDLZX, keys, aliases);
}

int CKovaAttribSet::FGetDXKJValidAppName(CStringArray& keys, CStringArray& aliases, int planned) {
    return validFields(undergroundApp(planned), keys, aliases);
}

int CKovaAttribSet::FGetGHValidBasicAppName(CStringArray& keys, CStringArray& aliases) {
    return appFields(kGHDK, Pick::On, &kBasic, nullptr, keys, aliases);
}

int CKovaAttribSet::FGetXZValidBasicAppName(CStringArray& keys, CStringArray& aliases) {
    return appFields(kXZDK, Pick::On, &kBasic, nullptr, keys, aliases);
}

int CKovaAttribSet::FGetGHInValidBasicAppName(CStringArray& keys, CStringArray& aliases) {
    return appFields(kGHDK, Pick::Off, &kBasic, nullptr, keys, aliases);
}

int CKovaAttribSet::FGetXZInValidBasicAppName(CStringArray& keys, CStringArray& aliases) {
    return appFields(kXZDK, Pick::Off, &kBasic, nullptr, keys, aliases);
}

int CKovaAttribSet::FGetGHValidCustomAppName(CStringArray& keys, CStringArray& aliases) {
    return appFields(kGHDK, Pick::On, nullptr, &kNotCustom, keys, aliases);
}

int CKovaAttribSet::FGetXZValidCustomAppName(CStringArray& keys, CStringArray& aliases) {
    return appFields(kXZDK, Pick::On, nullptr, &kNotCustom, keys, aliases);
}

int CKovaAttribSet::FGetGHMinAppName(CStringArray& keys, CStringArray& aliases) {
    return minimum(kParcelMinimum, &FGetGHAlias, keys, aliases);
}

int CKovaAttribSet::FGetXZMinAppName(CStringArray& keys, CStringArray& aliases) {
    return minimum(kParcelMinimum, &FGetXZAlias, keys, aliases);
}

int CKovaAttribSet::FGetDXKJMinAppName(CStringArray& keys, CStringArray& aliases, int planned) {
    return minimum(
        kUndergroundMinimum, [planned](const CString& key) { return FGetDXKJAlias(key, planned); },
        keys, aliases);
}

CString CKovaAttribSet::FGetAlias(const CString& file, const CString& section, const CString& key) {
    if (!exists(file) || key.IsEmpty()) return CString();
    CString value = fgbfile::CIniFile(file, 0).GetValue(section, key);
    int semicolon = value.Find(L';');
    return semicolon >= 0 ? value.Left(semicolon) : value;
}

CString CKovaAttribSet::FGetFAppAlias(const CString& appName, const CString& key) {
    CString path;
    if (!FGetAttFileByFAppName(appName, path)) return CString();
    return FGetAlias(path, appName, key);
}

CString CKovaAttribSet::FGetGHAlias(const CString& key) {
    return FGetFAppAlias(kGHDK, key);
}

CString CKovaAttribSet::FGetXZAlias(const CString& key) {
    return FGetFAppAlias(kXZDK, key);
}

CString CKovaAttribSet::FGetDXKJAlias(const CString& key, int planned) {
    return FGetFAppAlias(undergroundApp(planned), key);
}

CString CKovaAttribSet::FGetJFAlias(const CString& key) {
    return FGetFAppAlias(kGHJF, key);
}

CString CKovaAttribSet::FGetDYAlias(const CString& key) {
    return FGetFAppAlias(kGHDY, key);
}

CString CKovaAttribSet::FGetDLAlias(const CString& key) {
    return FGetFAppAlias(kDLZX, key);
}

CString CKovaAttribSet::FGetPTGJAlias(const CString& key) {
    return FGetFAppAlias(kPTGJ, key);
}

int CKovaAttribSet::FGetPTGJAllowDKXZ(const CString& facility, CStringArray& classes) {
    classes.RemoveAll();
    if (facility.IsEmpty()) return 0;
    CString path = settingsFile(kFacilityDir, facility + L".ini");
    if (!exists(path)) return 0;
    CString allowed = fgbfile::CIniFile(path, 0).GetValue(facility, L"AllowDKXZ");
    allowed.Trim();
    CStringArray parts;
    fgdutil::Str2StrArr(allowed, parts, L";");
    for (CString part : parts) {
        part.Trim();
        if (!part.IsEmpty()) classes.Add(part);
    }
    return static_cast<int>(classes.GetSize());
}

int CKovaAttribSet::FGetPTGJValidAppName(CStringArray& keys, CStringArray& aliases) {
    return validFields(kPTGJ, keys, aliases);
}

int CKovaAttribSet::FGetPTGJValidAppName(const CString& facility, CStringArray& keys,
                                         CStringArray& aliases) {
    CString blockFile;
    return FGetPTGJValidAppName(facility, blockFile, keys, aliases);
}

int CKovaAttribSet::FGetPTGJValidAppName(const CString& facility, CString& blockFile,
                                         CStringArray& keys, CStringArray& aliases) {
    blockFile.Empty();
    keys.RemoveAll();
    aliases.RemoveAll();
    CString appName = FGetPTGJFAppName(facility);
    if (appName.IsEmpty()) return 0;
    int count = FGetPTGJValidAppNameByFApp(appName, blockFile, keys, aliases);
    CString wanted = facility;
    wanted.Trim();
    CString tablePath = settingsFile(kParamDir, kFacilityTable);
    fgbfile::CIniFile table(tablePath, 0);
    CString own = kindBlockFile(table, facilityKind(table, wanted));
    if (!own.IsEmpty()) blockFile = own;
    return count;
}

int CKovaAttribSet::FGetPTGJValidAppNameByFApp(const CString& appName, CString& blockFile,
                                               CStringArray& keys, CStringArray& aliases) {
    blockFile = registerBlockFile(appName);
    return validFields(appName, keys, aliases);
}

int CKovaAttribSet::FGetPTGJValidAppNameByFile(const CString& file, CString& appName,
                                               CStringArray& keys, CStringArray& aliases) {
    keys.RemoveAll();
    aliases.RemoveAll();
    appName.Empty();
    if (!FGetFAppFieldByFile(file, appName)) return 0;
    return validFields(appName, keys, aliases);
}

int CKovaAttribSet::FGetRoadSSValidAppName(const CString& kind, CStringArray& keys,
                                           CStringArray& aliases) {
    keys.RemoveAll();
    aliases.RemoveAll();
    CString wanted = kind;
    wanted.Trim();
    if (wanted.IsEmpty() || !exists(settingsFile(kRoadFacilityDir, wanted + L".ini"))) return 0;
    CString appName = FGetPTGJFAppName(wanted);
    if (appName.IsEmpty()) return 0;
    return validFields(appName, keys, aliases);
}

int CKovaAttribSet::FGetFAppFieldByFile(const CString& file, CString& appName) {
    CString wanted = fileNameOf(file);
    wanted.Trim();
    if (wanted.IsEmpty()) return 0;
    wanted = withExtension(wanted);
    CString registerPath = settingsFile(kParamDir, kRegister);
    if (exists(registerPath)) {
        fgbfile::CIniFile ini(registerPath, 0);
        CStringArray sections;
        ini.GetSections(sections);
        for (const CString& section : sections) {
            CString named = ini.GetValue(section, L"FILE");
            named.Trim();
            if (section.Left(5) == L"FAPP_" && !named.IsEmpty() &&
                withExtension(fileNameOf(named)).CompareNoCase(wanted) == 0) {
                appName = section;
                return 1;
            }
        }
    }
    CString own = settingsFile(kParamDir, wanted);
    if (!exists(own)) return 0;
    CStringArray sections;
    fgbfile::CIniFile(own, 0).GetSections(sections);
    for (const CString& section : sections) {
        if (section.Left(5) == L"FAPP_") {
            appName = section;
            return 1;
        }
    }
    return 0;
}
