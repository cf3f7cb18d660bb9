#pragma once
// The land-use class tables and the configuration files of the current standard.
// Nearly everything is static and reads the files anew on each call: the settings
// may change between two commands, and nothing here may go stale.
#include <map>

#include "host/mfc/CString.h"
#include "host/mfc/CStringArray.h"

using CStringMap = std::map<CString, CString>;

class CKovaAttribSet {
  public:
    CKovaAttribSet() = default;
    virtual ~CKovaAttribSet() = default;

    // Clears the six maps and fills them from the current class table. A missing
    // table leaves them empty.
    void FReadCurFile();
    // Fills four caller-given maps from the current class table with default layer
    // names from the section "用地图层前后缀". Here "$", "*" and "&" count only after a
    // blank; colours of lines without one are not stored.
    void FReadCurFile(CStringMap& nameMap, CStringMap& boundaryLayerMap, CStringMap& hatchLayerMap,
                      CStringMap& colourMap);

    // 1 when the table is a planning table or cannot be opened, 0 for a
    // current-status table (a line "[现状用地]" or "[现状地块]").
    static int FCurStandardIsGH(const CString& file);
    static int FCurStandardIsGH();

    // The current planning type, code and name ("KG", "控制性详细规划" by default),
    // read once and then kept in the host's cache.
    static void FGetCurGHTypePara(CString& code, CString& name);

    // The key "MENU" of the facility file "配套公建\<facility>.ini", section named after
    // the facility (else the first section that has one); 0 when there is none.
    static int FGetMenuValue(const CString& facility, CString& menu);
    static int FGetMenuValue(const CString& facility, CStringArray& items);
    // A value of "配套公建\公共配套设施参数.ini"; 0 when it is missing or empty.
    static int FGetPTGJParaData(const CString& section, const CString& key, CString& value);
    // The feature code ("要素码") of a facility kind ("教育") or of a facility code
    // ("JY02", matched by its kind's "分类代码"), from "分类要素对应表_配套设施.ini".
    static CString FGetPTGJFAppName(const CString& facilityClass);

    // The full path of a file of the current standard; empty when it cannot be composed.
    static CString FGetCurStandardFile(const CString& subDirectory, const CString& fileName,
                                       int flag = 0);

    const CStringMap& BoundaryLayerMap() const { return m_mapBJLayer; }
    const CStringMap& HatchLayerMap() const { return m_mapTCLayer; }
    const CStringMap& NameMap() const { return m_mapName; }
    const CStringMap& ColourMap() const { return m_mapColor; }
    const CStringMap& HatchMap() const { return m_mapHatch; }
    const CStringMap& RemarkMap() const { return m_mapRemark; }

  protected:
    CStringMap m_mapBJLayer;  // "*" field
    CStringMap m_mapTCLayer;  // "&" field
    CStringMap m_mapName;     // text after ":"
    CStringMap m_mapColor;    // "$" field
    CStringMap m_mapHatch;    // "@" field
    CStringMap m_mapRemark;   // "#" field

  public:
    // ------------------------------------------------------------- field sets
    // Which fields an application's records use, and their display names (aliases), from
    // the attribute files that the register "参数配置\FAppDataSet.ini" names per
    // application (key "FILE"). An attribute file holds one section per application, one
    // line "KEY=alias[;flag]" per field, in display order; a field is switched on when it
    // has no flag or its flag reads as a number above 0 (";0", ";", ";abc" switch it off).
    // Keys and aliases come as two parallel lists, both cleared first; the result is the
    // number of fields listed. A missing register, file, section or key gives empty
    // results, never a message.
    // The full path of the application's attribute file: "FILE" of its section, with
    // ".ini" appended unless the name ends in ".ini", ".txt" or ".xml" (case ignored).
    // 1 when the register names one (the file itself may be missing); else 0 and "".
    static int FGetAttFileByFAppName(const CString& appName, CString& path);
    // "NAME" of the application's section: the type label of its records.
    static int FGetAppDescByFAppName(const CString& appName, CString& desc);
    // The attribute file's path and the switched-on fields of the application's section,
    // in file order. The path is returned even when the file does not exist.
    static int FGetAttFileAndAppName(const CString& appName, CString& path, CStringArray& keys,
                                     CStringArray& aliases);
    // The same for a file (full path) and section given by the caller.
    static int FGetValidAppName(const CString& file, const CString& section, CStringArray& keys,
                                CStringArray& aliases);
    // Switched-on fields of planned ("FAPP_GHDK") and current-status ("FAPP_XZDK")
    // parcels, blocks ("FAPP_GHJF"), units ("FAPP_GHDY"), road centre lines
    // ("FAPP_DLZX") and underground spaces ("FAPP_GHDK_DX" when planned, else
    // "FAPP_XZDK_DX").
    static int FGetGHValidAppName(CStringArray& keys, CStringArray& aliases);
    static int FGetXZValidAppName(CStringArray& keys, CStringArray& aliases);
    static int FGetJFValidAppName(CStringArray& keys, CStringArray& aliases);
    static int FGetDYValidAppName(CStringArray& keys, CStringArray& aliases);
    static int FGetDLValidAppName(CStringArray& keys, CStringArray& aliases);
    static int FGetDXKJValidAppName(CStringArray& keys, CStringArray& aliases, int planned);
    // Parcel fields against the fixed lists, in file order. Basic: switched on and in the
    // basic list; invalid basic: switched off and in the basic list; custom: switched on
    // and not in the exclusion list. The two lists differ on purpose: "FD_YDMJ" and
    // "FS_JRXZ" are basic and custom alike, "FS_DKZT" is neither.
    static int FGetGHValidBasicAppName(CStringArray& keys, CStringArray& aliases);
    static int FGetXZValidBasicAppName(CStringArray& keys, CStringArray& aliases);
    static int FGetGHInValidBasicAppName(CStringArray& keys, CStringArray& aliases);
    static int FGetXZInValidBasicAppName(CStringArray& keys, CStringArray& aliases);
    static int FGetGHValidCustomAppName(CStringArray& keys, CStringArray& aliases);
    static int FGetXZValidCustomAppName(CStringArray& keys, CStringArray& aliases);
    // The fields every record of the kind needs, whatever the files say: number, class
    // and class name of a parcel; number, parcel above, use, floor area, area shares,
    // levels and parking of an underground space. Aliases from the attribute file, ""
    // where it has none (or there is no file).
    static int FGetGHMinAppName(CStringArray& keys, CStringArray& aliases);
    static int FGetXZMinAppName(CStringArray& keys, CStringArray& aliases);
    static int FGetDXKJMinAppName(CStringArray& keys, CStringArray& aliases, int planned);

