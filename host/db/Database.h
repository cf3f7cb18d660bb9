#pragma once
// The object store of one drawing: stubs that own the objects and give them handles.
// Which classes the objects are is the business of the layer above; the store only
// knows handles, ownership of the memory, erasure and open state.
#include <atomic>
#include <cstdint>
#include <deque>
#include <memory>
#include <unordered_map>

#include "kplan/Export.h"

namespace db {

class Database;

// Base of every object kept in a database.
class KPLAN_API ObjectBase {
  public:
    virtual ~ObjectBase() = default;
};

// The permanent identity of one object. Stubs are never moved or freed while their
// database lives, so a pointer to one is a stable id even after the object is erased.
struct KPLAN_API Stub {
    Database* database = nullptr;
    std::uint64_t handle = 0;
    std::unique_ptr<ObjectBase> object;
    bool erased = false;
    // Counted atomically: threads measuring one drawing at once may open the same object
    // (the boundary, a dictionary) for read together.
    std::atomic<int> readers = 0;
    bool writer = false;
    bool notifying = false;

    bool isOpen() const { return readers > 0 || writer; }
};

class KPLAN_API Database {
  public:
    Database();
    virtual ~Database();
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    // Takes ownership of the object. A handle of 0 takes the next free one; a handle
    // already in use fails (nullptr) and the object is given back untouched.
    Stub* add(std::unique_ptr<ObjectBase>& object, std::uint64_t handle = 0);
    Stub* find(std::uint64_t handle) const;

    // The next handle that add() will give; never below one past the largest in use.
    std::uint64_t handseed() const { return nextHandle_; }
    void setHandseed(std::uint64_t seed);
    // Room for this many objects, so that a loader adding them does not grow the handle
    // index step by step.
    void reserve(std::size_t objects) { byHandle_.reserve(objects); }

    std::size_t size() const { return stubs_.size(); }
    // Frees the objects of the stubs added from index first on (an earlier size()) that are
    // erased and not open: scratch a reader made and erased again, such as the temporary
    // copies a label point is measured on, which a long run would otherwise keep by the
    // million. Their ids stay valid and erased; opening them fails as for a handle never
    // loaded, so they cannot be unerased. The number of objects freed.
    std::size_t dropErasedSince(std::size_t first);
    // A number unique to this database in this process, never reused.
    std::int64_t serial() const { return serial_; }
    static Database* fromSerial(std::int64_t serial);
    // Stubs in the order they were added, erased ones included.
    const std::deque<Stub>& stubs() const { return stubs_; }

  private:
    std::deque<Stub> stubs_;
    std::unordered_map<std::uint64_t, Stub*> byHandle_;
    std::uint64_t nextHandle_ = 1;
    std::int64_t serial_ = 0;
};

// Entity names of the command-line interface are (handle, database serial) pairs,
// so that a stale or forged name is looked up and refused, never dereferenced.
KPLAN_API void stubToName(const Stub* stub, std::int64_t name[2]);
KPLAN_API Stub* nameToStub(const std::int64_t name[2]);

}  // namespace db
