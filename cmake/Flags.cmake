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
