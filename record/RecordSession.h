#pragma once
// While a session lives, each parcel's fields, kind and areas are read from the drawing
// once however many statistics ask: the twelve totals, the tabulation and a report reading
// the same parcels cost one read of each record. The answers are those of reading anew as
// long as the drawing changes only through CDKBJXDInfo meanwhile (its writes forget the
// entity's entries); open one for runs that read. Sessions may nest; the entries are
// dropped when the outermost one ends. A session serves the thread that opened it; reads
// on other threads go to the drawing, and so do threads that work on drawings of their
// own at once.
#include <functional>

#include "host/arx/dbmain.h"
#include "host/mfc/CString.h"
#include "kplan/Export.h"

namespace dk {

class KPLAN_API RecordSession {
  public:
    RecordSession();
    ~RecordSession();
    RecordSession(const RecordSession&) = delete;
    RecordSession& operator=(const RecordSession&) = delete;

    // True while a session is open.
    static bool IsOpen();
};

// What the record readers share with the session. Each reads through read when no
// session is open or the entry is new, and otherwise gives what read gave before.

// The out-of-line half of the two below, for an open session.
KPLAN_API int KeptText(AcDbObjectId id, wchar_t kind, const wchar_t* name, CString& value,
                       const std::function<int(CString&)>& read);
KPLAN_API int KeptNumber(AcDbObjectId id, const wchar_t* what, double& value,
                         const std::function<int(double&)>& read);

// A text of the entity's under a kind of read and a name: the result of read, and value
// as read left it; a read that fails without touching value leaves the caller's value as
// it was.
template <typename Read>
int RememberedText(AcDbObjectId id, wchar_t kind, const wchar_t* name, CString& value, Read read) {
    if (!RecordSession::IsOpen()) return read(value);
    // By reference: a std::function holds that without allocating.
    return KeptText(id, kind, name, value, std::ref(read));
}
// A number (a result, an area) under a name; read always sets it.
template <typename Read>
int RememberedNumber(AcDbObjectId id, const wchar_t* what, double& value, Read read) {
    if (!RecordSession::IsOpen()) return read(value);
    return KeptNumber(id, what, value, std::ref(read));
}
// Drops everything the session holds: a write may change what other records read (an
// island's entered area is its parcel's too).
KPLAN_API void ForgetRecords();

}  // namespace dk
