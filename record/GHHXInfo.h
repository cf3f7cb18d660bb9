#pragma once
// The record of a planning red line (规划红线): a curve whose xdata under "规划红线" is a
// label / value list saying which kind of red line it is ("规划类型"). The kinds are
// opaque strings compared exactly; "3" stands for every kind in GetGhhx. The record holds
// the kind alone: writing a label the list already has rewrites the list as that one
// pair, dropping the others (unlike parcel lists); a new label is appended.
#include "host/arx/dbmain.h"
#include "host/mfc/CString.h"
#include "kplan/Export.h"

class KPLAN_API CGHHXInfo {
  public:
    CGHHXInfo() = default;
    // Stores the id as given.
    explicit CGHHXInfo(AcDbObjectId id) : m_id(id) {}
    CGHHXInfo(const CGHHXInfo&) = default;
    CGHHXInfo& operator=(const CGHHXInfo&) = default;
    virtual ~CGHHXInfo() = default;

    // The value that follows the label in the list; 0 for a null id or when absent.
    int GetData(const CString& label, CString& value) const;
    // Writes the pair (see above); the result of the write.
    int SetData(const CString& label, const CString& value);
    // 1 when the line's "规划类型" is exactly kind.
    int IsGhhx(const CString& kind) const;

    // Red lines of the whole drawing (model and paper space, any entity type) appended to
    // ids: all of them for the kind "3", else those whose "规划类型" is the kind. The
    // length of ids.
    static int GetGhhx(const CString& kind, AcDbObjectIdArray& ids);

  private:
    AcDbObjectId m_id;
};

// IsGhhx without a wrapper: 0 for a null id.
KPLAN_API int kova_dk_IsGhhx(AcDbObjectId id, const CString& kind);
