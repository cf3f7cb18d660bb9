#pragma once
// Where the program's warnings go. Errors are always printed on stderr; warnings (what a
// reader of the result should know: a scope line chosen among several, parcels left out,
// repairs of a lenient read) go to stderr too, unless --quiet asks for silence. Warnings
// that belong to the result also stay in its JSON and CSV whatever --quiet says.
#include <ostream>
#include <sstream>

namespace kplan::cli {

// --quiet: no progress bar and no warnings on stderr.
void setQuiet(bool quiet);
bool quiet();

// The stream a warning is written to: stderr, a stream that drops it under --quiet, or,
// on a thread working on one drawing of several, that drawing's own messages.
std::ostream& warn();

// While it lives, this thread's warnings (and the messages of the drawing it works on) go
// to into, to be printed with that drawing's result; under --quiet, warnings go nowhere.
class MessagesInto {
  public:
    explicit MessagesInto(std::ostringstream& into);
    ~MessagesInto();
    MessagesInto(const MessagesInto&) = delete;
    MessagesInto& operator=(const MessagesInto&) = delete;

  private:
    std::ostream* before_;
};

}  // namespace kplan::cli
