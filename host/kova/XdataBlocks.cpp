#include "host/kova/XdataBlocks.h"

#include <algorithm>

#include "host/arx/acutads.h"
#include "host/arx/dbsymtb.h"
#include "host/arx/peek.h"
#include "host/db/PackedXdata.h"

namespace kova::xdata {

namespace {

bool isString(const db::Value& v, int code) {
    return v.code == code && v.text() != nullptr;
}

bool isBrace(const db::Value& v, const wchar_t* brace) {
    return isString(v, 1002) && *v.text() == brace;
}

std::wstring textOf(const db::Value& v) {
    return v.text() ? *v.text() : std::wstring();
}

}  // namespace

bool readBlocks(AcDbObjectId id, std::vector<Block>& blocks) {
    blocks.clear();
    if (id.isNull() || id.isErased()) return false;
    AcDbObject* obj = nullptr;
    if (acdbOpenObject(obj, id, AcDb::kForRead) != Acad::eOk) return false;
    obj->withXdata([&](const db::ValueList& all) {
        for (const db::Value& v : all) {
            if (v.code == 1001) {
                blocks.push_back({textOf(v), {}});
            } else if (!blocks.empty()) {
                blocks.back().values.push_back(v);
            }
        }
    });
    obj->close();
    return true;
}

bool forEachBlock(
    AcDbObjectId id,
    const std::function<bool(const std::wstring& app, std::span<const db::Value> values)>& use) {
    return forEachBlock(id, use, nullptr);
}

namespace {

// Shows the packed blocks; the items of a block are gathered in a list that the thread
// keeps, taken for the walk so that a use reading another entity gets a list of its own.
void walkPacked(std::string_view packed, const PackedUse& use) {
    thread_local std::vector<PackedItem> kept;
    std::vector<PackedItem> items;
    items.swap(kept);
    items.clear();
    std::string_view app;
    bool inBlock = false, going = true;
    db::forEachPacked(packed, [&](int code, std::string_view text) {
        if (code == 1001) {
            if (inBlock && !use(app, items)) return going = false;
            app = text;
            inBlock = true;
            items.clear();
        } else if (inBlock) {
            items.push_back({code, text});
        }
        return true;
    });
    if (going && inBlock) use(app, items);
    items.swap(kept);
}

}  // namespace

bool forEachBlock(
    AcDbObjectId id,
    const std::function<bool(const std::wstring& app, std::span<const db::Value> values)>& use,
    const PackedUse& packedUse) {
    if (id.isNull() || id.isErased()) return false;
    AcDbObject* obj = nullptr;
    if (acdbOpenObject(obj, id, AcDb::kForRead) != Acad::eOk) return false;
    if (const std::string* packed = packedUse ? obj->packedXdata() : nullptr) {
        walkPacked(*packed, packedUse);
        obj->close();
        return true;
    }
    obj->withXdata([&](const db::ValueList& all) {
        static const std::wstring kNoName;
        std::size_t n = all.size(), i = 0;
        while (i < n && all[i].code != 1001)
            ++i;
        while (i < n) {
            std::size_t end = i + 1;
            while (end < n && all[end].code != 1001)
                ++end;
            const std::wstring* app = all[i].text();
            std::span<const db::Value> values(all.data() + i + 1, end - i - 1);
            if (!use(app ? *app : kNoName, values)) break;
            i = end;
        }
    });
    obj->close();
    return true;
}

const Block* findBlock(const std::vector<Block>& blocks, const std::wstring& app) {
    std::wstring key = arx::foldCase(app.c_str());
    for (const Block& b : blocks) {
        if (arx::foldCase(b.app.c_str()) == key) return &b;
    }
    return nullptr;
}

Block* findBlock(std::vector<Block>& blocks, const std::wstring& app) {
    return const_cast<Block*>(findBlock(static_cast<const std::vector<Block>&>(blocks), app));
}

bool isRegistered(AcDbDatabase* database, const std::wstring& app) {
    if (database == nullptr || app.empty()) return false;
    AcDbRegAppTable* table = nullptr;
    if (database->getRegAppTable(table, AcDb::kForRead) != Acad::eOk) return false;
    bool found = table->has(app.c_str());
    table->close();
    return found;
}

bool registerApp(AcDbDatabase* database, const std::wstring& app) {
    if (database == nullptr || app.empty()) return false;
    if (isRegistered(database, app)) return true;
    AcDbRegAppTable* table = nullptr;
    if (database->getRegAppTable(table, AcDb::kForWrite) != Acad::eOk) return false;
    auto* record = new AcDbRegAppTableRecord();
    bool ok = record->setName(app.c_str()) == Acad::eOk && table->add(record) == Acad::eOk;
    if (ok) {
        record->close();
    } else {
        delete record;
    }
    table->close();
    return ok;
}

bool writeBlocks(AcDbObjectId id, const std::vector<Block>& changes) {
    if (id.isNull() || id.isErased()) return false;
    // What the entity carries matters only to a removal; a write of a record per entity
    // should not copy all of it first.
    std::vector<Block> current;
    bool removes = std::any_of(changes.begin(), changes.end(),
                               [](const Block& change) { return change.values.empty(); });
    if (removes ? !readBlocks(id, current) : arx::peek<AcDbObject>(id) == nullptr) return false;
    AcDbDatabase* database = id.database();
    db::ValueList list;
    for (const Block& change : changes) {
        if (change.app.empty()) return false;
        if (change.values.empty()) {
            // Nothing to remove when the entity does not carry it; the host would refuse
            // the name of an application it never registered.
            if (findBlock(current, change.app) == nullptr) continue;
        }
        if (!registerApp(database, change.app)) return false;
        list.push_back(db::Value::string(1001, change.app));
        list.insert(list.end(), change.values.begin(), change.values.end());
    }
    if (list.empty()) return true;
    AcDbObject* obj = nullptr;
    if (acdbOpenObject(obj, id, AcDb::kForWrite) != Acad::eOk) return false;
    resbuf* rb = acutValuesToRb(list);
    Acad::ErrorStatus es = obj->setXData(rb);
    acutRelRb(rb);
    obj->close();
    return es == Acad::eOk;
}

int Record::find(const std::wstring& key) const {
    for (std::size_t i = 0; i < fields.size(); ++i) {
        if (fields[i].first == key) return static_cast<int>(i);
    }
    return -1;
}

void Record::set(const std::wstring& key, const std::wstring& value) {
    int i = find(key);
    if (i >= 0) {
        fields[static_cast<std::size_t>(i)].second = value;
    } else {
        fields.emplace_back(key, value);
    }
}

const std::wstring* findField(std::span<const db::Value> values, std::wstring_view key) {
    const std::wstring* found = nullptr;
    std::size_t i = 0, n = values.size();
    if (i < n && isString(values[i], 1000)) ++i;
    if (i >= n || !isBrace(values[i], L"{")) return nullptr;
    ++i;
    while (i + 1 < n && isString(values[i], 1000) && isString(values[i + 1], 1000)) {
        if (found == nullptr && *values[i].text() == key) found = values[i + 1].text();
        i += 2;
    }
    if (i >= n || !isBrace(values[i], L"}") || i + 1 != n) return nullptr;
    return found;
}

bool findField(std::span<const PackedItem> items, std::string_view key, std::string_view& value) {
    auto isText = [&](std::size_t i) { return items[i].code == 1000; };
    auto isBraceAt = [&](std::size_t i, std::string_view brace) {
        return items[i].code == 1002 && items[i].text == brace;
    };
    bool found = false;
    std::string_view text;
    std::size_t i = 0, n = items.size();
    if (i < n && isText(i)) ++i;
    if (i >= n || !isBraceAt(i, "{")) return false;
    ++i;
    while (i + 1 < n && isText(i) && isText(i + 1)) {
        if (!found && items[i].text == key) {
            text = items[i + 1].text;
            found = true;
        }
        i += 2;
    }
    if (!found || i >= n || !isBraceAt(i, "}") || i + 1 != n) return false;
    value = text;
    return true;
}

bool parseRecord(std::span<const db::Value> values, Record& record) {
    Record parsed;
    std::size_t i = 0, n = values.size();
    if (i < n && isString(values[i], 1000)) parsed.head = textOf(values[i++]);
    if (i >= n || !isBrace(values[i], L"{")) return false;
    ++i;
    while (i + 1 < n && isString(values[i], 1000) && isString(values[i + 1], 1000)) {
        parsed.fields.emplace_back(textOf(values[i]), textOf(values[i + 1]));
        i += 2;
    }
    if (i >= n || !isBrace(values[i], L"}")) return false;
    if (i + 1 != n) return false;
    record = std::move(parsed);
    return true;
}

db::ValueList recordValues(const Record& record) {
    db::ValueList values;
    values.reserve(3 + 2 * record.fields.size());
    values.push_back(db::Value::string(1000, record.head));
    values.push_back(db::Value::string(1002, L"{"));
    for (const auto& [key, value] : record.fields) {
        values.push_back(db::Value::string(1000, key));
        values.push_back(db::Value::string(1000, value));
    }
    values.push_back(db::Value::string(1002, L"}"));
    return values;
}

bool headOf(std::span<const db::Value> values, std::wstring& head) {
    int depth = 0;
    for (const db::Value& v : values) {
        if (isBrace(v, L"{")) {
            ++depth;
        } else if (isBrace(v, L"}")) {
            --depth;
        } else if (depth == 0 && isString(v, 1000)) {
            head = textOf(v);
            return true;
        }
    }
    return false;
}

bool headOf(std::span<const PackedItem> items, std::string_view& head) {
    int depth = 0;
    for (const PackedItem& item : items) {
        if (item.code == 1002 && item.text == "{") {
            ++depth;
        } else if (item.code == 1002 && item.text == "}") {
            --depth;
        } else if (depth == 0 && item.code == 1000) {
            head = item.text;
            return true;
        }
    }
    return false;
}

bool isSimpleItem(std::span<const db::Value> values) {
    return values.size() == 1 && isString(values.front(), 1000);
}

}  // namespace kova::xdata
