#include "host/kova/SelectByApplications.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "host/arx/dbapserv.h"
#include "host/arx/dbsymtb.h"
#include "host/arx/dbunknown.h"
#include "host/arx/peek.h"
#include "host/db/PackedXdata.h"
#include "host/db/TextCodec.h"
#include "host/db/WildcardMatch.h"

namespace kova {

namespace {

// Which of the lists an application name puts an entity in, one bit a list; a drawing
// names few applications, so a short list of those met is searched.
class AppMasks {
  public:
    explicit AppMasks(const std::vector<const wchar_t*>& apps) : apps_(apps) {}

    std::uint64_t of(std::string_view utf8) {
        for (const auto& [name, mask] : packed_)
            if (name == utf8) return mask;
        std::uint64_t mask = match(db::utf8ToWide(utf8));
        packed_.emplace_back(std::string(utf8), mask);
        return mask;
    }
    std::uint64_t of(const std::wstring& name) {
        for (const auto& [known, mask] : wide_)
            if (known == name) return mask;
        std::uint64_t mask = match(name);
        wide_.emplace_back(name, mask);
        return mask;
    }

  private:
    std::uint64_t match(const std::wstring& name) const {
        std::uint64_t mask = 0;
        for (std::size_t i = 0; i < apps_.size(); ++i)
            if (db::wcmatch(name, apps_[i] ? apps_[i] : L"")) mask |= std::uint64_t{1} << i;
        return mask;
    }

    const std::vector<const wchar_t*>& apps_;
    std::vector<std::pair<std::string, std::uint64_t>> packed_;
    std::vector<std::pair<std::wstring, std::uint64_t>> wide_;
};

// Whether the entity's type matches, as the filter's group 0 reads it: an entity kept as
// read by the type its file gave it, any other by its class. What a class is, is asked
// once per class.
class TypeMatch {
  public:
    explicit TypeMatch(const wchar_t* types) : types_(types ? types : L"") {}

    bool operator()(const AcDbEntity* entity) {
        const AcRxClass* type = entity->isA();
        auto known = std::find_if(classes_.begin(), classes_.end(),
                                  [type](const Class& c) { return c.type == type; });
        if (known == classes_.end()) {
            bool kept = AcDbUnknownEntity::cast(entity) != nullptr;
            classes_.push_back({type, kept, !kept && db::wcmatch(type->dxfName(), types_)});
            known = classes_.end() - 1;
        }
        if (known->kept)
            return db::wcmatch(db::utf8ToWide(AcDbUnknownEntity::cast(entity)->dxfName()), types_);
        return known->matches;
    }

  private:
    struct Class {
        const AcRxClass* type;
        bool kept, matches;
    };
    std::wstring types_;
    std::vector<Class> classes_;
};

// Model space first, then the paper-space layouts in table order, as "X" walks them.
std::vector<AcDbObjectId> layouts(AcDbDatabase* database) {
    std::vector<AcDbObjectId> out{database->modelSpaceId()};
    auto* table = arx::peek<AcDbBlockTable>(database->blockTableId());
    if (table == nullptr) return out;
    for (AcDbObjectId id : table->recordIds()) {
        auto* block = arx::peek<AcDbBlockTableRecord>(id);
        if (!id.isErased() && block && block->isLayout() && id != database->modelSpaceId())
            out.push_back(id);
    }
    return out;
}

// The group 67 flag of the filter: the entity is in a layout's block other than model
// space. Its own block is asked once for all its entities.
bool inPaperSpace(const AcDbEntity* entity, AcDbObjectId blockId, bool blockIsLayout) {
    AcDbDatabase* database = entity->database();
    AcDbObjectId owner = entity->ownerId();
    bool isLayout = blockIsLayout;
    if (owner != blockId) {
        auto* block = arx::peek<AcDbBlockTableRecord>(owner);
        isLayout = block != nullptr && block->isLayout();
    }
    return database != nullptr && isLayout && owner != database->modelSpaceId();
}

}  // namespace

int SelectByApplications(const wchar_t* types, const std::vector<const wchar_t*>& apps,
                         std::vector<AcDbObjectIdArray>& lists) {
    lists.assign(apps.size(), AcDbObjectIdArray());
    AcDbDatabase* database = acdbHostApplicationServices()->workingDatabase();
    if (database == nullptr || apps.empty() || apps.size() > 64) return 0;
    const bool paperCurrent = database->currentSpaceId() == database->paperSpaceId();
    TypeMatch typeMatches(types);
    AppMasks masks(apps);
    int selected = 0;
    for (AcDbObjectId blockId : layouts(database)) {
        auto* block = arx::peek<AcDbBlockTableRecord>(blockId);
        if (block == nullptr) continue;
        const bool blockIsLayout = block->isLayout();
        for (AcDbObjectId id : block->entityIds()) {
            auto* entity = id.isErased() ? nullptr : arx::peek<AcDbEntity>(id);
            if (entity == nullptr || !entity->hasXdata() || !typeMatches(entity) ||
                inPaperSpace(entity, blockId, blockIsLayout) != paperCurrent)
                continue;
            std::uint64_t mask = 0;
            if (const std::string* packed = entity->packedXdata()) {
                db::forEachPacked(*packed, [&](int code, std::string_view text) {
                    if (code == 1001) mask |= masks.of(text);
                });
            } else {
                entity->forEachXdataApp([&](const std::wstring& app) {
                    mask |= masks.of(app);
                    return true;
                });
            }
            if (mask == 0) continue;
            ++selected;
            for (std::size_t i = 0; i < apps.size(); ++i)
                if (mask & (std::uint64_t{1} << i)) lists[i].append(id);
        }
    }
    return selected;
}

}  // namespace kova
