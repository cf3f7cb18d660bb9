#pragma once
// A class table is read leniently by the lookups (a bad file gives every class a blank
// name); the program checks it first, so that a wrong file stops the run instead of
// giving a table of nameless classes.
#include <string>

namespace kplan::cli {

// False with a message naming the file and the first bad line when the file does not
// decode cleanly (UTF-8 or UTF-16 with a byte-order mark, well-formed UTF-8, else GBK) or
// holds no class line ("CODE:name").
bool checkClassTable(const std::string& path, std::string& error);

}  // namespace kplan::cli
