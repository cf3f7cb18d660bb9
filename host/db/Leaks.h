#pragma once
// Process-wide counts of what callers must give back: open objects, result-buffer
// lists and selection sets. Every call of the system closes and releases what it
// opened, so a test compares these counts before and after.
#include <string>

namespace db {

struct LeakCounts {
    long openObjects = 0;
    long liveResbufs = 0;
    long liveSelectionSets = 0;

    bool operator==(const LeakCounts&) const = default;
};

LeakCounts& leakCounts();

// A readable account of the difference between two snapshots, empty when equal.
std::string describeLeaks(const LeakCounts& before, const LeakCounts& after);

}  // namespace db
