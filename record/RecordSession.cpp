#include "record/RecordSession.h"

#include <atomic>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

#include "record/ObjectIdHash.h"

namespace dk {

namespace {

struct Entry {
    wchar_t kind = 0;  // 0 for numbers
    std::wstring name;
    int result = 0;
    bool touched = false;  // the text was set by the read
    CString text;
    double number = 0;
};

struct Session {
    std::mutex mutex;
    // Read without the lock: every record read asks whether a session is open.
    std::atomic<int> depth{0};
    std::unordered_map<AcDbObjectId, std::vector<Entry>, ObjectIdHash> entries;
    // The entries of the entity read last: a reader asks several things of one entity in a
    // row (its generation, then a field, then its area), so most reads skip the map.
    AcDbObjectId lastId;
    std::vector<Entry>* last = nullptr;

    std::vector<Entry>* of(AcDbObjectId id, bool make) {
        if (last != nullptr && lastId == id) return last;
        std::vector<Entry>* found = nullptr;
        if (make) {
            found = &entries[id];
        } else {
            auto it = entries.find(id);
            if (it == entries.end()) return nullptr;
            found = &it->second;
        }
        lastId = id;
        last = found;
        return found;
    }
    void clear() {
        entries.clear();
        last = nullptr;
    }
};

// A session is the thread's own: the threads of a batch each read a drawing of their own,
// and a drawing freed on one thread may leave its entities' ids to the next one read there.
Session& session() {
    thread_local Session s;
    return s;
}

// Runs use on the entry of the entity under the kind and name, inside the lock; false when
// there is none.
template <typename Use>
bool lookUp(AcDbObjectId id, wchar_t kind, const wchar_t* name, Use use) {
    Session& s = session();
    std::lock_guard<std::mutex> lock(s.mutex);
    const std::vector<Entry>* entries = s.of(id, false);
    if (entries == nullptr) return false;
    for (const Entry& e : *entries) {
        if (e.kind == kind && e.name == name) {
            use(e);
            return true;
        }
    }
    return false;
}

void keep(AcDbObjectId id, Entry entry) {
    Session& s = session();
    std::lock_guard<std::mutex> lock(s.mutex);
    if (s.depth == 0) return;
    s.of(id, true)->push_back(std::move(entry));
}

// Tells "the read left the text alone" from "the read set it": no record holds this.
const wchar_t kUntouched[] = L"\xFFFF\xFFFE untouched";

}  // namespace

RecordSession::RecordSession() {
    Session& s = session();
    std::lock_guard<std::mutex> lock(s.mutex);
    ++s.depth;
}

RecordSession::~RecordSession() {
    Session& s = session();
    std::lock_guard<std::mutex> lock(s.mutex);
    if (--s.depth == 0) s.clear();
}

bool RecordSession::IsOpen() {
    return session().depth.load() > 0;
}

int KeptText(AcDbObjectId id, wchar_t kind, const wchar_t* name, CString& value,
             const std::function<int(CString&)>& read) {
    int result = 0;
    if (lookUp(id, kind, name, [&](const Entry& e) {
            result = e.result;
            if (e.touched) value = e.text;
        })) {
        return result;
    }
    Entry entry;
    entry.kind = kind;
    entry.name = name;
    CString text = kUntouched;
    entry.result = read(text);
    entry.touched = text != kUntouched;
    if (entry.touched) {
        entry.text = text;
        value = text;
    }
    result = entry.result;
    keep(id, std::move(entry));
    return result;
}

int KeptNumber(AcDbObjectId id, const wchar_t* what, double& value,
               const std::function<int(double&)>& read) {
    int result = 0;
    if (lookUp(id, 0, what, [&](const Entry& e) {
            result = e.result;
            value = e.number;
        })) {
        return result;
    }
    Entry entry;
    entry.name = what;
    entry.result = read(entry.number);
    value = entry.number;
    result = entry.result;
    keep(id, std::move(entry));
    return result;
}

void ForgetRecords() {
    Session& s = session();
    std::lock_guard<std::mutex> lock(s.mutex);
    s.clear();
}

}  // namespace dk
