#include "host/db/ExecutablePath.h"

#ifdef _WIN32
#include <windows.h>

#include <string>
#endif

#include <system_error>

namespace db {

std::filesystem::path executablePath() {
#ifdef _WIN32
    std::wstring name(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length =
            GetModuleFileNameW(nullptr, name.data(), static_cast<DWORD>(name.size()));
        if (length == 0) return {};
        if (length < name.size()) {
            name.resize(length);
            return name;
        }
        name.resize(name.size() * 2);  // cut short: a longer name than MAX_PATH
    }
#else
    std::error_code ec;
    std::filesystem::path exe = std::filesystem::read_symlink("/proc/self/exe", ec);
    return ec ? std::filesystem::path() : exe;
#endif
}

}  // namespace db
