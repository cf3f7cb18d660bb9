#include "host/db/SelectionSets.h"

#include <algorithm>

#include "host/db/Leaks.h"

namespace db {

std::int64_t SelectionSets::create(std::vector<EntityName> members) {
    std::lock_guard<std::mutex> lock(mutex_);
    if (sets_.size() >= kMaxSets) return 0;
    std::int64_t id = next_++;
    sets_.emplace(id, std::move(members));
    leakCounts().liveSelectionSets++;
    return id;
}

std::vector<EntityName>* SelectionSets::find(std::int64_t id) {
    std::lock_guard<std::mutex> lock(mutex_);
    auto it = sets_.find(id);
    return it == sets_.end() ? nullptr : &it->second;
}

bool SelectionSets::add(std::int64_t id, const EntityName& name) {
    std::lock_guard<std::mutex> lock(mutex_);
    auto it = sets_.find(id);
    if (it == sets_.end()) return false;
    auto indexed = index_.find(id);
    if (indexed == index_.end())
        indexed = index_
                      .emplace(id, std::unordered_set<EntityName, NameHash>(it->second.begin(),
                                                                            it->second.end()))
                      .first;
    if (indexed->second.insert(name).second) it->second.push_back(name);
    return true;
}

bool SelectionSets::remove(std::int64_t id, const EntityName& name) {
    std::lock_guard<std::mutex> lock(mutex_);
    auto it = sets_.find(id);
    if (it == sets_.end()) return false;
    auto member = std::find(it->second.begin(), it->second.end(), name);
    if (member == it->second.end()) return false;
    it->second.erase(member);
    if (auto indexed = index_.find(id); indexed != index_.end()) indexed->second.erase(name);
    return true;
}

bool SelectionSets::free(std::int64_t id) {
    std::lock_guard<std::mutex> lock(mutex_);
    index_.erase(id);
    if (sets_.erase(id) == 0) return false;
    leakCounts().liveSelectionSets--;
    return true;
}

std::size_t SelectionSets::liveCount() const {
    std::lock_guard<std::mutex> lock(mutex_);
    return sets_.size();
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
