#pragma once
// What kind of value a DXF group code carries. Shared by xdata, xrecords, result
// buffers and the DXF reader, so that all of them agree on every code.

#include "kplan/Export.h"

namespace db {

enum class ValueKind {
    None,  // codes that carry nothing (negative markers handled by callers)
    String,
    Real,
    Point,  // three reals: x, y, z
    Int16,
    Int32,
    Int64,
    Bool,       // stored as a 16-bit integer
    Binary,     // hex bytes
    Handle,     // a handle written as hex text that is not a pointer (5, 105, 1005)
    ObjectRef,  // soft or hard pointer/ownership to another object (320-369, 390-399, 480-481)
};

KPLAN_API ValueKind kindOfGroupCode(int code);

}  // namespace db
