#include "host/db/InstalledData.h"

#include <string>
#include <system_error>

#include "host/db/ExecutablePath.h"

#if defined(_WIN32)
#include <windows.h>
#elif defined(__linux__)
#include <dlfcn.h>
#include <link.h>
#endif

namespace db {

namespace {

namespace fs = std::filesystem;

// The address whose file is looked up: any function of this file will do.
void anchor() {}

#if defined(_WIN32)
// Programs and DLLs both go to bin/ on Windows.
fs::path moduleFile(bool& isProgram) {
    isProgram = true;
    HMODULE module = nullptr;
    if (!GetModuleHandleExW(
            GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
            reinterpret_cast<LPCWSTR>(&anchor), &module))
        return {};
    std::wstring name(MAX_PATH, L'\0');
    for (;;) {
        DWORD length = GetModuleFileNameW(module, name.data(), static_cast<DWORD>(name.size()));
        if (length == 0) return {};
        if (length < name.size()) return fs::path(name.substr(0, length));
        name.resize(name.size() * 2);
    }
}
#elif defined(__linux__)
fs::path moduleFile(bool& isProgram) {
    Dl_info info{};
    link_map* map = nullptr;
    if (dladdr1(reinterpret_cast<void*>(&anchor), &info, reinterpret_cast<void**>(&map),
                RTLD_DL_LINKMAP) == 0 ||
        map == nullptr)
        return {};
    // The program's own entry has no name; dli_fname would then be argv[0], which need not
    // be a path.
    isProgram = map->l_name == nullptr || map->l_name[0] == '\0';
    fs::path file = isProgram ? executablePath() : fs::path(map->l_name);
    if (file.empty()) return {};
    std::error_code ec;
    fs::path whole = fs::weakly_canonical(file, ec);
    return ec ? file : whole;
}
#else
fs::path moduleFile(bool& isProgram) {
    isProgram = true;
    return {};
}
#endif

}  // namespace

fs::path installedDataFolder(const char* kind) {
    bool isProgram = true;
    fs::path module = moduleFile(isProgram);
    if (module.empty()) return {};
    // The relative paths come from the install folders the build was configured with.
    const char* toData = isProgram ? KPLAN_BINDIR_TO_DATADIR : KPLAN_LIBDIR_TO_DATADIR;
    return (module.parent_path() / toData / "kplan" / kind).lexically_normal();
}

}  // namespace db
