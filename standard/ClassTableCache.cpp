#include "standard/ClassTableCache.h"

#include <sys/stat.h>
#include <sys/types.h>

#include <chrono>
#include <string>

namespace {

// Nanoseconds since the epoch, as finely as the platform keeps them.
template <typename Info>
std::int64_t modificationTime(const Info& info) {
#if defined(_WIN32)
    return static_cast<std::int64_t>(info.st_mtime) * 1000000000;
#elif defined(__APPLE__)
    return static_cast<std::int64_t>(info.st_mtimespec.tv_sec) * 1000000000 +
           info.st_mtimespec.tv_nsec;
#else
    return static_cast<std::int64_t>(info.st_mtim.tv_sec) * 1000000000 + info.st_mtim.tv_nsec;
#endif
}

}  // namespace

std::map<CString, ClassTableCache::Slot>& ClassTableCache::Slots() {
    static std::map<CString, Slot> slots;
    return slots;
}

std::mutex& ClassTableCache::SlotsMutex() {
    static std::mutex mutex;
    return mutex;
}

bool& ClassTableCache::CachingFlag() {
    static bool on = true;
    return on;
}

void ClassTableCache::SetCaching(bool on) {
    CachingFlag() = on;
    if (!on) Clear();
}

bool ClassTableCache::Caching() {
    return CachingFlag();
}

void ClassTableCache::Clear() {
    std::lock_guard<std::mutex> lock(SlotsMutex());
    Slots().clear();
}

bool ClassTableCache::StampOf(const CString& path, Stamp& stamp) {
    // One status call for size and time: this runs on every lookup.
#ifdef _WIN32
    struct _stat64 info;
    if (::_wstat64(path.GetString(), &info) != 0) return false;
#else
    struct stat info;
    if (::stat(path.ToUtf8().c_str(), &info) != 0) return false;
#endif
    stamp.size = static_cast<std::uintmax_t>(info.st_size);
    stamp.time = modificationTime(info);
    auto now = std::chrono::duration_cast<std::chrono::nanoseconds>(
                   std::chrono::system_clock::now().time_since_epoch())
                   .count();
    stamp.settled = now - stamp.time > std::chrono::nanoseconds(std::chrono::seconds(2)).count();
    return true;
}

std::shared_ptr<const ParsedClassTable> ClassTableCache::Get(const CString& path) {
    if (path.IsEmpty()) return nullptr;
    if (!Caching()) return ParsedClassTable::Load(path);
    // One thread reads a table while the others wait for it rather than read it too.
    std::lock_guard<std::mutex> lock(SlotsMutex());
    Stamp stamp;
    if (!StampOf(path, stamp)) {
        Slots().erase(path);
        return nullptr;
    }
    auto found = Slots().find(path);
    if (found != Slots().end() && found->second.stamp == stamp && found->second.stamp.settled) {
        return found->second.table;
    }
    std::shared_ptr<const ParsedClassTable> table = ParsedClassTable::Load(path);
    // A file that changed while it was read is read again next time.
    Stamp after;
    if (table && StampOf(path, after) && after == stamp) {
        Slots()[path] = Slot{stamp, table};
    } else {
        Slots().erase(path);
    }
    return table;
}
