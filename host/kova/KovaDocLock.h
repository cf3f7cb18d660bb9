#pragma once
// Locks the current document for the lifetime of the holder, as commands that change a
// drawing from outside the command context must.
#include "host/arx/acdocman.h"
#include "kplan/Export.h"

namespace kova {

class KPLAN_API CFDocLock {
  public:
    CFDocLock() : document_(acDocManager->curDocument()) {
        locked_ = document_ && acDocManager->lockDocument(document_) == Acad::eOk;
    }
    ~CFDocLock() {
        // The document may have been closed meanwhile; then there is nothing to unlock.
        if (!locked_) return;
        for (int i = 0; i < acDocManager->documentCount(); ++i) {
            if (acDocManager->document(i) == document_) {
                acDocManager->unlockDocument(document_);
                return;
            }
        }
    }
    CFDocLock(const CFDocLock&) = delete;
    CFDocLock& operator=(const CFDocLock&) = delete;

    bool isLocked() const { return locked_; }
    AcApDocument* document() const { return document_; }

  private:
    AcApDocument* document_;
    bool locked_ = false;
};

}  // namespace kova
