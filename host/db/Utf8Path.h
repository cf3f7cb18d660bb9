#pragma once
// File names are UTF-8 throughout the program (the command line, messages, the standards
// directory's Chinese names). On Windows std::filesystem::path(std::string) reads a
// string in the ANSI code page, so names cross into paths and back through char8_t;
// on Linux the bytes stay as they are.
#include <filesystem>
#include <string>
#include <string_view>

namespace db {

inline std::filesystem::path utf8Path(std::string_view name) {
    return std::filesystem::path(std::u8string(name.begin(), name.end()));
}

inline std::string utf8Name(const std::filesystem::path& path) {
    const std::u8string name = path.u8string();
    return std::string(name.begin(), name.end());
}

}  // namespace db
