#include "standard/ClassTableCache.h"

#include <chrono>
#include <filesystem>
#include <string>
#include <system_error>

namespace {

namespace fs = std::filesystem;

fs::path nativePath(const CString& path) {
    std::string utf8 = path.ToUtf8();
    std::u8string text(utf8.begin(), utf8.end());
    return fs::path(text);
}

}  // namespace

std::map<CString, ClassTableCache::Slot>& ClassTableCache::Slots() {
    static std::map<CString, Slot> slots;
    return slots;
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
    Slots().clear();
}

bool ClassTableCache::StampOf(const CString& path, Stamp& stamp) {
    std::error_code ec;
    fs::path native = nativePath(path);
    stamp.size = fs::file_size(native, ec);
    if (ec) return false;
    auto time = fs::last_write_time(native, ec);
    if (ec) return false;
    stamp.time = static_cast<std::int64_t>(time.time_since_epoch().count());
    stamp.settled = fs::file_time_type::clock::now() - time > std::chrono::seconds(2);
    return true;
}

std::shared_ptr<const ParsedClassTable> ClassTableCache::Get(const CString& path) {
    if (path.IsEmpty()) return nullptr;
    if (!Caching()) return ParsedClassTable::Load(path);
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
