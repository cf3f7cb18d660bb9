#pragma once
// Bash completion for the kplan program, made from the application that parses the command
// line: the commands, each command's options, the values of options that take one of a
// few, and file names where a drawing (.dxf), another file or a folder is asked for.
// The script uses bash-completion's helpers (_init_completion, _filedir), as the scripts
// bash-completion loads from share/bash-completion/completions do.
#include <string>

#include <CLI/CLI.hpp>

namespace kplan::cli {

// The script for app, its commands and options all added.
std::string bashCompletion(const CLI::App& app);

}  // namespace kplan::cli
