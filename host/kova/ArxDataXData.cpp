#include "host/kova/ArxDataXData.h"

#include <algorithm>

#include "host/arx/peek.h"
#include "host/db/TextCodec.h"
#include "host/kova/XdataBlocks.h"

namespace ARX_DATA {

namespace {

using kova::xdata::Block;
using kova::xdata::Record;

std::wstring str(const ACHAR* text) {
    return text ? std::wstring(text) : std::wstring();
}

bool beginsWithFapp(const std::wstring& name) {
    return name.rfind(L"FAPP_", 0) == 0;
}

// Application names as the host compares them: ASCII letters folded, in UTF-8 as packed
// xdata holds them.
std::string foldedUtf8(const ACHAR* name) {
    return db::wideToUtf8(arx::foldCase(name));
}

bool sameApp(std::string_view packedName, const std::string& folded) {
    if (packedName.size() != folded.size()) return false;
    for (std::size_t i = 0; i < folded.size(); ++i) {
        char c = packedName[i];
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
        if (c != folded[i]) return false;
    }
    return true;
}

bool isEntCode(const std::wstring& app) {
    return arx::foldCase(app.c_str()) == L"FAPP_ENTCODE";
}

// The record a field write with the given application ("" = the existing record) goes
// to; "" when the entity has none.
std::wstring targetFor(const std::vector<Block>& blocks, const std::wstring& field,
                       const std::wstring& app) {
    if (!app.empty()) return app;
    Record record;
    for (const Block& b : blocks) {
        if (kova::xdata::parseRecord(b.values, record) && record.find(field) >= 0) return b.app;
    }
    for (const Block& b : blocks) {
        if (kova::xdata::parseRecord(b.values, record) && !isEntCode(b.app)) return b.app;
    }
    for (const Block& b : blocks) {
        if (kova::xdata::parseRecord(b.values, record)) return b.app;
    }
    for (const Block& b : blocks) {
        if (kova::xdata::isSimpleItem(b.values) && beginsWithFapp(b.app) && !isEntCode(b.app)) {
            return b.app;
        }
    }
    return {};
}

// The record held by the application's block, or a new empty one. False when the block is
// something else (a label/value list, say), which a record write must not destroy.
bool recordOf(const std::vector<Block>& blocks, const std::wstring& app, Record& record) {
    record = Record();
    const Block* b = kova::xdata::findBlock(blocks, app);
    if (b == nullptr) return true;
    if (kova::xdata::parseRecord(b->values, record)) return true;
    if (!kova::xdata::isSimpleItem(b->values)) return false;
    kova::xdata::headOf(b->values, record.head);
    return true;
}

void storeRecord(std::vector<Block>& blocks, const std::wstring& app, const Record& record) {
    Block* b = kova::xdata::findBlock(blocks, app);
    if (b == nullptr) {
        blocks.push_back({app, {}});
        b = &blocks.back();
    }
    b->values = kova::xdata::recordValues(record);
}

// Pending field writes of one call, applied to a copy of the entity's blocks and written
// at once.
class FieldWriter {
  public:
    explicit FieldWriter(AcDbObjectId id) : id_(id) { ok_ = kova::xdata::readBlocks(id, blocks_); }

    bool ok() const { return ok_; }
    const std::vector<Block>& blocks() const { return blocks_; }

    bool set(const std::wstring& field, const std::wstring& value, const std::wstring& app) {
        if (!ok_ || field.empty()) return ok_ = false;
        std::wstring target = targetFor(blocks_, field, app);
        Record record;
        if (target.empty() || !recordOf(blocks_, target, record)) return ok_ = false;
        record.set(field, value);
        storeRecord(blocks_, target, record);
        touch(target);
        return true;
    }

    bool setHead(const std::wstring& app, const std::wstring& head) {
        Record record;
        if (!ok_ || app.empty() || !recordOf(blocks_, app, record)) return ok_ = false;
        record.head = head;
        storeRecord(blocks_, app, record);
        touch(app);
        return true;
    }

    bool commit() const {
        if (!ok_) return false;
        std::vector<Block> changes;
        for (const std::wstring& app : touched_) {
            if (const Block* b = kova::xdata::findBlock(blocks_, app)) changes.push_back(*b);
        }
        return kova::xdata::writeBlocks(id_, changes);
    }

