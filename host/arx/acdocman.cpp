#include "host/arx/acdocman.h"

#include <algorithm>

#include "host/arx/dbapserv.h"

AcApDocument::AcApDocument(std::unique_ptr<AcDbDatabase> database, const ACHAR* fileName)
    : database_(std::move(database)), fileName_(fileName ? fileName : L"") {}

AcApDocManager* acDocManagerPtr() {
    static AcApDocManager manager;
    return &manager;
}

AcApDocument* AcApDocManager::document(int index) const {
    if (index < 0 || index >= documentCount()) return nullptr;
    return documents_[static_cast<std::size_t>(index)].get();
}

AcApDocument* AcApDocManager::appendDocument(std::unique_ptr<AcDbDatabase> database,
                                             const ACHAR* fileName) {
    if (!database) database = std::make_unique<AcDbDatabase>();
    documents_.push_back(std::make_unique<AcApDocument>(std::move(database), fileName));
    current_ = documents_.back().get();
    return current_;
}

Acad::ErrorStatus AcApDocManager::setCurDocument(AcApDocument* document) {
    auto it = std::find_if(documents_.begin(), documents_.end(),
                           [document](const auto& d) { return d.get() == document; });
    if (it == documents_.end()) return Acad::eNoDocument;
    current_ = document;
    return Acad::eOk;
}

Acad::ErrorStatus AcApDocManager::closeDocument(AcApDocument* document) {
    auto it = std::find_if(documents_.begin(), documents_.end(),
                           [document](const auto& d) { return d.get() == document; });
    if (it == documents_.end()) return Acad::eNoDocument;
    AcDbHostApplicationServices* services = acdbHostApplicationServices();
    if (services->workingDatabase() == document->database()) services->setWorkingDatabase(nullptr);
    documents_.erase(it);
    if (current_ == document) current_ = documents_.empty() ? nullptr : documents_.back().get();
    return Acad::eOk;
}

void AcApDocManager::closeAll() {
    acdbHostApplicationServices()->setWorkingDatabase(nullptr);
    current_ = nullptr;
    while (!documents_.empty())
        documents_.pop_back();
}

AcApDocument* AcApDocManager::documentOf(const AcDbDatabase* database) const {
    for (const auto& d : documents_) {
        if (d->database() == database) return d.get();
    }
    return nullptr;
}

Acad::ErrorStatus AcApDocManager::lockDocument(AcApDocument* document) {
    if (document == nullptr) return Acad::eNoDocument;
    document->lock();
    return Acad::eOk;
}

Acad::ErrorStatus AcApDocManager::unlockDocument(AcApDocument* document) {
    if (document == nullptr) return Acad::eNoDocument;
    document->unlock();
    return Acad::eOk;
}

AcDbHostApplicationServices* acdbHostApplicationServices() {
    static AcDbHostApplicationServices services;
    return &services;
}

AcDbDatabase* AcDbHostApplicationServices::workingDatabase() const {
    if (working_ != nullptr) return working_;
    AcApDocument* document = acDocManager->curDocument();
    return document ? document->database() : nullptr;
}
