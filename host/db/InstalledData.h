#pragma once
// Where an install put the shipped data (the standards directory, the hatch patterns, the
// sample plan). The data lie at a fixed place relative to the installed program and the
// installed shared library: share/kplan/<kind> seen from bin/ and from the library folder.
// The place is taken from the file this code runs in, not from the running program, so
// that a sibling program linking the shared library from elsewhere finds the data of the
// install that library belongs to.
#include <filesystem>

namespace db {

// <data folder of the install>/kplan/<kind> ("standards", "patterns", "samples") as seen from
// the program or shared library this code is part of; empty when that file cannot be named.
// The folder may not exist (a program run from its build tree).
std::filesystem::path installedDataFolder(const char* kind);

}  // namespace db
