#include "host/db/Leaks.h"

namespace db {

LeakCounts& leakCounts() {
    static LeakCounts counts;
    return counts;
}

std::string describeLeaks(const LeakCounts& before, const LeakCounts& after) {
    std::string text;
    auto add = [&text](const char* what, long delta) {
        if (delta == 0) return;
        if (!text.empty()) text += ", ";
        text += std::to_string(delta) + " " + what;
    };
    add("object(s) left open", after.openObjects - before.openObjects);
    add("result buffer(s) not released", after.liveResbufs - before.liveResbufs);
    add("selection set(s) not freed", after.liveSelectionSets - before.liveSelectionSets);
    return text;
}

}  // namespace db
