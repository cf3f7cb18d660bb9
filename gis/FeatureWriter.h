#pragma once
// Features handed to a GDAL layer on a thread of its own, so that the next records are
// read from the drawing while the format (SQLite for a GeoPackage) writes the last ones.
// Only the writer's thread touches the layer between construction and finish().
#include <ogrsf_frmts.h>

#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "gis/GpkgSpatialIndex.h"

namespace gis {

class FeatureWriter {
  public:
    // With envelopes, the id and bounds of each written feature with a geometry are kept
    // for a spatial index built afterwards.
    explicit FeatureWriter(OGRLayer& layer, bool envelopes = false);
    FeatureWriter(const FeatureWriter&) = delete;
    FeatureWriter& operator=(const FeatureWriter&) = delete;
    ~FeatureWriter();

    // Queues one feature; false once a write has failed (later features are dropped).
    bool put(std::unique_ptr<OGRFeature> feature);
    // Waits for every queued feature; false with GDAL's message when one failed.
    bool finish(std::string& error);
    long long written() const { return written_; }
    // After finish(): the envelopes kept, in the order written.
    std::vector<IndexEntry> takeEnvelopes() { return std::move(envelopes_); }

  private:
    using Batch = std::vector<std::unique_ptr<OGRFeature>>;
    void run();
    void hand(bool last);
    void keepEnvelope(const OGRFeature& feature);

    OGRLayer& layer_;
    Batch filling_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<Batch> queue_;
    bool keepEnvelopes_ = false;
    std::vector<IndexEntry> envelopes_;
    bool closed_ = false, failed_ = false;
    std::string error_;
    long long written_ = 0;
    std::thread thread_;
};

}  // namespace gis
