#pragma once
// The land-use class tables and the configuration files of the current standard.
// Nearly everything is static and reads the files anew on each call: the settings
// may change between two commands, and nothing here may go stale.
// A class table is parsed once per version of its file (ClassTableCache): an edit on disk
// counts at the next call.
#include <map>

#include "host/arx/dbcolor.h"
#include "host/mfc/CString.h"
#include "host/mfc/CStringArray.h"
#include "kplan/Export.h"

using CStringMap = std::map<CString, CString>;

class KPLAN_API CKovaAttribSet {
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

    // Class colours. A colour index is -1 when none is found; a full colour not found is
    // left at its default. "Cur" members read the current class table ("_地下.txt" variant
    // when aboveGround is 0), keep their answers in the drawing's colour cache
    // "FQMDKCOLOR" (keys "FL_FZ_YDGH_<code>" for fills, "FL_YS_YDGH_<code>" for
    // boundaries, "_DX" appended below ground) and answer from it first; the table-wide
    // colour of section "地块颜色" overrides every class line. "CurStandard" members leave
    // the drawing cache out; "CurClass" members also the table-wide colour. "KB" takes the
    // colour of the layer "FL_FZ_YDGH_KB" (boundaries "FL_YS_YDGH_KB") of the layer
    // standard, 7 when it has none (then nothing is cached). A compound code "R2/B1"
    // without a colour of its own takes the colour of its first code. The colour of a
    // code is that of its first line with a "$" field (codes ignore ASCII case).
    static int FGetColorFromCur(const CString& code, int aboveGround);
    static int FGetColorFromCur(const CString& code);
    static int FGetColorFromCurStandard(const CString& code, int aboveGround);
    static int FGetColorFromCurClass(const CString& code, int aboveGround);
    // A true colour comes back as set by setRGB, not reduced to an index. A compound code
    // is cached in the form of its colour ("%d,%d,%d" for a true colour).
    static AcCmColor FGetCmColorFromCur(const CString& code, int aboveGround);
    static AcCmColor FGetCmColorFromCurStandard(const CString& code, int aboveGround);
    static AcCmColor FGetCmColorFromCurClass(const CString& code, int aboveGround);
    static int FGetDKBJColorFromCur(const CString& code, int aboveGround);
    static int FGetDKBJColorFromCurStandard(const CString& code, int aboveGround);
    static int FGetDKBJColorFromCurClass(const CString& code, int aboveGround);
    static AcCmColor FGetDKBJCmColorFromCur(const CString& code, int aboveGround);
    static AcCmColor FGetDKBJCmColorFromCurStandard(const CString& code, int aboveGround);
    static AcCmColor FGetDKBJCmColorFromCurClass(const CString& code, int aboveGround);
    // The national tables "1990国标城市用地类别.txt" (OLDGB) and "2011国标城乡用地类别.txt"
    // (NEWGB) of the current standard (of "通用国标" when it has no copy): no drawing
    // cache, no "KB" rule; the fill members have no compound fallback either.
    static int FGetColorFromOLDGB(const CString& code, int aboveGround);
    static int FGetColorFromOLDGB(const CString& code);
    static int FGetColorFromNEWGB(const CString& code, int aboveGround);
    static int FGetColorFromNEWGB(const CString& code);
    static int FGetDKBJColorFromOLDGB(const CString& code, int aboveGround);
    static int FGetDKBJColorFromNEWGB(const CString& code, int aboveGround);

    // The object's colour map: four maps from class code to colour text. Types 0 to 3
    // pick one map (the callers decide what each holds, by convention DKCOLORTYPE);
    // any other type means all four for Add and Clear and none for Find.
    enum DKCOLORTYPE {
        DKCOLOR_FILL = 0,
        DKCOLOR_BOUNDARY = 1,
        DKCOLOR_HATCH = 2,
        DKCOLOR_TEXT = 3
    };
    // Stores only when code and colour are both non-empty.
    void AddColorMap(const CString& code, const CString& colour, int type);
    // 1 with the stored colour text, else 0 and colour untouched.
    int FindColorByClass(const CString& code, CString& colour, int type) const;
    void ClearColorMap(int type);

    // Class hatches: the "@" field "pattern/scale/angle" of the first line of the code that
    // has one, with scale and angle rounded to whole numbers. The outputs are written
    // only for a field of exactly three parts (a later "*" or "&" ends it; a remark after
    // it stays in the angle, which is read up to the blank); otherwise the caller's
    // defaults stand.
    static void FGetHatchFromCur(const CString& code, CString& pattern, double& scale,
                                 double& angle);
    // Always the underground variant ("_地下.txt") of the current table.
    static void FGetHatchFromCurDX(const CString& code, CString& pattern, double& scale,
                                   double& angle);
    static void FGetHatchFromNEWGB(const CString& code, CString& pattern, double& scale,
                                   double& angle);
    static void FGetHatchFromOLDGB(const CString& code, CString& pattern, double& scale,
                                   double& angle);
    // The colour of the hatch pattern: the table-wide "图案颜色" of section "地块颜色" when
    // set, else the class's own colour; "KB" that of the layer "FL_FZ_YDGH_KB", a compound
    // code that of its first code. Never cached in the drawing. -1 / default when none.
    static int FGetHatchColorIndexFromCur(const CString& code, int aboveGround);
    static AcCmColor FGetHatchCmColorFromCur(const CString& code, int aboveGround);
    // The value formatted with that many decimals and read back, rounded as printf rounds
    // (2.5 gives 2, 3.5 gives 4).
    static double FCutNum(double value, int decimals);

