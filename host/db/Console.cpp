#include "host/db/Console.h"

#ifdef _WIN32
#include <io.h>
#include <shellapi.h>
#include <windows.h>

#include "host/db/TextCodec.h"
#else
#include <sys/ioctl.h>
#include <unistd.h>
#endif

namespace db {

bool isTerminal(std::FILE* stream) {
#ifdef _WIN32
    return ::_isatty(::_fileno(stream)) != 0;
#else
    return ::isatty(::fileno(stream)) != 0;
#endif
}

int terminalColumns(std::FILE* stream) {
#ifdef _WIN32
    CONSOLE_SCREEN_BUFFER_INFO info;
    auto handle = reinterpret_cast<HANDLE>(::_get_osfhandle(::_fileno(stream)));
    if (!GetConsoleScreenBufferInfo(handle, &info)) return 0;
    return info.srWindow.Right - info.srWindow.Left + 1;
#else
    winsize size{};
    return ::ioctl(::fileno(stream), TIOCGWINSZ, &size) == 0 ? size.ws_col : 0;
#endif
}

std::vector<std::string> utf8Arguments(int argc, char** argv) {
#ifdef _WIN32
    int count = 0;
    if (wchar_t** wide = CommandLineToArgvW(GetCommandLineW(), &count); wide != nullptr) {
        std::vector<std::string> arguments;
        for (int i = 0; i < count; ++i)
            arguments.push_back(wideToUtf8(wide[i]));
        LocalFree(wide);
        if (count == argc) return arguments;
    }
#endif
    return std::vector<std::string>(argv, argv + argc);
}

void useUtf8Console() {
#ifdef _WIN32
    SetConsoleOutputCP(CP_UTF8);
    SetConsoleCP(CP_UTF8);
#endif
}

}  // namespace db
