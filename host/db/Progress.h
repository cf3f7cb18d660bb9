#pragma once
// Where the host's progress bar goes. Inside the CAD host it is the status bar; here the
// command-line program draws it on its terminal and tests record it. By default it goes
// nowhere, so a library call never writes to a terminal nobody asked for.
#include <memory>
#include <string_view>

namespace db {

class ProgressSink {
  public:
    virtual ~ProgressSink() = default;
    // A bar with its message and the number of steps it will take.
    virtual void start(std::wstring_view message, long total) = 0;
    // The position after a step, 1 to total.
    virtual void step(long position) = 0;
    virtual void end() = 0;
};

// The sink of the process; never null.
ProgressSink& progressSink();
// Installs a sink (null restores the silent one) and returns the one it replaces.
std::shared_ptr<ProgressSink> setProgressSink(std::shared_ptr<ProgressSink> sink);

}  // namespace db
