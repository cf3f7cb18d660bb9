#pragma once
// What kplan's help lists, read from the help as a user reads it: an account of the
// commands and options that does not come from the code generating other documents.
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "tests/cli/RunKplan.h"

// The commands "kplan --help" lists, in its order.
inline std::vector<std::string> helpCommands() {
    std::istringstream lines(kplan("--help").out);
    std::vector<std::string> commands;
    bool listed = false;
    for (std::string line; std::getline(lines, line);) {
        if (line == "Subcommands:") {
            listed = true;
        } else if (listed && line.rfind("  ", 0) == 0 && line[2] != ' ') {
            commands.push_back(line.substr(2, line.find(' ', 2) - 2));
        } else if (listed && line.empty()) {
            break;
        }
    }
    return commands;
}

// The option names ("-o", "--output") "kplan help COMMAND" lists.
inline std::set<std::string> helpOptions(const std::string& command) {
    std::istringstream lines(kplan("help " + command).out);
    std::set<std::string> names;
    const std::regex name(R"((?:^|,)(--?[A-Za-z][-A-Za-z0-9]*))");
    for (std::string line; std::getline(lines, line);) {
        if (line.rfind("  -", 0) != 0) continue;
        std::string head = line.substr(2, line.find(' ', 2) - 2);
        for (std::sregex_iterator it(head.begin(), head.end(), name), end; it != end; ++it)
            names.insert((*it)[1]);
    }
    return names;
}
