#include "host/db/Progress.h"

namespace db {

namespace {

class SilentProgress : public ProgressSink {
  public:
    void start(std::wstring_view, long) override {}
    void step(long) override {}
    void end() override {}
};

std::shared_ptr<ProgressSink>& current() {
    static std::shared_ptr<ProgressSink> sink = std::make_shared<SilentProgress>();
    return sink;
}

}  // namespace

ProgressSink& progressSink() {
    return *current();
}

std::shared_ptr<ProgressSink> setProgressSink(std::shared_ptr<ProgressSink> sink) {
    std::shared_ptr<ProgressSink> previous = current();
    current() = sink ? std::move(sink) : std::make_shared<SilentProgress>();
    return previous;
}

}  // namespace db
