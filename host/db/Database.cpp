#include "host/db/Database.h"

#include "host/db/Leaks.h"

#include <mutex>

namespace db {

namespace {
// Drawings are made and freed on the threads of a batch while others look theirs up.
struct Registry {
    std::mutex mutex;
    std::unordered_map<std::int64_t, Database*> databases;
    std::int64_t nextSerial = 1;
};
Registry& registry() {
    static Registry r;
    return r;
}
std::int64_t enrol(Database* database) {
    Registry& r = registry();
    std::lock_guard<std::mutex> lock(r.mutex);
    std::int64_t serial = r.nextSerial++;
    r.databases.emplace(serial, database);
    return serial;
}
}  // namespace

Database::Database() : serial_(enrol(this)) {}

Database* Database::fromSerial(std::int64_t serial) {
    Registry& r = registry();
    std::lock_guard<std::mutex> lock(r.mutex);
    auto it = r.databases.find(serial);
    return it == r.databases.end() ? nullptr : it->second;
}

void stubToName(const Stub* stub, std::int64_t name[2]) {
    name[0] = stub ? static_cast<std::int64_t>(stub->handle) : 0;
    name[1] = stub ? stub->database->serial() : 0;
}

Stub* nameToStub(const std::int64_t name[2]) {
    Database* database = Database::fromSerial(name[1]);
    return database ? database->find(static_cast<std::uint64_t>(name[0])) : nullptr;
}

Database::~Database() {
    {
        Registry& r = registry();
        std::lock_guard<std::mutex> lock(r.mutex);
        r.databases.erase(serial_);
    }
    // Objects still open when their drawing goes away can no longer be closed.
    for (Stub& stub : stubs_) {
        if (stub.isOpen()) leakCounts().openObjects--;
    }
    // Objects may refer to each other in their destructors' view; free them in
    // reverse order of creation, before the stubs themselves go.
    for (auto it = stubs_.rbegin(); it != stubs_.rend(); ++it)
        it->object.reset();
}

std::size_t Database::dropErasedSince(std::size_t first) {
    std::size_t freed = 0;
    // Newest first, as the destructor frees them.
    for (std::size_t i = stubs_.size(); i > first; --i) {
        Stub& stub = stubs_[i - 1];
        if (!stub.erased || stub.isOpen() || !stub.object) continue;
        stub.object.reset();
        ++freed;
    }
    return freed;
}

Stub* Database::add(std::unique_ptr<ObjectBase>& object, std::uint64_t handle) {
    if (handle == 0) {
        while (byHandle_.count(nextHandle_))
            ++nextHandle_;
        handle = nextHandle_++;
    } else if (byHandle_.count(handle)) {
        return nullptr;
    }
    if (handle >= nextHandle_) nextHandle_ = handle + 1;
    Stub& stub = stubs_.emplace_back();
    stub.database = this;
    stub.handle = handle;
    stub.object = std::move(object);
    byHandle_.emplace(handle, &stub);
    return &stub;
}

Stub* Database::find(std::uint64_t handle) const {
    auto it = byHandle_.find(handle);
    return it == byHandle_.end() ? nullptr : it->second;
}

void Database::setHandseed(std::uint64_t seed) {
    if (seed > nextHandle_) nextHandle_ = seed;
}

}  // namespace db
