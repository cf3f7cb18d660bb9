#pragma once
// What the parcel queries of both record generations share: the drawing scans with their
// host filter, appending ids without repeats, and the class comparisons and cuts.
#include <unordered_set>

#include "host/arx/dbmain.h"
#include "host/mfc/CString.h"
#include "host/mfc/CStringArray.h"
#include "kplan/Export.h"
#include "record/ObjectIdHash.h"

namespace dk {

// One host selection over the whole drawing with the filter (0 types)[(67 current
// space)](-3)(1001 apps); ids is replaced by what it finds, in the host's order. Without
// the space item model and paper space are both searched. The filter and the selection
// set are released before it returns. The number found.
KPLAN_API int SelectParcels(const wchar_t* types, const wchar_t* apps, bool currentSpaceOnly,
                            AcDbObjectIdArray& ids);

// Appends ids that are not listed yet; a hash set keeps long lists linear.
class KPLAN_API IdAppender {
  public:
    explicit IdAppender(AcDbObjectIdArray& ids);
    // false when the id was already there. With checkLive, invalid and erased ids are
    // refused too.
    bool add(AcDbObjectId id, bool checkLive = false);
    int length() const { return ids_.length(); }

  private:
    AcDbObjectIdArray& ids_;
    std::unordered_set<AcDbObjectId, ObjectIdHash> seen_;
};

// Appends text when it is not in the list yet (exact match); false when it was.
KPLAN_API bool AppendNewString(CStringArray& list, const CString& text);

// The prefix test of the class queries: false for an empty prefix; else the first
// characters of cls, as many as the prefix has, equal to it (case-sensitive).
KPLAN_API bool ClassBeginsWith(const CString& cls, const CString& prefix);

// Large class: the first character of a code, the first two of a Chinese name. Mid
// class: the first two of a code, the first three of a Chinese name. Upper-cased; a
// class shorter than the cut is taken whole.
KPLAN_API CString LargeClass(const CString& cls);
KPLAN_API CString MidClass(const CString& cls);

}  // namespace dk
