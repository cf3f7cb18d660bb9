#include "cli/Messages.h"

#include <atomic>
#include <iostream>

namespace kplan::cli {

namespace {

std::atomic<bool> quietRun{false};
thread_local std::ostream* threadMessages = nullptr;

// A stream whose writes go nowhere.
class Discard : public std::streambuf {
  protected:
    int overflow(int c) override { return traits_type::not_eof(c); }
    std::streamsize xsputn(const char*, std::streamsize n) override { return n; }
};

}  // namespace

void setQuiet(bool quiet) {
    quietRun = quiet;
}

bool quiet() {
    return quietRun;
}

std::ostream& warn() {
    if (quietRun) {
        thread_local Discard nowhere;
        thread_local std::ostream dropped(&nowhere);
        return dropped;
    }
    return threadMessages != nullptr ? *threadMessages : std::cerr;
}

MessagesInto::MessagesInto(std::ostringstream& into) : before_(threadMessages) {
    threadMessages = &into;
}

MessagesInto::~MessagesInto() {
    threadMessages = before_;
}

}  // namespace kplan::cli
