#pragma once
// The parsed class tables of the process, each kept with the size and modification time
// its file had when it was read. Every lookup asks for the table by path; the file is
// parsed again only when it is new or its size or time has changed, so an edit on disk
// is seen by the very next lookup. File times are coarse (a few milliseconds): a file
// changed less than two seconds before it was read could change again without a new
// time, so such a table is not kept but read again until its time is old enough.
// Lookups may come from several threads at once (a batch of drawings, one per thread).
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>

#include "host/mfc/CString.h"
#include "kplan/Export.h"
#include "standard/ParsedClassTable.h"

class KPLAN_API ClassTableCache {
  public:
    // The table at the path, null when the file is missing or unreadable.
    static std::shared_ptr<const ParsedClassTable> Get(const CString& path);

    // With caching off every Get parses the file anew, as the lookups did before there
    // was a cache (kept for measuring the difference); on by default.
    static void SetCaching(bool on);
    static bool Caching();
    // Forgets every parsed table.
    static void Clear();

  private:
    struct Stamp {
        std::uintmax_t size = 0;
        std::int64_t time = 0;
        bool settled = false;  // modified long enough before it was read
        bool operator==(const Stamp& other) const {
            return size == other.size && time == other.time;
        }
    };
    struct Slot {
        Stamp stamp;
        std::shared_ptr<const ParsedClassTable> table;
    };
    static bool StampOf(const CString& path, Stamp& stamp);
    static std::map<CString, Slot>& Slots();
    static std::mutex& SlotsMutex();
    static bool& CachingFlag();
};