    // Layer affixes of section "用地图层前后缀" of the current class table. 1 with the
    // values (each trimmed, "" when the key is missing); 0 with the outputs untouched when
    // the table does not exist. The three-argument forms deliberately have no hatch prefix.
    static int FGetGHDKLayerPreSuffix(CString& boundaryPrefix, CString& boundarySuffix,
                                      CString& hatchSuffix);
    static int FGetGHDKLayerPreSuffix(CString& boundaryPrefix, CString& boundarySuffix,
                                      CString& hatchPrefix, CString& hatchSuffix);
    static int FGetXZDKLayerPreSuffix(CString& boundaryPrefix, CString& boundarySuffix,
                                      CString& hatchSuffix);
    static int FGetXZDKLayerPreSuffix(CString& boundaryPrefix, CString& boundarySuffix,
                                      CString& hatchPrefix, CString& hatchSuffix);
    // The boundary / hatch layer of a class, as the four-map table reader gives it: the
    // class line's "*" / "&" field (after a blank), else the table's fixed layer, else
    // prefix + code + suffix (the bare code when the table sets neither). The keys are
    // those of the table's kind (规划 or 现状). A compound code without a line of its own
    // takes the layer of its first code. "" when the table does not exist.
    static CString FGetLayerNameFromCur(const CString& code);
    static CString FGetTCLayerNameFromCur(const CString& code);
    // The same from the underground variant ("_地下.txt") of the current table.
    static CString FGetDXKJLayerNameFromCur(const CString& code);
    static CString FGetDXKJTCLayerNameFromCur(const CString& code);
    // Rewrites the code as the current table writes it ("r2" becomes "R2"): 1 when a
    // line matched; 0 with the code unchanged when none does or there is no table.
    static int FExchangeClass(CString& code);
    // Boundary layer, hatch layer (the boundary layer + "-TC") and fill colour index of a
    // class in the national table of "通用国标" (1990 or 2011), the first code deciding
    // for a compound code. 1 when the table holds the class; 0 with outputs untouched.
    static int FGetDKLayerAndColorFromOldGB(const CString& code, CString& boundaryLayer,
                                            CString& hatchLayer, int& colourIndex);
    static int FGetDKLayerAndColorFromNewGB(const CString& code, CString& boundaryLayer,
                                            CString& hatchLayer, int& colourIndex);
    // The class of road parcels: key "用地类别" of section "道路地块" of the current table,
    // "S1" when it sets none.
    static CString FGetRoadDKClass();

    // Class names and remarks. A class is known to the current table when it has a line
    // (a compound code when its first code has). The drawing may name classes of its own
    // in its dictionary "FQMDKXZMS" under "FL_YS_YDGH_<code>" (planned) or
    // "FL_YS_YDXZ_<code>" (current status), the value being the name.
    // 1 when the current table or the drawing knows the class.
    static int FFindClassFromCur(const CString& code);
    // 1 when the current table knows the class.
    static int FFindClassFromCurStandard(const CString& code);
    // The name of a class: the drawing's own name ("Cur" only), else the table's, else a
    // built-in name: "KB" 空白用地, "GS" 高速公路用地, "ZG" 在建工地, "KS" 矿山用地,
    // "CG" 城改用地, "ZL" 自留地, "QT" 其他用地, "TD" 铁道用地. A compound code without a
    // name of its own gets the names of its parts joined by "/" (a part without a name
    // keeps its code), when at least one part has one. "" when nothing names it.
    static CString FGetDKXZMCFromCur(const CString& code);
    static CString FGetDKXZMCFromCurStandard(const CString& code);
    static CString FGetDKXZMCFromNEWGB(const CString& code);
    static CString FGetDKXZMCFromOLDGB(const CString& code);
    // The 2011 code and name of a 1990 code from "参数配置\新旧标准代码转换输入表.txt". The
    // table has one line per old class: "旧代码,旧名称,新代码,新名称[,说明]", fields
    // separated by ASCII commas and trimmed; empty lines and lines starting with ";" or
    // "[" are skipped, as are lines with fewer than four fields or an empty old or new
    // code. The first line of an old code counts (ASCII case ignored). 1 with the new
    // code and name; 0 with the outputs untouched.
    static int FGetDKXZMCFromOldNewTbl(const CString& oldCode, CString& newCode, CString& newName);
    // The remark ("#" field) of a class, the first code deciding for a compound code
    // without a line of its own; "" when none.
    static CString FGetBZFromCur(const CString& code);
    static CString FGetBZFromNEWGB(const CString& code);
    static CString FGetBZFromOLDGB(const CString& code);

  protected:
    CStringMap m_mapBJLayer;  // "*" field
    CStringMap m_mapTCLayer;  // "&" field
    CStringMap m_mapName;     // text after ":"
    CStringMap m_mapColor;    // "$" field
    CStringMap m_mapHatch;    // "@" field
    CStringMap m_mapRemark;   // "#" field

    // The colour map, one per DKCOLORTYPE.
    CStringMap m_mapDKColor[4];

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
