#include "host/kova/KovaDat.h"

#include <algorithm>

#include "host/arx/dbapserv.h"
#include "host/arx/dbdict.h"
#include "host/arx/dbxrecrd.h"
#include "host/arx/peek.h"
#include "host/kova/XdataBlocks.h"

namespace kova::dat {

namespace {

bool empty(const ACHAR* text) {
    return text == nullptr || *text == 0;
}

bool live(AcDbObjectId id) {
    return !id.isNull() && !id.isErased();
}

AcDbDatabase* orWorking(AcDbDatabase* database) {
    return database ? database : acdbHostApplicationServices()->workingDatabase();
}

// The dictionary under name in a parent dictionary; created when asked to. Null when
// missing or when the entry is not a dictionary.
AcDbObjectId childDictionary(AcDbObjectId parentId, const ACHAR* name, bool create) {
    AcDbDictionary* parent = nullptr;
    if (acdbOpenObject(parent, parentId, AcDb::kForRead) != Acad::eOk) return {};
    AcDbObjectId id;
    bool found = parent->getAt(name, id) == Acad::eOk;
    parent->close();
    if (found) return AcDbDictionary::cast(arx::peekObject(id)) ? id : AcDbObjectId();
    if (!create || acdbOpenObject(parent, parentId, AcDb::kForWrite) != Acad::eOk) return {};
    auto* child = new AcDbDictionary();
    if (parent->setAt(name, child, id) == Acad::eOk) {
        child->close();
    } else {
        delete child;
        id = {};
    }
    parent->close();
    return id;
}

AcDbObjectId extensionDictionary(AcDbObjectId id, bool create) {
    if (!live(id)) return {};
    AcDbObject* obj = nullptr;
    if (acdbOpenObject(obj, id, AcDb::kForRead) != Acad::eOk) return {};
    AcDbObjectId ext = obj->extensionDictionary();
    obj->close();
    if (live(ext)) return ext;
    if (!create || acdbOpenObject(obj, id, AcDb::kForWrite) != Acad::eOk) return {};
    if (obj->createExtensionDictionary() == Acad::eOk) ext = obj->extensionDictionary();
    obj->close();
    return live(ext) ? ext : AcDbObjectId();
}

// Writes the list into the xrecord under key, made when missing.
int storeList(AcDbObjectId dictId, const ACHAR* key, const resbuf* data) {
    if (dictId.isNull() || empty(key) || data == nullptr) return 0;
    AcDbDictionary* dict = nullptr;
    if (acdbOpenObject(dict, dictId, AcDb::kForWrite) != Acad::eOk) return 0;
    AcDbXrecord* xrec = nullptr;
    AcDbObjectId xrecId;
    if (dict->getAt(key, xrecId) == Acad::eOk) {
        acdbOpenObject(xrec, xrecId, AcDb::kForWrite);
    } else {
        xrec = new AcDbXrecord();
        if (dict->setAt(key, xrec, xrecId) != Acad::eOk) {
            delete xrec;
            xrec = nullptr;
        }
    }
    dict->close();
    if (xrec == nullptr) return 0;
    Acad::ErrorStatus es = xrec->setFromRbChain(*data);
    xrec->close();
    return es == Acad::eOk ? 1 : 0;
}

int readList(AcDbObjectId dictId, const ACHAR* key, resbuf*& data) {
    data = nullptr;
    if (dictId.isNull() || empty(key)) return 0;
    AcDbDictionary* dict = nullptr;
    if (acdbOpenObject(dict, dictId, AcDb::kForRead) != Acad::eOk) return 0;
    AcDbXrecord* xrec = nullptr;
    Acad::ErrorStatus es = dict->getAt(key, xrec, AcDb::kForRead);
    dict->close();
    if (es != Acad::eOk) return 0;
    es = xrec->rbChain(&data);
    xrec->close();
    return es == Acad::eOk ? 1 : 0;
}

bool isSoftPointer(int code) {
    return code >= 330 && code <= 339;
}

// The string items of a label / value list.
std::vector<resbuf*> stringItems(const resbuf* list) {
    std::vector<resbuf*> items;
    for (const resbuf* rb = list; rb != nullptr; rb = rb->rbnext) {
        if (rb->restype == 1001 || rb->restype == 1002) continue;
        if (acutValueKindOfType(rb->restype) != db::ValueKind::String) continue;
        items.push_back(const_cast<resbuf*>(rb));
    }
    return items;
}

// The index of the label among the string items (an even place), -1 when absent.
int labelIndex(const std::vector<resbuf*>& items, const ACHAR* label) {
    if (label == nullptr) return -1;
    for (std::size_t i = 0; i < items.size(); i += 2) {
        const ACHAR* text = items[i]->resval.rstring;
        if (text && std::wstring_view(text) == label) return static_cast<int>(i);
    }
    return -1;
}

int writeXdata(AcDbObjectId id, const ACHAR* appName, const resbuf* data, bool append) {
    if (empty(appName)) return 0;
    if (data && data->restype == 1001) data = data->rbnext;
    db::ValueList added;
    if (!acutRbToValues(data, added)) return 0;
    // A second application name would make the one write change two applications.
    for (const db::Value& v : added) {
        if (v.code == 1001) return 0;
    }
    xdata::Block change{appName, {}};
    if (append) {
        std::vector<xdata::Block> blocks;
        if (!xdata::readBlocks(id, blocks)) return 0;
        if (const xdata::Block* b = xdata::findBlock(blocks, appName)) change.values = b->values;
    }
    change.values.insert(change.values.end(), added.begin(), added.end());
    return xdata::writeBlocks(id, {change}) ? 1 : 0;
}

}  // namespace

int AddNamedObjDict(const ACHAR* dictName, const ACHAR* key, const resbuf* data,
                    AcDbDatabase* database) {
    database = orWorking(database);
    if (database == nullptr || empty(dictName) || empty(key) || data == nullptr) return 0;
    AcDbObjectId dictId = childDictionary(database->namedObjectsDictionaryId(), dictName, true);
    return storeList(dictId, key, data);
}

int ReadNamedObjDict(const ACHAR* dictName, const ACHAR* key, resbuf*& data,
                     AcDbDatabase* database) {
    data = nullptr;
    database = orWorking(database);
    if (database == nullptr || empty(dictName)) return 0;
    AcDbObjectId dictId = childDictionary(database->namedObjectsDictionaryId(), dictName, false);
    return readList(dictId, key, data);
}

int AddObjExtDict(AcDbObjectId id, const ACHAR* key, const resbuf* data) {
    if (empty(key) || data == nullptr) return 0;
    return storeList(extensionDictionary(id, true), key, data);
}

int ReadObjExtDict(AcDbObjectId id, const ACHAR* key, resbuf*& data) {
    data = nullptr;
    return readList(extensionDictionary(id, false), key, data);
}

int ReadObjXdata(AcDbObjectId id, const ACHAR* appName, resbuf*& data) {
    data = nullptr;
    if (!live(id) || empty(appName)) return 0;
    AcDbObject* obj = nullptr;
    if (acdbOpenObject(obj, id, AcDb::kForRead) != Acad::eOk) return 0;
    data = obj->xData(appName);
    obj->close();
    return data ? 1 : 0;
}

int AddObjXdata(AcDbObjectId id, const ACHAR* appName, const resbuf* data) {
    return writeXdata(id, appName, data, false);
}

int PasteObjXdata(AcDbObjectId id, const ACHAR* appName, const resbuf* data) {
    return writeXdata(id, appName, data, true);
}

int GetRbString(const resbuf* list, const ACHAR* label, CString& value) {
    std::vector<resbuf*> items = stringItems(list);
    int i = labelIndex(items, label);
    if (i < 0 || static_cast<std::size_t>(i) + 1 >= items.size()) return 0;
    value = CString(items[static_cast<std::size_t>(i) + 1]->resval.rstring);
    return 1;
}

int SetRbString(resbuf* list, const ACHAR* label, const ACHAR* value) {
    std::vector<resbuf*> items = stringItems(list);
    int i = labelIndex(items, label);
    if (i < 0) return 0;
    resbuf* labelItem = items[static_cast<std::size_t>(i)];
    if (static_cast<std::size_t>(i) + 1 < items.size()) {
        acutUpdString(value ? value : L"", items[static_cast<std::size_t>(i) + 1]->resval.rstring);
        return 1;
    }
    resbuf* added = acutNewRb(labelItem->restype);
    added->resval.rstring = acutNewString(value ? value : L"");
    added->rbnext = labelItem->rbnext;
    labelItem->rbnext = added;
    return 1;
}

int PasteSoftId(AcDbObjectId id, const ACHAR* linkName, AcDbObjectId other) {
    if (empty(linkName) || other.isNull()) return 0;
    AcDbObjectId ext = extensionDictionary(id, true);
    AcDbDictionary* dict = nullptr;
    if (ext.isNull() || acdbOpenObject(dict, ext, AcDb::kForRead) != Acad::eOk) return 0;
    AcDbObjectId xrecId;
    bool exists = dict->getAt(linkName, xrecId) == Acad::eOk;
    dict->close();
    db::ValueList values;
    if (exists) {
        AcDbXrecord* xrec = nullptr;
        if (acdbOpenObject(xrec, xrecId, AcDb::kForRead) != Acad::eOk) return 0;
        values = xrec->values();
        xrec->close();
        bool linked = std::any_of(values.begin(), values.end(), [&](const db::Value& v) {
            auto* stub = std::get_if<db::Stub*>(&v.data);
            return isSoftPointer(v.code) && stub && *stub == other.stub();
        });
        if (linked) return 1;
    }
    values.push_back(db::Value::reference(330, other.stub()));
    resbuf* list = acutValuesToRb(values);
    int result = storeList(ext, linkName, list);
    acutRelRb(list);
    return result;
}

int GetSoftIds(AcDbObjectId id, const ACHAR* linkName, AcDbObjectIdArray& ids) {
    ids.removeAll();
    AcDbObjectId ext = extensionDictionary(id, false);
    AcDbDictionary* dict = nullptr;
    if (ext.isNull() || empty(linkName) || acdbOpenObject(dict, ext, AcDb::kForRead) != Acad::eOk) {
        return 0;
    }
    AcDbXrecord* xrec = nullptr;
    Acad::ErrorStatus es = dict->getAt(linkName, xrec, AcDb::kForRead);
    dict->close();
    if (es != Acad::eOk) return 0;
    for (const db::Value& v : xrec->values()) {
        auto* stub = std::get_if<db::Stub*>(&v.data);
        if (isSoftPointer(v.code) && stub && *stub) ids.append(AcDbObjectId(*stub));
    }
    xrec->close();
    return ids.length();
}

int RemoveSoftIds(AcDbObjectId id, const ACHAR* linkName) {
    AcDbObjectId ext = extensionDictionary(id, false);
    AcDbDictionary* dict = nullptr;
    if (ext.isNull() || empty(linkName) ||
        acdbOpenObject(dict, ext, AcDb::kForWrite) != Acad::eOk) {
        return 0;
    }
    AcDbObjectId xrecId;
    Acad::ErrorStatus es = dict->remove(linkName, xrecId);
    dict->close();
    if (es != Acad::eOk) return 0;
    AcDbObject* xrec = nullptr;
    if (acdbOpenObject(xrec, xrecId, AcDb::kForWrite) == Acad::eOk) {
        xrec->erase();
        xrec->close();
    }
    return 1;
}

int qmGetIdFromDict(AcDbObjectId id, const ACHAR* linkName, AcDbObjectIdArray& ids) {
    return GetSoftIds(id, linkName, ids);
}

}  // namespace kova::dat
