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
};
