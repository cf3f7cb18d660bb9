#include "gis/FeatureWriter.h"

#include <cpl_error.h>

namespace gis {

namespace {

constexpr std::size_t kBatch = 256;  // features per hand-over
constexpr std::size_t kQueued = 16;  // batches waiting at most: memory stays bounded

}  // namespace

FeatureWriter::FeatureWriter(OGRLayer& layer, bool envelopes)
    : layer_(layer), keepEnvelopes_(envelopes) {
    filling_.reserve(kBatch);
    thread_ = std::thread([this] { run(); });
}

FeatureWriter::~FeatureWriter() {
    std::string ignored;
    finish(ignored);
}

void FeatureWriter::run() {
    // GDAL's error handlers and last message are per thread.
    CPLPushErrorHandler(CPLQuietErrorHandler);
    for (;;) {
        Batch batch;
        {
            std::unique_lock<std::mutex> lock(mutex_);
            changed_.wait(lock, [this] { return !queue_.empty() || closed_; });
            if (queue_.empty()) break;
            batch = std::move(queue_.front());
            queue_.pop_front();
        }
        changed_.notify_all();
        for (auto& feature : batch) {
            if (failed_) break;
            if (layer_.CreateFeature(feature.get()) != OGRERR_NONE) {
                std::lock_guard<std::mutex> lock(mutex_);
                failed_ = true;
                error_ = CPLGetLastErrorMsg();
            } else {
                ++written_;
                keepEnvelope(*feature);
            }
        }
    }
    CPLPopErrorHandler();
}

void FeatureWriter::keepEnvelope(const OGRFeature& feature) {
    const OGRGeometry* geometry = feature.GetGeometryRef();
    if (!keepEnvelopes_ || geometry == nullptr || geometry->IsEmpty()) return;
    OGREnvelope box;
    geometry->getEnvelope(&box);
    envelopes_.push_back({feature.GetFID(), box.MinX, box.MaxX, box.MinY, box.MaxY});
}

void FeatureWriter::hand(bool last) {
    std::unique_lock<std::mutex> lock(mutex_);
    changed_.wait(lock, [this] { return queue_.size() < kQueued || failed_; });
    if (!filling_.empty() && !failed_) queue_.push_back(std::move(filling_));
    filling_ = Batch();
    filling_.reserve(kBatch);
    if (last) closed_ = true;
    lock.unlock();
    changed_.notify_all();
}

bool FeatureWriter::put(std::unique_ptr<OGRFeature> feature) {
    filling_.push_back(std::move(feature));
    if (filling_.size() >= kBatch) hand(false);
    std::lock_guard<std::mutex> lock(mutex_);
    return !failed_;
}

bool FeatureWriter::finish(std::string& error) {
    if (thread_.joinable()) {
        hand(true);
        thread_.join();
    }
    if (failed_) error = error_.empty() ? "the format refused a feature" : error_;
    return !failed_;
}

}  // namespace gis
