#include "host/arx/acdocman.h"

#include <algorithm>

#include "host/arx/dbapserv.h"

AcApDocument::AcApDocument(std::unique_ptr<AcDbDatabase> database, const ACHAR* fileName)
    : database_(std::move(database)), fileName_(fileName ? fileName : L"") {}

namespace {

// The current document of a thread inside an AcApThreadDocuments scope.
struct ThreadCurrent {
    bool own = false;
    AcApDocument* document = nullptr;
};
thread_local ThreadCurrent threadCurrent;

}  // namespace

AcApThreadDocuments::AcApThreadDocuments() : outer_(!threadCurrent.own) {
    threadCurrent.own = true;
}

AcApThreadDocuments::~AcApThreadDocuments() {
    if (outer_) threadCurrent = {};
}

AcApDocManager* acDocManagerPtr() {
    static AcApDocManager manager;
    return &manager;
}

AcApDocument* AcApDocManager::curDocument() const {
    if (threadCurrent.own) return threadCurrent.document;
    std::lock_guard<std::mutex> lock(mutex_);
    return current_;
}

int AcApDocManager::documentCount() const {
    std::lock_guard<std::mutex> lock(mutex_);
    return static_cast<int>(documents_.size());
}

AcApDocument* AcApDocManager::document(int index) const {
    std::lock_guard<std::mutex> lock(mutex_);
    if (index < 0 || index >= static_cast<int>(documents_.size())) return nullptr;
    return documents_[static_cast<std::size_t>(index)].get();
}

AcApDocument* AcApDocManager::appendDocument(std::unique_ptr<AcDbDatabase> database,
                                             const ACHAR* fileName) {
    if (!database) database = std::make_unique<AcDbDatabase>();
    auto document = std::make_unique<AcApDocument>(std::move(database), fileName);
    AcApDocument* appended = document.get();
    std::lock_guard<std::mutex> lock(mutex_);
    documents_.push_back(std::move(document));
    (threadCurrent.own ? threadCurrent.document : current_) = appended;
    return appended;
}

Acad::ErrorStatus AcApDocManager::setCurDocument(AcApDocument* document) {
    std::lock_guard<std::mutex> lock(mutex_);
    auto it = std::find_if(documents_.begin(), documents_.end(),
                           [document](const auto& d) { return d.get() == document; });
    if (it == documents_.end()) return Acad::eNoDocument;
    (threadCurrent.own ? threadCurrent.document : current_) = document;
    return Acad::eOk;
}

Acad::ErrorStatus AcApDocManager::closeDocument(AcApDocument* document) {
    std::unique_ptr<AcApDocument> closing;
    {
        std::lock_guard<std::mutex> lock(mutex_);
        auto it = std::find_if(documents_.begin(), documents_.end(),
                               [document](const auto& d) { return d.get() == document; });
        if (it == documents_.end()) return Acad::eNoDocument;
        AcDbHostApplicationServices* services = acdbHostApplicationServices();
        if (services->settingOf(document->database())) services->setWorkingDatabase(nullptr);
        closing = std::move(*it);
        documents_.erase(it);
        if (threadCurrent.own && threadCurrent.document == document)
            threadCurrent.document = nullptr;
        if (current_ == document) current_ = documents_.empty() ? nullptr : documents_.back().get();
    }
    // A large drawing takes a while to free; the other threads go on meanwhile.
    closing.reset();
    return Acad::eOk;
}

void AcApDocManager::closeAll() {
    acdbHostApplicationServices()->setWorkingDatabase(nullptr);
    std::lock_guard<std::mutex> lock(mutex_);
    current_ = nullptr;
    threadCurrent.document = nullptr;
    while (!documents_.empty())
        documents_.pop_back();
}

AcApDocument* AcApDocManager::documentOf(const AcDbDatabase* database) const {
    std::lock_guard<std::mutex> lock(mutex_);
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

bool AcDbHostApplicationServices::settingOf(const AcDbDatabase* database) const {
    return working_.load() == database;
}

AcDbHostApplicationServices* acdbHostApplicationServices() {
    static AcDbHostApplicationServices services;
    return &services;
}

AcDbDatabase* AcDbHostApplicationServices::workingDatabase() const {
    if (AcDbDatabase* working = working_.load()) return working;
    AcApDocument* document = acDocManager->curDocument();
    return document ? document->database() : nullptr;
}
