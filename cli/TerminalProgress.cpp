#include "cli/TerminalProgress.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "cli/Output.h"
#include "host/db/Console.h"
#include "host/db/TextCodec.h"

namespace kplan::cli {

namespace {

constexpr int kWidestBar = 30;
constexpr auto kInterval = std::chrono::milliseconds(100);

// The library's progress messages are written for a Chinese CAD user; the program speaks
// English, so the bar does too.
std::string englishLabel(std::string message) {
    struct Known {
        const char* library;
        const char* english;
    };
    static const Known known[] = {
        {"读取 ", "reading "},
        {"保存 ", "saving "},
        {"范围线内地块", "clipping parcels to the scope"},
        {"正在获取有编号地块，请稍候...", "finding numbered parcels"},
        {"请稍候...", "clipping"},
    };
    // Messages meant for a CAD's command line start with a line break.
    message.erase(0, message.find_first_not_of("\r\n"));
    for (const Known& k : known) {
        std::size_t length = std::strlen(k.library);
        if (message.compare(0, length, k.library) == 0) return k.english + message.substr(length);
    }
    return "working";
}

// The label cut at a character boundary to at most width columns, "..." marking the cut.
std::string fitted(const std::string& label, int width) {
    if (static_cast<int>(displayWidth(label)) <= width) return label;
    if (width < 4) return std::string();
    std::string cut;
    for (std::size_t i = 0; i < label.size();) {
        std::size_t next = i + 1;
        while (next < label.size() && (static_cast<unsigned char>(label[next]) & 0xC0) == 0x80)
            ++next;
        std::string longer = cut + label.substr(i, next - i);
        if (static_cast<int>(displayWidth(longer)) > width - 3) break;
        cut = longer;
        i = next;
    }
    return cut + "...";
}

}  // namespace

void TerminalProgress::start(std::wstring_view message, long total) {
    if (shown_) end();
    message_ = englishLabel(db::wideToUtf8(std::wstring(message)));
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

int TerminalProgress::columns() const {
    if (int width = db::terminalColumns(out_); width > 0) return width;
    const char* env = std::getenv("COLUMNS");
    int fromEnv = env != nullptr ? std::atoi(env) : 0;
    return fromEnv > 0 ? fromEnv : 80;
}

void TerminalProgress::draw(bool force) {
    int percent = total_ > 0 ? static_cast<int>(position_ * 100 / total_) : 0;
    auto now = std::chrono::steady_clock::now();
    // Redrawn at most every interval, and at every tenth, so that a quick step still shows
    // the bar moving.
    bool nextTenth = lastPercent_ >= 0 && percent / 10 != lastPercent_ / 10;
    if (!force && (percent == lastPercent_ || (now - lastDraw_ < kInterval && !nextTenth))) return;
    lastPercent_ = percent;
    lastDraw_ = now;
    // The last column stays free: a line that fills it wraps on some terminals.
    int room = columns() - 1;
    char tail[8];
    std::snprintf(tail, sizeof tail, " %3d%%", percent);
    int barWidth = std::min(kWidestBar, (room - 5) / 3);
    std::string bar;
    if (barWidth >= 5) {
        int filled = percent * barWidth / 100;
        bar = " [" + std::string(static_cast<std::size_t>(filled), '#') +
              std::string(static_cast<std::size_t>(barWidth - filled), '-') + "]";
    }
    int labelRoom = room - static_cast<int>(bar.size()) - 5;
    std::fprintf(out_, "\r\033[K%s%s%s", fitted(message_, labelRoom).c_str(), bar.c_str(),
                 labelRoom > 0 ? tail : "");
    std::fflush(out_);
}

void TerminalProgress::installOnStderr() {
    const char* term = std::getenv("TERM");
    if (term != nullptr && (std::strcmp(term, "dumb") == 0 || *term == 0)) return;
    if (db::isTerminal(stderr)) db::setProgressSink(std::make_shared<TerminalProgress>(stderr));
}

}  // namespace kplan::cli
