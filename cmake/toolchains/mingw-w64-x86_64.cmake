# Cross-build for 64-bit Windows with Debian's MinGW-w64 (g++-mingw-w64-x86-64-posix: the
# POSIX thread model, so that std::thread and std::mutex work).
#   cmake -S . -B build/windows -DCMAKE_TOOLCHAIN_FILE=cmake/toolchains/mingw-w64-x86_64.cmake
# Libraries built for the target (GEOS, Clipper) are looked for under KPLAN_WINDOWS_PREFIX,
# then in the MinGW-w64 sysroot; programs are always taken from the build machine.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)

set(KPLAN_MINGW_TRIPLET x86_64-w64-mingw32)
set(CMAKE_C_COMPILER ${KPLAN_MINGW_TRIPLET}-gcc-posix)
set(CMAKE_CXX_COMPILER ${KPLAN_MINGW_TRIPLET}-g++-posix)
set(CMAKE_RC_COMPILER ${KPLAN_MINGW_TRIPLET}-windres)

# Passed on to try_compile projects, which read the toolchain file again.
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES KPLAN_WINDOWS_PREFIX)
set(CMAKE_FIND_ROOT_PATH ${KPLAN_WINDOWS_PREFIX} /usr/${KPLAN_MINGW_TRIPLET})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
if(KPLAN_WINDOWS_PREFIX)
    # Their headers, and those of the header-only libraries put there.
    set(CMAKE_C_FLAGS_INIT "-isystem ${KPLAN_WINDOWS_PREFIX}/include")
    set(CMAKE_CXX_FLAGS_INIT "-isystem ${KPLAN_WINDOWS_PREFIX}/include")
endif()

# The C++ run-time linked in, so that kplan.exe runs without DLLs beside it.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static -static-libgcc -static-libstdc++")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-static-libgcc -static-libstdc++")