  private:
    void touch(const std::wstring& app) {
        std::wstring key = arx::foldCase(app.c_str());
        auto same = [&](const std::wstring& a) { return arx::foldCase(a.c_str()) == key; };
        if (std::none_of(touched_.begin(), touched_.end(), same)) touched_.push_back(app);
    }

    AcDbObjectId id_;
    bool ok_ = false;
    std::vector<Block> blocks_;
    std::vector<std::wstring> touched_;
};

int listFields(AcDbObjectId id, CStringArray& appNames, CStringArray& fields,
               CStringArray* values) {
    appNames.RemoveAll();
    fields.RemoveAll();
    if (values) values->RemoveAll();
    std::vector<Block> blocks;
    if (!kova::xdata::readBlocks(id, blocks)) return 0;
    int count = 0;
    for (const Block& b : blocks) {
        Record record;
        if (!kova::xdata::parseRecord(b.values, record)) continue;
        for (const auto& [key, value] : record.fields) {
            appNames.Add(CString(b.app));
            fields.Add(CString(key));
            if (values) values->Add(CString(value));
            ++count;
        }
    }
    return count;
}

}  // namespace

// ---------------------------------------------------------------- CFSimpleXData

int CFSimpleXData::GetAllAppNames(AcDbObjectId id, CStringArray& names) {
    names.RemoveAll();
    bool read = kova::xdata::forEachBlock(
        id,
        [&](const std::wstring& app, auto) {
            names.Add(CString(app));
            return true;
        },
        [&](std::string_view app, auto) {
            names.Add(CString(db::utf8ToWide(app)));
            return true;
        });
    return read ? static_cast<int>(names.GetSize()) : 0;
}

int CFSimpleXData::GetFrom(AcDbObjectId id, const ACHAR* appName, CString& value) {
    if (str(appName).empty()) return 0;
    std::wstring key = arx::foldCase(appName);
    std::string packedKey = foldedUtf8(appName);
    bool found = false;
    kova::xdata::forEachBlock(
        id,
        [&](const std::wstring& app, std::span<const db::Value> values) {
            if (arx::foldCase(app.c_str()) != key) return true;
            std::wstring head;
            kova::xdata::headOf(values, head);
            value = CString(head);
            found = true;
            return false;
        },
        [&](std::string_view app, std::span<const kova::xdata::PackedItem> items) {
            if (!sameApp(app, packedKey)) return true;
            std::string_view head;
            kova::xdata::headOf(items, head);
            value = CString(db::utf8ToWide(head));
            found = true;
            return false;
        });
    return found ? 1 : 0;
}

int CFSimpleXData::SetTo(AcDbObjectId id, const ACHAR* appName, const ACHAR* value) {
    std::wstring app = str(appName);
    std::vector<Block> blocks;
    if (app.empty() || !kova::xdata::readBlocks(id, blocks)) return 0;
    Block change{app, {}};
    Record record;
    const Block* b = kova::xdata::findBlock(blocks, app);
    if (b && kova::xdata::parseRecord(b->values, record)) {
        record.head = str(value);
        change.values = kova::xdata::recordValues(record);
    } else {
        change.values.push_back(db::Value::string(1000, str(value)));
    }
    return kova::xdata::writeBlocks(id, {change}) ? 1 : 0;
}

// ---------------------------------------------------------------- CFGisXData

int CFGisXData::GetFrom(AcDbObjectId id, const ACHAR* field, CString& value) {
    CString app;
    return GetFrom(id, field, value, app);
}

int CFGisXData::GetFrom(AcDbObjectId id, const ACHAR* field, CString& value, CString& appName) {
    std::wstring key = str(field);
    if (key.empty()) return 0;
    std::string packedKey = db::wideToUtf8(key);
    bool found = false;
    kova::xdata::forEachBlock(
        id,
        [&](const std::wstring& app, std::span<const db::Value> values) {
            const std::wstring* text = kova::xdata::findField(values, key);
            if (text == nullptr) return true;
            value = CString(*text);
            appName = CString(app);
            found = true;
            return false;
        },
        [&](std::string_view app, std::span<const kova::xdata::PackedItem> items) {
            std::string_view text;
            if (!kova::xdata::findField(items, packedKey, text)) return true;
            value = CString(db::utf8ToWide(text));
            appName = CString(db::utf8ToWide(app));
            found = true;
            return false;
        });
    return found ? 1 : 0;
}

int CFGisXData::SetTo(AcDbObjectId id, const ACHAR* field, const ACHAR* value,
                      const ACHAR* appName) {
    FieldWriter writer(id);
    if (!writer.ok()) return 0;
    std::wstring first = str(field), second = str(value), last = str(appName);
    bool creation = second.empty() && !last.empty() && !first.empty() &&
                    kova::xdata::findBlock(writer.blocks(), last) == nullptr &&
                    !beginsWithFapp(last) && !kova::xdata::isRegistered(id.database(), last);
    bool staged = creation ? writer.setHead(first, last) : writer.set(first, second, last);
    return staged && writer.commit() ? 1 : 0;
}

int CFGisXData::SetTo(AcDbObjectId id, const CStringArray& fields, const CStringArray& values) {
    if (fields.GetSize() != values.GetSize()) return 0;
    FieldWriter writer(id);
    for (INT_PTR i = 0; i < fields.GetSize(); ++i) {
        if (!writer.set(fields[i].wstr(), values[i].wstr(), L"")) return 0;
    }
    return writer.commit() ? 1 : 0;
}

int CFGisXData::SetTo(AcDbObjectId id, const CStringArray& appNames, const CStringArray& fields,
                      const CStringArray& values) {
    if (fields.GetSize() != values.GetSize() || appNames.GetSize() != fields.GetSize()) return 0;
    FieldWriter writer(id);
    for (INT_PTR i = 0; i < fields.GetSize(); ++i) {
        if (!writer.set(fields[i].wstr(), values[i].wstr(), appNames[i].wstr())) return 0;
    }
    return writer.commit() ? 1 : 0;
}

int CFGisXData::GetAllXDatas(AcDbObjectId id, CStringArray& appNames, CStringArray& fields) {
    return listFields(id, appNames, fields, nullptr);
}

int CFGisXData::GetAllXDatas(AcDbObjectId id, CStringArray& appNames, CStringArray& fields,
                             CStringArray& values) {
    return listFields(id, appNames, fields, &values);
}

// ---------------------------------------------------------------- ArxDbgAppXdata

ArxDbgAppXdata::ArxDbgAppXdata(const ACHAR* appName, AcDbDatabase* database)
    : app_(str(appName)), database_(database) {}

Acad::ErrorStatus ArxDbgAppXdata::getXdata(const AcDbObject* obj) {
    if (obj == nullptr) return Acad::eNullObjectPointer;
    if (!obj->isReadEnabled()) return Acad::eNotOpenForRead;
    values_.clear();
    std::wstring key = arx::foldCase(app_.c_str());
    bool inside = false;
    obj->withXdata([&](const db::ValueList& values) {
        for (const db::Value& v : values) {
            if (v.code == 1001) {
                inside = v.text() && arx::foldCase(v.text()->c_str()) == key;
            } else if (inside) {
                values_.push_back(v);
            }
        }
    });
    return Acad::eOk;
}

Acad::ErrorStatus ArxDbgAppXdata::setXdata(AcDbObject* obj) const {
    if (obj == nullptr) return Acad::eNullObjectPointer;
    if (app_.empty()) return Acad::eInvalidInput;
    if (!obj->isWriteEnabled()) return Acad::eNotOpenForWrite;
    AcDbDatabase* database = obj->database() ? obj->database() : database_;
    if (values_.empty()) {
        std::wstring key = arx::foldCase(app_.c_str());
        bool carried = std::any_of(
            obj->xdataValues().begin(), obj->xdataValues().end(), [&](const db::Value& v) {
                return v.code == 1001 && v.text() && arx::foldCase(v.text()->c_str()) == key;
            });
        if (!carried) return Acad::eOk;
    }
    if (database && !kova::xdata::registerApp(database, app_)) return Acad::eRegappIdNotFound;
    db::ValueList list{db::Value::string(1001, app_)};
    list.insert(list.end(), values_.begin(), values_.end());
    resbuf* rb = acutValuesToRb(list);
    Acad::ErrorStatus es = obj->setXData(rb);
    acutRelRb(rb);
    return es;
}

resbuf* ArxDbgAppXdata::allocResbufChain() const {
    return values_.empty() ? nullptr : acutValuesToRb(values_);
}

Acad::ErrorStatus ArxDbgAppXdata::setResbufChain(const resbuf* list) {
    if (list && list->restype == 1001) list = list->rbnext;
    db::ValueList values;
    if (!acutRbToValues(list, values)) return Acad::eInvalidResBuf;
    values_ = std::move(values);
    return Acad::eOk;
}

}  // namespace ARX_DATA
