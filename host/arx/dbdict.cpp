#include "host/arx/dbdict.h"

#include <string_view>

#include "host/arx/peek.h"

ACRX_DEFINE_MEMBERS(AcDbDictionary, AcDbObject, L"DICTIONARY")

namespace {

wchar_t foldedChar(wchar_t c) {
    return c >= L'a' && c <= L'z' ? static_cast<wchar_t>(c - L'a' + L'A') : c;
}

// The comparison of arx::foldCase, without making the folded copies: a lookup walks every
// entry, and drawings keep dictionaries of hundreds of keys.
bool sameKey(const std::wstring& entry, std::wstring_view key) {
    if (entry.size() != key.size()) return false;
    for (std::size_t i = 0; i < key.size(); ++i) {
        if (foldedChar(entry[i]) != foldedChar(key[i])) return false;
    }
    return true;
}

}  // namespace

int AcDbDictionary::indexOf(const ACHAR* key) const {
    std::wstring_view wanted(key ? key : L"");
    for (std::size_t i = 0; i < entries_.size(); ++i) {
        if (sameKey(entries_[i].first, wanted)) return static_cast<int>(i);
    }
    return -1;
}

Acad::ErrorStatus AcDbDictionary::getAt(const ACHAR* key, AcDbObjectId& id) const {
    if (key == nullptr) return Acad::eInvalidKey;
    int i = indexOf(key);
    if (i < 0) return Acad::eKeyNotFound;
    const AcDbObjectId& found = entries_[static_cast<std::size_t>(i)].second;
    if (found.isErased()) return Acad::eKeyNotFound;
    id = found;
    return Acad::eOk;
}

Acad::ErrorStatus AcDbDictionary::getAt(const ACHAR* key, AcDbObject*& obj,
                                        AcDb::OpenMode mode) const {
    obj = nullptr;
    AcDbObjectId id;
    Acad::ErrorStatus es = getAt(key, id);
    if (es != Acad::eOk) return es;
    return acdbOpenObject(obj, id, mode);
}

bool AcDbDictionary::has(const ACHAR* key) const {
    AcDbObjectId id;
    return getAt(key, id) == Acad::eOk;
}

bool AcDbDictionary::has(AcDbObjectId id) const {
    for (const auto& entry : entries_) {
        if (entry.second == id && !id.isErased()) return true;
    }
    return false;
}

Acad::ErrorStatus AcDbDictionary::nameAt(AcDbObjectId id, std::wstring& key) const {
    for (const auto& entry : entries_) {
        if (entry.second == id) {
            key = entry.first;
            return Acad::eOk;
        }
    }
    return Acad::eKeyNotFound;
}

Acad::ErrorStatus AcDbDictionary::setAt(const ACHAR* key, AcDbObject* obj, AcDbObjectId& id) {
    if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
    if (key == nullptr || *key == 0) return Acad::eInvalidKey;
    if (obj == nullptr) return Acad::eNullObjectPointer;
    if (!obj->isDatabaseResident()) {
        if (database() == nullptr) return Acad::eNoDatabase;
        Acad::ErrorStatus es = database()->addAcDbObject(id, obj);
        if (es != Acad::eOk) return es;
    } else if (obj->database() != database()) {
        return Acad::eWrongDatabase;
    }
    id = obj->objectId();
    obj->setOwnerId(objectId());
    int i = indexOf(key);
    if (i >= 0) {
        AcDbObjectId old = entries_[static_cast<std::size_t>(i)].second;
        entries_[static_cast<std::size_t>(i)].second = id;
        // The replaced object belonged to this dictionary and goes with its entry.
        if (old != id && !old.isErased()) {
            AcDbObject* previous = nullptr;
            if (acdbOpenObject(previous, old, AcDb::kForWrite) == Acad::eOk) {
                previous->erase();
                previous->close();
            }
        }
    } else {
        entries_.emplace_back(key, id);
    }
    return Acad::eOk;
}

Acad::ErrorStatus AcDbDictionary::remove(const ACHAR* key) {
    AcDbObjectId id;
    return remove(key, id);
}

Acad::ErrorStatus AcDbDictionary::remove(const ACHAR* key, AcDbObjectId& id) {
    if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
    if (key == nullptr) return Acad::eInvalidKey;
    int i = indexOf(key);
    if (i < 0) return Acad::eKeyNotFound;
    id = entries_[static_cast<std::size_t>(i)].second;
    entries_.erase(entries_.begin() + i);
    return Acad::eOk;
}

Acad::ErrorStatus AcDbDictionary::remove(AcDbObjectId id) {
    if (!isWriteEnabled()) return Acad::eNotOpenForWrite;
    for (auto it = entries_.begin(); it != entries_.end(); ++it) {
        if (it->second == id) {
            entries_.erase(it);
            return Acad::eOk;
        }
    }
    return Acad::eKeyNotFound;
}

bool AcDbDictionary::setName(const ACHAR* oldKey, const ACHAR* newKey) {
    if (!isWriteEnabled() || oldKey == nullptr || newKey == nullptr || *newKey == 0) return false;
    int i = indexOf(oldKey);
    int clash = indexOf(newKey);
    if (i < 0 || (clash >= 0 && clash != i)) return false;
    entries_[static_cast<std::size_t>(i)].first = newKey;
    return true;
}

AcDbDictionaryIterator* AcDbDictionary::newIterator() const {
    std::vector<std::pair<std::wstring, AcDbObjectId>> live;
    for (const auto& entry : entries_) {
        if (!entry.second.isErased()) live.push_back(entry);
    }
    return new AcDbDictionaryIterator(std::move(live));
}

Acad::ErrorStatus AcDbDictionaryIterator::getObject(AcDbObject*& obj, AcDb::OpenMode mode) const {
    obj = nullptr;
    if (done()) return Acad::eIteratorDone;
    return acdbOpenObject(obj, entries_[index_].second, mode);
}
