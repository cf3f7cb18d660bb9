#include "host/kova/KovaStatusBar.h"

#include <algorithm>
#include <string_view>

#include "host/db/Progress.h"

namespace KovaCad {

CStatusBarControl::~CStatusBarControl() {
    end();
}

void CStatusBarControl::start(const ACHAR* message, long total) {
    end();
    total_ = std::max(total, 0L);
    position_ = 0;
    running_ = true;
    db::progressSink().start(message ? std::wstring_view(message) : std::wstring_view(), total_);
}

void CStatusBarControl::step(long count) {
    if (!running_ || count <= 0) return;
    long next = std::min(position_ + count, total_);
    if (next == position_) return;
    position_ = next;
    db::progressSink().step(position_);
}

void CStatusBarControl::end() {
    if (!running_) return;
    running_ = false;
    db::progressSink().end();
}

}  // namespace KovaCad
