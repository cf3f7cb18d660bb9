#include "host/db/SelectionSets.h"

#include "host/db/Leaks.h"

namespace db {

std::int64_t SelectionSets::create(std::vector<EntityName> members) {
    if (sets_.size() >= kMaxSets) return 0;
    std::int64_t id = next_++;
    sets_.emplace(id, std::move(members));
    leakCounts().liveSelectionSets++;
    return id;
}

std::vector<EntityName>* SelectionSets::find(std::int64_t id) {
    auto it = sets_.find(id);
    return it == sets_.end() ? nullptr : &it->second;
}

bool SelectionSets::free(std::int64_t id) {
    if (sets_.erase(id) == 0) return false;
    leakCounts().liveSelectionSets--;
    return true;
}

void SelectionSets::toName(std::int64_t id, std::int64_t name[2]) {
    name[0] = id;
    name[1] = id == 0 ? 0 : kNameTag;
}

std::int64_t SelectionSets::fromName(const std::int64_t name[2]) {
    return name != nullptr && name[1] == kNameTag ? name[0] : 0;
}

SelectionSets& selectionSets() {
    static SelectionSets sets;
    return sets;
}

}  // namespace db
