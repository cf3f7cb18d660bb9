#pragma once
// Reading an object's state without opening it, for the host's own classes (a table
// looking up a name, an entity checking its layer). Domain code opens objects.
#include "host/arx/dbmain.h"

namespace arx {

inline AcDbObject* peekObject(AcDbObjectId id) {
    db::Stub* stub = id.stub();
    return stub ? static_cast<AcDbObject*>(stub->object.get()) : nullptr;
}

template <typename T>
T* peek(AcDbObjectId id) {
    return T::cast(peekObject(id));
}

// Case-insensitive key of symbol names and dictionary keys (ASCII letters only:
// the host folds nothing else).
std::wstring foldCase(const ACHAR* text);

}  // namespace arx
