#pragma once
// The answers of kplan's command-line dialogues, one line each from a stream (the
// terminal or a script on standard input), and the prompts shown on standard error.
#include <istream>
#include <memory>
#include <string>
#include <utility>

#include "host/db/CommandLine.h"

namespace kplan::cli {

// One answer a line, as the CAD's command line takes them: Enter is an empty line, Esc
// a line holding the Esc key (or "<esc>", "^C"), the end of input Esc. Where an entity
// or a selection is asked, "x,y" picks at that point and "#2A" names an object by its
// handle ("#2A #2B" several); anything else is typed text (a keyword, "ALL").
class LineInput : public db::InputSource {
  public:
    explicit LineInput(std::istream& in) : in_(in) {}
    db::Answer next(const db::InputRequest& request) override;
    // The text of the last answer read, which the command line echoes next; a terminal
    // has shown it already as it was typed.
    std::wstring takeTyped() { return std::exchange(typed_, std::wstring()); }

  private:
    std::istream& in_;
    std::wstring typed_;
};

// Makes standard input the command line's source and standard error its echo (standard
// output keeps the table alone), for the lifetime of the holder.
class InteractiveSession {
  public:
    InteractiveSession();
    ~InteractiveSession();
    InteractiveSession(const InteractiveSession&) = delete;
    InteractiveSession& operator=(const InteractiveSession&) = delete;
};

}  // namespace kplan::cli
