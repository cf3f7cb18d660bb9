#include "cli/TerminalProgress.h"

#include <unistd.h>

#include <algorithm>
#include <memory>

#include "host/db/TextCodec.h"

namespace kplan::cli {

namespace {

constexpr int kWidth = 30;
constexpr auto kInterval = std::chrono::milliseconds(100);

}  // namespace

void TerminalProgress::start(std::wstring_view message, long total) {
    if (shown_) end();
    message_ = db::wideToUtf8(std::wstring(message));
    // Messages meant for a CAD's command line start with a line break.
    message_.erase(0, message_.find_first_not_of("\r\n"));
    total_ = std::max(total, 0L);
    position_ = 0;
    lastPercent_ = -1;
    shown_ = true;
    draw(true);
}

void TerminalProgress::step(long position) {
    if (!shown_) return;
    position_ = std::clamp(position, 0L, total_);
    draw(false);
}

void TerminalProgress::end() {
    if (!shown_) return;
    shown_ = false;
    std::fputs("\r\033[K", out_);
    std::fflush(out_);
}

void TerminalProgress::draw(bool force) {
    int percent = total_ > 0 ? static_cast<int>(position_ * 100 / total_) : 0;
    auto now = std::chrono::steady_clock::now();
    if (!force && (percent == lastPercent_ || now - lastDraw_ < kInterval)) return;
    lastPercent_ = percent;
    lastDraw_ = now;
    int filled = percent * kWidth / 100;
    std::string bar(static_cast<std::size_t>(filled), '#');
    bar.append(static_cast<std::size_t>(kWidth - filled), '-');
    std::fprintf(out_, "\r\033[K%s [%s] %3d%%", message_.c_str(), bar.c_str(), percent);
    std::fflush(out_);
}

void TerminalProgress::installOnStderr() {
    if (::isatty(STDERR_FILENO)) db::setProgressSink(std::make_shared<TerminalProgress>(stderr));
}

}  // namespace kplan::cli
