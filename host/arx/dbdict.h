#pragma once
// Dictionaries: named entries that own other objects. Keys are compared without
// regard to ASCII case and keep the order in which they were added.
#include <string>
#include <utility>
#include <vector>

#include "host/arx/dbmain.h"
#include "kplan/Export.h"

class AcDbDictionaryIterator;

class KPLAN_API AcDbDictionary : public AcDbObject {
  public:
    ACRX_DECLARE_MEMBERS(AcDbDictionary)

    Acad::ErrorStatus getAt(const ACHAR* key, AcDbObjectId& id) const;
    Acad::ErrorStatus getAt(const ACHAR* key, AcDbObject*& obj, AcDb::OpenMode mode) const;
    template <typename T>
    Acad::ErrorStatus getAt(const ACHAR* key, T*& obj, AcDb::OpenMode mode) const {
        obj = nullptr;
        AcDbObjectId id;
        Acad::ErrorStatus es = getAt(key, id);
        if (es != Acad::eOk) return es;
        return acdbOpenObject(obj, id, mode);
    }
    bool has(const ACHAR* key) const;
    bool has(AcDbObjectId id) const;
    Acad::ErrorStatus nameAt(AcDbObjectId id, std::wstring& key) const;
    Adesk::UInt32 numEntries() const { return static_cast<Adesk::UInt32>(entries_.size()); }

    // Stores an object under a key, replacing (and erasing) what was there. A
    // non-resident object is added to the database and stays open for write.
    Acad::ErrorStatus setAt(const ACHAR* key, AcDbObject* obj, AcDbObjectId& id);
    // Takes the entry out; the object itself is not erased.
    Acad::ErrorStatus remove(const ACHAR* key);
    Acad::ErrorStatus remove(const ACHAR* key, AcDbObjectId& id);
    Acad::ErrorStatus remove(AcDbObjectId id);
    bool setName(const ACHAR* oldKey, const ACHAR* newKey);

    AcDbDictionaryIterator* newIterator() const;
    const std::vector<std::pair<std::wstring, AcDbObjectId>>& entries() const { return entries_; }
    // For loaders: an entry whose object is already resident, unchecked.
    void restoreEntry(std::wstring key, AcDbObjectId id) {
        entries_.emplace_back(std::move(key), id);
    }
    bool isHardOwner() const { return hardOwner_; }
    void setHardOwner(bool hard) { hardOwner_ = hard; }

  private:
    int indexOf(const ACHAR* key) const;
    std::vector<std::pair<std::wstring, AcDbObjectId>> entries_;
    bool hardOwner_ = false;
};

class KPLAN_API AcDbDictionaryIterator {
  public:
    explicit AcDbDictionaryIterator(std::vector<std::pair<std::wstring, AcDbObjectId>> entries)
        : entries_(std::move(entries)) {}
    bool done() const { return index_ >= entries_.size(); }
    bool next() {
        if (!done()) ++index_;
        return !done();
    }
    const ACHAR* name() const { return done() ? nullptr : entries_[index_].first.c_str(); }
    AcDbObjectId objectId() const { return done() ? AcDbObjectId() : entries_[index_].second; }
    Acad::ErrorStatus getObject(AcDbObject*& obj, AcDb::OpenMode mode) const;

  private:
    std::vector<std::pair<std::wstring, AcDbObjectId>> entries_;
    std::size_t index_ = 0;
};
