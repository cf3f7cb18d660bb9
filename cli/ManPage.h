#pragma once
// The manual page of the kplan program, kplan(1), in roff with the man macros. Its commands
// and options, with their descriptions, defaults and values, are read from the application
// that parses the command line, so the page says what the program takes; the exit codes,
// the environment and the files are the program's own.
#include <string>

#include <CLI/CLI.hpp>

namespace kplan::cli {

// The page of app (its commands and options all added) for the given version. Pure ASCII:
// other characters are written as groff's \[uXXXX], so that no input encoding is assumed.
std::string manPage(const CLI::App& app, const std::string& version);

}  // namespace kplan::cli
