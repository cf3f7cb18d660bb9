#pragma once
// Where the running program lies, for the data installed beside it.
#include <filesystem>

namespace db {

// The program's own file; empty when the system does not say.
std::filesystem::path executablePath();

}  // namespace db
