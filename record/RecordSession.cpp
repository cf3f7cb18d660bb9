#include "record/RecordSession.h"

#include <atomic>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

namespace dk {

namespace {

struct Entry {
    std::wstring what;
    int result = 0;
    bool touched = false;  // the text was set by the read
    CString text;
    double number = 0;
};

struct Session {
    std::mutex mutex;
    // Read without the lock: every record read asks whether a session is open.
    std::atomic<int> depth{0};
    std::unordered_map<AcDbObjectId, std::vector<Entry>> entries;
};

Session& session() {
    static Session s;
    return s;
}

// The entry of the entity under the name, copied out; false when there is none.
bool lookUp(AcDbObjectId id, const wchar_t* what, Entry& found) {
    Session& s = session();
    std::lock_guard<std::mutex> lock(s.mutex);
    auto it = s.entries.find(id);
    if (it == s.entries.end()) return false;
    for (const Entry& e : it->second) {
        if (e.what == what) {
            found = e;
            return true;
        }
    }
    return false;
}

void keep(AcDbObjectId id, Entry entry) {
    Session& s = session();
    std::lock_guard<std::mutex> lock(s.mutex);
    if (s.depth == 0) return;
    s.entries[id].push_back(std::move(entry));
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
    if (--s.depth == 0) s.entries.clear();
}

bool RecordSession::IsOpen() {
    return session().depth.load() > 0;
}

int KeptText(AcDbObjectId id, wchar_t kind, const wchar_t* name, CString& value,
             const std::function<int(CString&)>& read) {
    std::wstring what = kind + std::wstring(name);
    Entry entry;
    if (!lookUp(id, what.c_str(), entry)) {
        CString text = kUntouched;
        entry.what = what;
        entry.result = read(text);
        entry.touched = text != kUntouched;
        entry.text = text;
        keep(id, entry);
    }
    if (entry.touched) value = entry.text;
    return entry.result;
}

int KeptNumber(AcDbObjectId id, const wchar_t* what, double& value,
               const std::function<int(double&)>& read) {
    Entry entry;
    if (!lookUp(id, what, entry)) {
        entry.what = what;
        entry.result = read(entry.number);
        keep(id, entry);
    }
    value = entry.number;
    return entry.result;
}

void ForgetRecords() {
    Session& s = session();
    std::lock_guard<std::mutex> lock(s.mutex);
    s.entries.clear();
}

}  // namespace dk
