#pragma once
// Process-wide counts of what callers must give back: open objects, result-buffer
// lists and selection sets. Every call of the system closes and releases what it
// opened, so a test compares these counts before and after.
#include <atomic>
#include <string>

namespace db {

// A count that the threads of a batch, each on a drawing of its own, change at once.
class LeakCount {
  public:
    LeakCount(long value = 0) : value_(value) {}
    LeakCount(const LeakCount& other) : value_(other) {}
    LeakCount& operator=(const LeakCount& other) {
        value_.store(other, std::memory_order_relaxed);
        return *this;
    }
    operator long() const { return value_.load(std::memory_order_relaxed); }
    long operator++(int) { return value_.fetch_add(1, std::memory_order_relaxed); }
    long operator--(int) { return value_.fetch_sub(1, std::memory_order_relaxed); }

  private:
    std::atomic<long> value_;
};

struct LeakCounts {
    LeakCount openObjects = 0;
    LeakCount liveResbufs = 0;
    LeakCount liveSelectionSets = 0;

    bool operator==(const LeakCounts& other) const {
        return long(openObjects) == long(other.openObjects) &&
               long(liveResbufs) == long(other.liveResbufs) &&
               long(liveSelectionSets) == long(other.liveSelectionSets);
    }
};

LeakCounts& leakCounts();

// A readable account of the difference between two snapshots, empty when equal.
std::string describeLeaks(const LeakCounts& before, const LeakCounts& after);

}  // namespace db
