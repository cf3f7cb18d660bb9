#pragma once
// The hash of object ids for unordered containers. The CAD's SDK gives AcDbObjectId no
// std::hash; what it gives is the id as a number (asOldId), stable while the drawing is
// open, which is all a set of ids within one run needs.
#include <cstddef>
#include <functional>

#include "host/arx/dbid.h"

namespace dk {

struct ObjectIdHash {
    std::size_t operator()(const AcDbObjectId& id) const noexcept {
        return std::hash<Adesk::IntDbId>()(id.asOldId());
    }
};

}  // namespace dk
