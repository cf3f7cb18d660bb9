#pragma once
// Identity of a database object: a small value that refers to one object of one
// drawing for as long as that drawing is open.
#include <cstdint>
#include <functional>
#include <string>

#include "host/arx/acarray.h"
#include "host/arx/adesk.h"
#include "kplan/Export.h"

namespace db {
struct Stub;
}
class AcDbDatabase;

class KPLAN_API AcDbHandle {
  public:
    AcDbHandle() = default;
    AcDbHandle(std::uint64_t value) : value_(value) {}
    explicit AcDbHandle(const ACHAR* hex);

    bool isNull() const { return value_ == 0; }
    void setNull() { value_ = 0; }
    std::uint64_t value() const { return value_; }
    // Upper-case hex without leading zeros, as handles are shown in the host.
    bool getIntoAsciiBuffer(ACHAR* buffer, std::size_t size = 17) const;
    std::wstring text() const;
    bool operator==(const AcDbHandle&) const = default;

  private:
    std::uint64_t value_ = 0;
};

class KPLAN_API AcDbObjectId {
  public:
    AcDbObjectId() = default;
    explicit AcDbObjectId(db::Stub* stub) : stub_(stub) {}
    static const AcDbObjectId kNull;

    bool isNull() const { return stub_ == nullptr; }
    // Refers to an object of an open drawing (erased or not).
    bool isValid() const { return stub_ != nullptr; }
    bool isErased() const;
    bool isEffectivelyErased() const { return isErased(); }
    void setNull() { stub_ = nullptr; }

    AcDbDatabase* database() const;
    AcDbHandle handle() const;

    db::Stub* stub() const { return stub_; }
    // The id as a number, unique among the objects of the open drawings while they are open.
    Adesk::IntDbId asOldId() const { return reinterpret_cast<Adesk::IntDbId>(stub_); }
    explicit operator bool() const = delete;
    bool operator==(const AcDbObjectId&) const = default;
    bool operator<(const AcDbObjectId& o) const { return std::less<db::Stub*>()(stub_, o.stub_); }

  private:
    db::Stub* stub_ = nullptr;
};

using AcDbObjectIdArray = AcArray<AcDbObjectId>;

// A convenience of this host that the CAD's SDK does not give: the platform check
// (KPLAN_NO_HOST_HASHES) leaves it out, so that code meant for the CAD hashes ids its
// own way (record/ObjectIdHash.h).
#ifndef KPLAN_NO_HOST_HASHES
template <>
struct std::hash<AcDbObjectId> {
    std::size_t operator()(const AcDbObjectId& id) const noexcept {
        return std::hash<db::Stub*>()(id.stub());
    }
};
#endif
