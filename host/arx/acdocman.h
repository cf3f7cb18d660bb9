#pragma once
// Open drawings and the current one. Several drawings can be open; commands work on
// the current document, whose database is the working database.
#include <memory>
#include <vector>

#include "host/arx/dbmain.h"

class AcApDocument {
  public:
    explicit AcApDocument(std::unique_ptr<AcDbDatabase> database, const ACHAR* fileName = L"");
    AcDbDatabase* database() const { return database_.get(); }
    const ACHAR* fileName() const { return fileName_.c_str(); }
    void setFileName(const ACHAR* fileName) { fileName_ = fileName ? fileName : L""; }
    // A document lock of the host; the portable host runs one command at a time, so
    // locking only counts.
    int lockCount() const { return locks_; }
    void lock() { ++locks_; }
    void unlock() {
        if (locks_ > 0) --locks_;
    }

  private:
    std::unique_ptr<AcDbDatabase> database_;
    std::wstring fileName_;
    int locks_ = 0;
};

class AcApDocManager {
  public:
    AcApDocument* curDocument() const { return current_; }
    AcApDocument* mdiActiveDocument() const { return current_; }
    int documentCount() const { return static_cast<int>(documents_.size()); }
    AcApDocument* document(int index) const;

    // Opens a document on a drawing (a new default drawing when null) and makes it
    // current.
    AcApDocument* appendDocument(std::unique_ptr<AcDbDatabase> database = nullptr,
                                 const ACHAR* fileName = L"");
    Acad::ErrorStatus setCurDocument(AcApDocument* document);
    Acad::ErrorStatus activateDocument(AcApDocument* document) { return setCurDocument(document); }
    // Closes a document and frees its drawing; the last appended other one becomes
    // current.
    Acad::ErrorStatus closeDocument(AcApDocument* document);
    void closeAll();
    AcApDocument* documentOf(const AcDbDatabase* database) const;

    Acad::ErrorStatus lockDocument(AcApDocument* document);
    Acad::ErrorStatus unlockDocument(AcApDocument* document);

  private:
    std::vector<std::unique_ptr<AcApDocument>> documents_;
    AcApDocument* current_ = nullptr;
};

AcApDocManager* acDocManagerPtr();
#define acDocManager acDocManagerPtr()
