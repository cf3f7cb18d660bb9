#pragma once
// What an option's value is, said once where the option is defined: as the type name the
// help prints beside it ("--data DIR", "--format {table,csv,json}"). The man page and the
// bash completion read it back from there, so that the three cannot disagree.
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

namespace kplan::cli {

// Type names of values that name files and folders.
inline constexpr const char* kDrawingValue = "DXF";  // a drawing; a folder of them where said
inline constexpr const char* kFileValue = "FILE";    // any file, mostly one written
inline constexpr const char* kFolderValue = "DIR";

// The option takes one of choices, which its command checks with a message of its own;
// the help shows them in braces as it shows those of a CLI::IsMember check.
CLI::Option* offerChoices(CLI::Option* option, const std::vector<std::string>& choices);

// The choices an option takes, from offerChoices or a CLI::IsMember check, in their order;
// empty when the value is free.
std::vector<std::string> choicesOf(const CLI::Option& option);

enum class ValueKind {
    None,     // a flag
    Text,     // free text or a number
    Choice,   // one of choicesOf
    Drawing,  // kDrawingValue
    File,     // kFileValue
    Folder,   // kFolderValue
};
ValueKind valueKindOf(const CLI::Option& option);

// The named options and the positionals of a command, in the order they were added,
// leaving out those the help hides. An option given either way ("OUT,-o,--output") is in
// both.
std::vector<const CLI::Option*> namedOptions(const CLI::App& command);
std::vector<const CLI::Option*> positionals(const CLI::App& command);

}  // namespace kplan::cli
