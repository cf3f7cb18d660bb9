#pragma once
// An entity's xdata seen as application blocks, and the GIS record layout inside one
// block. The xdata classes and the data helpers share this so that every writer lays a
// record out the same way:
//   1001 app, 1000 head, 1002 "{", (1000 key, 1000 value)..., 1002 "}"
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/arx/dbmain.h"
#include "host/db/Value.h"
#include "kplan/Export.h"

namespace kova::xdata {

struct KPLAN_API Block {
    std::wstring app;      // as stored
    db::ValueList values;  // what follows the 1001 item
};

// Every application block of the entity in stored order. False when the id is not a
// live object or does not open for read.
KPLAN_API bool readBlocks(AcDbObjectId id, std::vector<Block>& blocks);

// Shows each application block in stored order, in place while the entity is open for
// read, until use returns false; nothing is copied. False as readBlocks.
KPLAN_API bool forEachBlock(
    AcDbObjectId id,
    const std::function<bool(const std::wstring& app, std::span<const db::Value> values)>& use);

// One item of xdata still in the loader's compact form: its code and its text in UTF-8.
struct KPLAN_API PackedItem {
    int code = 0;
    std::string_view text;
};
using PackedUse = std::function<bool(std::string_view app, std::span<const PackedItem> items)>;

// As above, but xdata still in the loader's compact form goes to packedUse instead, shown
// in place on the packed bytes (names and texts in UTF-8): a reader of one field then
// decodes that field and nothing else. With packedUse null, use sees every form.
KPLAN_API bool forEachBlock(
    AcDbObjectId id,
    const std::function<bool(const std::wstring& app, std::span<const db::Value> values)>& use,
    const PackedUse& packedUse);

// The block of an application, names compared ignoring ASCII case as the host does.
KPLAN_API const Block* findBlock(const std::vector<Block>& blocks, const std::wstring& app);
KPLAN_API Block* findBlock(std::vector<Block>& blocks, const std::wstring& app);

KPLAN_API bool isRegistered(AcDbDatabase* database, const std::wstring& app);
// Adds the name to the drawing's APPID table when it is not there yet.
KPLAN_API bool registerApp(AcDbDatabase* database, const std::wstring& app);

// Gives each listed application the block's values as its whole data; empty values
// remove the application. Names that carry data are registered first. All changes go in
// one write, so either every block changes or none does (the 16 KiB limit, for one).
KPLAN_API bool writeBlocks(AcDbObjectId id, const std::vector<Block>& changes);

struct KPLAN_API Record {
    std::wstring head;
    std::vector<std::pair<std::wstring, std::wstring>> fields;

    // Index of the field, -1 when absent.
    int find(const std::wstring& key) const;
    // Replaces the value in place, or appends the field, so that the order stays the order
    // of first writing.
    void set(const std::wstring& key, const std::wstring& value);
};

// True when the values are a GIS record (head optional, brace group required, pairs of
// strings inside, nothing after).
KPLAN_API bool parseRecord(std::span<const db::Value> values, Record& record);
// The value of the first field with the key when the values are a GIS record, as
// parseRecord and Record::find would find it; null otherwise. Valid while values are.
KPLAN_API const std::wstring* findField(std::span<const db::Value> values, std::wstring_view key);
// The same on packed items: the value's UTF-8 text, found as findField finds it.
KPLAN_API bool findField(std::span<const PackedItem> items, std::string_view key,
                         std::string_view& value);
KPLAN_API db::ValueList recordValues(const Record& record);

// The first group-1000 string outside any brace group: the value of a simple item and
// the head of a GIS record.
KPLAN_API bool headOf(std::span<const db::Value> values, std::wstring& head);
KPLAN_API bool headOf(std::span<const PackedItem> items, std::string_view& head);

// A block that is one string and nothing else: what a simple item looks like.
KPLAN_API bool isSimpleItem(std::span<const db::Value> values);

}  // namespace kova::xdata
