#pragma once
// The maker's selection-set holder: selects with the host's acedSSGet and frees the set
// when it goes (or on the next selection), so that no caller can forget to.
#include "host/arx/adsdef.h"
#include "host/arx/dbmain.h"
#include "host/arx/gepnt3d.h"
#include "kplan/Export.h"

namespace kova {

class KPLAN_API CFArxSelSet {
  public:
    // kSelected is 0: callers test the status against 0 for success.
    enum SelSetStatus { kSelected = 0, kNone, kCanceled, kRejected };

    CFArxSelSet() = default;
    ~CFArxSelSet();
    CFArxSelSet(const CFArxSelSet&) = delete;
    CFArxSelSet& operator=(const CFArxSelSet&) = delete;

    // Every entity of the drawing (all layouts) that passes the filter.
    SelSetStatus allSelect(const resbuf* filter = nullptr);
    // The user's selection from the command line; the prompts, when given, replace the
    // host's "Select objects:" and "Remove objects:".
    SelSetStatus userSelect(const resbuf* filter = nullptr);
    SelSetStatus userSelect(const ACHAR* selectPrompt, const ACHAR* removePrompt,
                            const resbuf* filter = nullptr);
    // Entities of the current space inside or crossing the polygon / wholly inside it.
    SelSetStatus crossingPolygonSelect(const AcGePoint3dArray& polygon,
                                       const resbuf* filter = nullptr);
    SelSetStatus windowPolygonSelect(const AcGePoint3dArray& polygon,
                                     const resbuf* filter = nullptr);

    SelSetStatus lastStatus() const { return status_; }
    bool isInitialized() const { return held_; }
    // The number of entities selected, 0 without a selection.
    long length() const;
    // The set's name; the set stays this object's and is freed with it.
    void asAdsName(ads_name ss) const;
    // Clears ids and fills it with the selection.
    void asArray(AcDbObjectIdArray& ids) const;
    // Frees the set.
    void clear();

  private:
    SelSetStatus select(const ACHAR* mode, const void* pt1, const resbuf* filter);
    SelSetStatus polygonSelect(const ACHAR* mode, const AcGePoint3dArray& polygon,
                               const resbuf* filter);

    ads_name ss_ = {0, 0};
    bool held_ = false;
    SelSetStatus status_ = kNone;
};

}  // namespace kova
