#pragma once
// The host's progress bar drawn on a terminal: one line, redrawn in place, at most a few
// times a second, erased when the work ends. The line fits the terminal's width, its label
// is English as the rest of the program's messages, and it uses no colour (so NO_COLOR
// holds); a terminal that cannot redraw a line (TERM=dumb) gets no bar.
#include <chrono>
#include <cstdio>
#include <string>

#include "host/db/Progress.h"

namespace kplan::cli {

class TerminalProgress : public db::ProgressSink {
  public:
    explicit TerminalProgress(std::FILE* terminal) : out_(terminal) {}
    void start(std::wstring_view message, long total) override;
    void step(long position) override;
    void end() override;

    // Installs a bar on stderr when stderr is a terminal that can redraw a line; otherwise
    // progress stays silent.
    static void installOnStderr();

  private:
    void draw(bool force);
    int columns() const;

    std::FILE* out_;
    std::string message_;
    long total_ = 0, position_ = 0;
    int lastPercent_ = -1;
    bool shown_ = false;
    std::chrono::steady_clock::time_point lastDraw_;
};

}  // namespace kplan::cli
