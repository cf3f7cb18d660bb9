#include "cli/OptionValues.h"

#include <algorithm>

namespace kplan::cli {

CLI::Option* offerChoices(CLI::Option* option, const std::vector<std::string>& choices) {
    std::string name = "{";
    for (const std::string& choice : choices)
        name += (name.size() > 1 ? "," : "") + choice;
    return option->type_name(name + "}");
}

std::vector<std::string> choicesOf(const CLI::Option& option) {
    // "{a,b}" as offerChoices names it, "TEXT:{a,b}" as CLI::IsMember describes itself.
    std::string name = option.get_type_name();
    std::size_t open = name.find('{'), close = name.find('}', open);
    if (open == std::string::npos || close == std::string::npos) return {};
    std::vector<std::string> choices;
    std::string list = name.substr(open + 1, close - open - 1);
    for (std::size_t start = 0; start <= list.size();) {
        std::size_t comma = (std::min)(list.find(',', start), list.size());
        if (comma > start) choices.push_back(list.substr(start, comma - start));
        start = comma + 1;
    }
    return choices;
}

ValueKind valueKindOf(const CLI::Option& option) {
    if (option.get_items_expected_max() == 0) return ValueKind::None;
    if (!choicesOf(option).empty()) return ValueKind::Choice;
    std::string name = option.get_type_name();
    name = name.substr(0, name.find(':'));
    if (name == kDrawingValue) return ValueKind::Drawing;
    if (name == kFileValue) return ValueKind::File;
    if (name == kFolderValue) return ValueKind::Folder;
    return ValueKind::Text;
}

namespace {

// "OUT,-o,--output" is both: a positional and a named option.
std::vector<const CLI::Option*> shownOptions(const CLI::App& command, bool named) {
    std::vector<const CLI::Option*> shown;
    for (const CLI::Option* option : command.get_options()) {
        if (!option->get_group().empty() &&
            (named ? option->nonpositional() : option->get_positional()))
            shown.push_back(option);
    }
    return shown;
}

}  // namespace

std::vector<const CLI::Option*> namedOptions(const CLI::App& command) {
    return shownOptions(command, true);
}

std::vector<const CLI::Option*> positionals(const CLI::App& command) {
    return shownOptions(command, false);
}

}  // namespace kplan::cli