    // The alias of one field: its value up to the first ";"; "" when the file, section or
    // key is missing. Section and key are matched ignoring ASCII case.
    static CString FGetAlias(const CString& file, const CString& section, const CString& key);
    static CString FGetGHAlias(const CString& key);
    static CString FGetXZAlias(const CString& key);
    static CString FGetDXKJAlias(const CString& key, int planned);
    static CString FGetJFAlias(const CString& key);
    static CString FGetDYAlias(const CString& key);
    static CString FGetDLAlias(const CString& key);
    static CString FGetPTGJAlias(const CString& key);
    // The alias of a field of any application of the register (buildings, scope lines).
    static CString FGetFAppAlias(const CString& appName, const CString& key);

    // The parcel classes a facility kind may stand on: "AllowDKXZ" of
    // "配套公建\<kind>.ini", trimmed and split at ";" (empty pieces dropped).
    static int FGetPTGJAllowDKXZ(const CString& facility, CStringArray& classes);

    // Public facilities. A facility is named by its kind ("教育") or its code ("JY02");
    // the table "分类要素对应表_配套设施.ini" gives its application ("要素码",
    // FGetPTGJFAppName) and the kind's own file ("文件").
    // The switched-on fields of "FAPP_PTGJ".
    static int FGetPTGJValidAppName(CStringArray& keys, CStringArray& aliases);
    // The switched-on fields of the facility's application; 0 and empty lists when the
    // table does not know the facility.
    static int FGetPTGJValidAppName(const CString& facility, CStringArray& keys,
                                    CStringArray& aliases);
    // The same, with the full path of the drawing of its attribute blocks: "BLKFILE" of
    // the kind's own file, in the kind's folder; else "BLKFILE" of the application in the
    // register, in "配套公建\"; "" when neither names one.
    static int FGetPTGJValidAppName(const CString& facility, CString& blockFile, CStringArray& keys,
                                    CStringArray& aliases);
    // The switched-on fields of an application and the full path of its "BLKFILE"
    // ("配套公建\"; "" when the register names none).
    static int FGetPTGJValidAppNameByFApp(const CString& appName, CString& blockFile,
                                          CStringArray& keys, CStringArray& aliases);
    // The application whose attribute file this is (FGetFAppFieldByFile) and its
    // switched-on fields; 0 and empty results when no application uses the file.
    static int FGetPTGJValidAppNameByFile(const CString& file, CString& appName, CStringArray& keys,
                                          CStringArray& aliases);
    // A road-facility kind ("公交站点", with its file "道路配套设施\<kind>.ini"): the
    // switched-on fields of its application; 0 and empty lists for a kind that is not a
    // road-facility kind or has no application.
    static int FGetRoadSSValidAppName(const CString& kind, CStringArray& keys,
                                      CStringArray& aliases);
    // The application ("FAPP_...") whose records an attribute file describes: the first
    // section of the register whose "FILE" names it (file name only, ".ini" appended as
    // above, case ignored); else the file's own first section beginning "FAPP_". The file
    // may be given with or without folder and extension. 1 when found.
    static int FGetFAppFieldByFile(const CString& file, CString& appName);
};
