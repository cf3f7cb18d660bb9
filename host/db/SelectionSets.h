#pragma once
// The selection sets handed out by the command-line interface. A set is a list of
// entity names (handle, database serial), so that a set outliving its drawing holds
// names that no longer resolve rather than dangling pointers; each one counts in
// leakCounts().liveSelectionSets until it is freed. The host allows only a limited number of sets
// at a time. Threads working on drawings of their own may create and free sets at once.
#include <array>
#include <cstdint>
#include <functional>
#include <mutex>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace db {

using EntityName = std::array<std::int64_t, 2>;

class SelectionSets {
  public:
    static constexpr std::size_t kMaxSets = 128;

    // A new set; 0 when kMaxSets are open already.
    std::int64_t create(std::vector<EntityName> members);
    // The members of a live set, null for a freed or unknown one; changed only through
    // add and remove.
    std::vector<EntityName>* find(std::int64_t id);
    // Appends a name the set does not hold yet (true when the set is live). Membership is
    // looked up in an index made on the first add, so that adding every fill of a large
    // drawing one by one stays linear.
    bool add(std::int64_t id, const EntityName& name);
    // Removes a member; false when the set is not live or lacks it.
    bool remove(std::int64_t id, const EntityName& name);
    bool free(std::int64_t id);
    std::size_t liveCount() const;

    // Set names of the command-line interface: (id, kNameTag). The tag is no database
    // serial, so a set name is never taken for an entity name.
    static constexpr std::int64_t kNameTag = -1;
    static void toName(std::int64_t id, std::int64_t name[2]);
    static std::int64_t fromName(const std::int64_t name[2]);

  private:
    struct NameHash {
        std::size_t operator()(const EntityName& n) const {
            return std::hash<std::int64_t>()(n[0]) * 31 + std::hash<std::int64_t>()(n[1]);
        }
    };
    std::unordered_map<std::int64_t, std::vector<EntityName>> sets_;
    std::unordered_map<std::int64_t, std::unordered_set<EntityName, NameHash>> index_;
    std::int64_t next_ = 1;
    mutable std::mutex mutex_;
};

SelectionSets& selectionSets();

}  // namespace db
