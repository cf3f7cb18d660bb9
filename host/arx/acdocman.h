#pragma once
// Open drawings and the current one. Several drawings can be open; commands work on
// the current document, whose database is the working database. A batch may work on
// several drawings at once, one per thread: within an AcApThreadDocuments scope the
// thread has a current document of its own.
#include <memory>
#include <mutex>
#include <vector>

#include "host/arx/dbmain.h"
#include "kplan/Export.h"

class KPLAN_API AcApDocument {
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

class KPLAN_API AcApDocManager {
  public:
    AcApDocument* curDocument() const;
    AcApDocument* mdiActiveDocument() const { return curDocument(); }
    int documentCount() const;
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
    // Opening and closing happen on the threads of a batch at once.
    mutable std::mutex mutex_;
    std::vector<std::unique_ptr<AcApDocument>> documents_;
    AcApDocument* current_ = nullptr;
};

// While it lives, the documents this thread appends or makes current are current for this
// thread alone: curDocument() and the working database on it are those, and the other
// threads' current documents do not change. Closing the thread's current document leaves
// it with none. For a thread that works on one drawing after another while other threads
// do the same; the drawings themselves are not shared.
class KPLAN_API AcApThreadDocuments {
  public:
    AcApThreadDocuments();
    ~AcApThreadDocuments();
    AcApThreadDocuments(const AcApThreadDocuments&) = delete;
    AcApThreadDocuments& operator=(const AcApThreadDocuments&) = delete;

  private:
    bool outer_;
};

KPLAN_API AcApDocManager* acDocManagerPtr();
#define acDocManager acDocManagerPtr()
