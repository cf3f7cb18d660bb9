#include "host/kova/KovaSelSet.h"

#include "host/arx/acedads.h"
#include "host/arx/acutads.h"
#include "host/kova/KovaEnt.h"

namespace kova {

CFArxSelSet::~CFArxSelSet() {
    clear();
}

void CFArxSelSet::clear() {
    if (held_) acedSSFree(ss_);
    ads_name_clear(ss_);
    held_ = false;
}

CFArxSelSet::SelSetStatus CFArxSelSet::select(const ACHAR* mode, const void* pt1,
                                              const resbuf* filter) {
    clear();
    switch (acedSSGet(mode, pt1, nullptr, filter, ss_)) {
        case RTNORM:
            held_ = true;
            status_ = kSelected;
            break;
        case RTCAN:
            status_ = kCanceled;
            break;
        case RTREJ:
            status_ = kRejected;
            break;
        default:
            status_ = kNone;
            break;
    }
    if (!held_) ads_name_clear(ss_);
    return status_;
}

CFArxSelSet::SelSetStatus CFArxSelSet::allSelect(const resbuf* filter) {
    return select(L"X", nullptr, filter);
}

CFArxSelSet::SelSetStatus CFArxSelSet::userSelect(const resbuf* filter) {
    return select(nullptr, nullptr, filter);
}

CFArxSelSet::SelSetStatus CFArxSelSet::userSelect(const ACHAR* selectPrompt,
                                                  const ACHAR* removePrompt, const resbuf* filter) {
    if (selectPrompt == nullptr) return userSelect(filter);
    const ACHAR* prompts[2] = {selectPrompt, removePrompt ? removePrompt : selectPrompt};
    return select(L":$", prompts, filter);
}

CFArxSelSet::SelSetStatus CFArxSelSet::polygonSelect(const ACHAR* mode,
                                                     const AcGePoint3dArray& polygon,
                                                     const resbuf* filter) {
    resbuf* vertices = nullptr;
    resbuf* tail = nullptr;
    for (const AcGePoint3d& p : polygon) {
        resbuf* rb = acutNewRb(RT3DPOINT);
        rb->resval.rpoint[X] = p.x;
        rb->resval.rpoint[Y] = p.y;
        rb->resval.rpoint[Z] = p.z;
        (tail ? tail->rbnext : vertices) = rb;
        tail = rb;
    }
    SelSetStatus status = select(mode, vertices, filter);
    acutRelRb(vertices);
    return status;
}

CFArxSelSet::SelSetStatus CFArxSelSet::crossingPolygonSelect(const AcGePoint3dArray& polygon,
                                                             const resbuf* filter) {
    return polygonSelect(L"CP", polygon, filter);
}

CFArxSelSet::SelSetStatus CFArxSelSet::windowPolygonSelect(const AcGePoint3dArray& polygon,
                                                           const resbuf* filter) {
    return polygonSelect(L"WP", polygon, filter);
}

long CFArxSelSet::length() const {
    Adesk::Int32 n = 0;
    if (!held_ || acedSSLength(ss_, &n) != RTNORM) return 0;
    return n;
}

void CFArxSelSet::asAdsName(ads_name ss) const {
    ads_name_set(ss_, ss);
}

void CFArxSelSet::asArray(AcDbObjectIdArray& ids) const {
    ids.removeAll();
    if (held_) kova::ent::SSToIds(ss_, ids);
}

}  // namespace kova
