# Warning and sanitizer settings, defined once and linked by every target of ours.
add_library(kplan_flags INTERFACE)
target_compile_options(kplan_flags INTERFACE -Wall -Wextra -Wpedantic)
# GCC 12 reports string concatenation inlined at -O3 as overlapping memcpy (GCC bug
# 105651); the warning is wrong for every such report, so it is switched off there.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    target_compile_options(kplan_flags INTERFACE -Wno-restrict)
endif()
if(KPLAN_WERROR)
    target_compile_options(kplan_flags INTERFACE -Werror)
endif()

if(KPLAN_SANITIZE)
    # Global, so that GoogleTest's main and every object file share the runtime.
    add_compile_options(-fsanitize=address,undefined -fno-omit-frame-pointer
                        -fno-sanitize-recover=undefined)
    add_link_options(-fsanitize=address,undefined)
endif()

# The cross-build for Windows is a check of the CAD's platform: every translation unit of
# ours starts with the platform's headers and all their macros (min, max, far, near,
# ERROR, the A/W names, ...), as the CAD's own projects include them first, in a Unicode
# build as theirs; and the host's types lose the std::hash that the CAD's SDK does not
# give them.
if(WIN32)
    target_compile_options(kplan_flags INTERFACE -include windows.h)
    target_compile_definitions(kplan_flags INTERFACE UNICODE _UNICODE KPLAN_NO_HOST_HASHES)
endif()
