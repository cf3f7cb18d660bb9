#include "cli/BashCompletion.h"

#include <algorithm>
#include <sstream>
#include <utility>
#include <vector>

#include "cli/OptionValues.h"

namespace kplan::cli {

namespace {

// A word of the script in single quotes.
std::string quoted(const std::string& word) {
    std::string out = "'";
    for (char c : word)
        out += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return out + "'";
}

std::vector<std::string> namesOf(const CLI::Option& option) {
    std::vector<std::string> names;
    for (const std::string& s : option.get_snames())
        names.push_back("-" + s);
    for (const std::string& l : option.get_lnames())
        names.push_back("--" + l);
    return names;
}

// Each name once, in the order first given: a command's -h and the program's.
std::vector<std::string> distinct(const std::vector<std::string>& names) {
    std::vector<std::string> once;
    for (const std::string& name : names)
        if (std::find(once.begin(), once.end(), name) == once.end()) once.push_back(name);
    return once;
}

std::string joined(const std::vector<std::string>& words, const std::string& between) {
    std::string out;
    for (const std::string& word : words)
        out += (out.empty() ? "" : between) + word;
    return out;
}

// What completes a value of option: its choices, file or folder names, or nothing.
std::string valueCompletion(const CLI::Option& option) {
    switch (valueKindOf(option)) {
        case ValueKind::Choice:
            return "COMPREPLY=($(compgen -W " + quoted(joined(choicesOf(option), " ")) +
                   " -- \"$cur\"))";
        case ValueKind::Drawing:
            return "_filedir dxf";
        case ValueKind::File:
            return "_filedir";
        case ValueKind::Folder:
            return "_filedir -d";
        default:
            return ":";
    }
}

// The options that take a value, of a command and of the program (which every command
// passes on to it).
std::vector<const CLI::Option*> valueOptions(const std::vector<const CLI::Option*>& options) {
    std::vector<const CLI::Option*> taking;
    for (const CLI::Option* option : options)
        if (valueKindOf(*option) != ValueKind::None) taking.push_back(option);
    return taking;
}

std::vector<std::string> allNames(const std::vector<const CLI::Option*>& options) {
    std::vector<std::string> names;
    for (const CLI::Option* option : options)
        for (const std::string& name : namesOf(*option))
            names.push_back(name);
    return distinct(names);
}

// The value of the option just before the word: "--format js", or "--format=js" which
// _init_completion -s splits so.
void valueCase(std::ostream& out, const std::vector<const CLI::Option*>& options,
               const std::string& indent) {
    // The options that complete alike share a branch; the free ones complete nothing.
    std::vector<std::pair<std::string, std::vector<std::string>>> branches;
    for (const CLI::Option* option : valueOptions(options)) {
        std::string action = valueCompletion(*option);
        auto branch = std::find_if(branches.begin(), branches.end(),
                                   [&](const auto& known) { return known.first == action; });
        if (branch == branches.end()) branch = branches.insert(branches.end(), {action, {}});
        for (const std::string& name : namesOf(*option))
            branch->second.push_back(name);
    }
    out << indent << "case $prev in\n";
    for (const auto& [action, names] : branches) {
        out << indent << "    " << joined(distinct(names), "|") << ")\n";
        if (action != ":") out << indent << "        " << action << "\n";
        out << indent << "        return\n" << indent << "        ;;\n";
    }
    out << indent << "esac\n" << indent << "$split && return\n";
}

void optionWords(std::ostream& out, const std::vector<const CLI::Option*>& options,
                 const std::string& indent) {
    out << indent << "if [[ $cur == -* ]]; then\n"
        << indent << "    COMPREPLY=($(compgen -W " << quoted(joined(allNames(options), " "))
        << " -- \"$cur\"))\n"
        << indent << "    return\n"
        << indent << "fi\n";
}

void commandCase(std::ostream& out, const CLI::App& command,
                 const std::vector<const CLI::Option*>& global) {
    std::vector<const CLI::Option*> options = namedOptions(command);
    options.insert(options.end(), global.begin(), global.end());
    const std::string indent = "            ";
    out << "        " << command.get_name() << ")\n";
    valueCase(out, options, indent);
    optionWords(out, options, indent);
    // The operands: each positional in turn, the last again when it takes several.
    std::vector<const CLI::Option*> operands = positionals(command);
    if (!operands.empty()) {
        out << indent << "case $(_"
            << "kplan_operand $at "
            << quoted(" " + joined(allNames(valueOptions(options)), " ") + " ") << ") in\n";
        for (std::size_t i = 0; i < operands.size(); ++i) {
            bool last = i + 1 == operands.size();
            bool several = operands[i]->get_items_expected_max() > 1;
            out << indent << "    " << (last && several ? "*" : std::to_string(i)) << ")\n"
                << indent << "        " << valueCompletion(*operands[i]) << "\n"
                << indent << "        ;;\n";
        }
        out << indent << "esac\n";
    }
    out << indent << ";;\n";
}

}  // namespace

std::string bashCompletion(const CLI::App& app) {
    const std::string name = app.get_name();
    std::vector<const CLI::Option*> global = namedOptions(app);
    std::vector<std::string> commands;
    for (const CLI::App* command : app.get_subcommands({}))
        commands.push_back(command->get_name());

    std::ostringstream out;
    out << "# bash completion for " << name << "                    -*- shell-script -*-\n"
        << "# Made by \"" << name << " --generate complete-bash\" from the options " << name
        << " parses.\n\n";
    out << "# The place among the command's operands of the word being completed: the words\n"
           "# after the command that are neither options nor the value of one. $1: the\n"
           "# command's index in words, $2: the options that take a value, as \" -o --out \".\n"
        << "_" << name << "_operand()\n"
        << "{\n"
           "    local i n=0\n"
           "    for ((i = $1 + 1; i < cword; i++)); do\n"
           "        case ${words[i]} in\n"
           "            -) ((n++)) ;;\n"
           "            -*=*) ;;\n"
           "            -*) [[ $2 == *\" ${words[i]} \"* ]] && ((i++)) ;;\n"
           "            *) ((n++)) ;;\n"
           "        esac\n"
           "    done\n"
           "    echo $n\n"
           "}\n\n";
    out << "_" << name << "()\n"
        << "{\n"
           "    local cur prev words cword split\n"
           "    _init_completion -s || return\n\n"
           "    # The command: the first word that is neither an option nor its value.\n"
           "    local i command= at=0\n"
           "    for ((i = 1; i < cword; i++)); do\n"
           "        case ${words[i]} in\n";
    std::vector<std::string> globalValues = allNames(valueOptions(global));
    if (!globalValues.empty())
        out << "            " << joined(globalValues, "|") << ") ((i++)) ;;\n";
    out << "            -*) ;;\n"
           "            *)\n"
           "                command=${words[i]} at=$i\n"
           "                break\n"
           "                ;;\n"
           "        esac\n"
           "    done\n\n"
           "    case $command in\n"
           "        \"\")\n";
    const std::string indent = "            ";
    valueCase(out, global, indent);
    optionWords(out, global, indent);
    out << indent << "COMPREPLY=($(compgen -W " << quoted(joined(commands, " "))
        << " -- \"$cur\"))\n"
        << indent << ";;\n";
    for (const CLI::App* command : app.get_subcommands({}))
        commandCase(out, *command, global);
    out << "    esac\n"
        << "} &&\n"
        << "    complete -F _" << name << " " << name << "\n\n"
        << "# ex: filetype=sh\n";
    return out.str();
}

}  // namespace kplan::cli
