# The shared library libkplan.so that sibling modules link: the domain and the host surface it
# runs on. report/, gis/, render/ and cli/ belong to the program and are left out; the program
# and the tests keep linking the static libraries, so that they need no library path to run.
set(KPLAN_LIBRARY_PARTS kplan_record kplan_standard kplan_stats kplan_draw kplan_geometry
                        kplan_arx kplan_kova kplan_mfc kplan_gpc kplan_db kplan_dxf)
# gis/ and render/ are there only when their libraries are (KPLAN_WITH_GIS, KPLAN_WITH_RENDER).
set(KPLAN_PROGRAM_PARTS)
foreach(part IN ITEMS kplan_report kplan_gis kplan_render)
    if(TARGET ${part})
        list(APPEND KPLAN_PROGRAM_PARTS ${part})
    endif()
endforeach()

# The same objects go into the static libraries and the shared one. Only what KPLAN_API
# marks (kplan/Export.h) is exported; the rest of the host and the domain's helpers stay
# inside, free to change without breaking a program linked against the library.
set_target_properties(${KPLAN_LIBRARY_PARTS} ${KPLAN_PROGRAM_PARTS}
                      PROPERTIES POSITION_INDEPENDENT_CODE ON CXX_VISIBILITY_PRESET hidden
                                 VISIBILITY_INLINES_HIDDEN ON)

# The Windows check builds everything static; there the library is asked for.
if(WIN32)
    option(KPLAN_SHARED_LIBRARY "Build the shared library kplan" OFF)
else()
    option(KPLAN_SHARED_LIBRARY "Build the shared library kplan" ON)
endif()
if(NOT KPLAN_SHARED_LIBRARY)
    return()
endif()

if(WIN32)
    foreach(part IN LISTS KPLAN_LIBRARY_PARTS)
        target_compile_definitions(${part} PRIVATE KPLAN_BUILDING_DLL)
    endforeach()
endif()

set(objects)
foreach(part IN LISTS KPLAN_LIBRARY_PARTS)
    list(APPEND objects $<TARGET_OBJECTS:${part}>)
endforeach()
add_library(kplan_shared SHARED ${objects})
# Before 1.0 a minor release may change the C++ interface (class layouts, signatures), so the
# ABI a program was linked against is named by major and minor: libkplan.so.0.1.
set_target_properties(kplan_shared PROPERTIES OUTPUT_NAME kplan EXPORT_NAME kplan
                      VERSION ${PROJECT_VERSION}
                      SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
# What the parts link beyond each other; an undefined symbol fails here, not in a user's link.
target_link_libraries(kplan_shared PRIVATE ${POLYCLIPPING_LIBRARY} Threads::Threads
                                           ${CMAKE_DL_LIBS})
# (Sanitizers given as plain compiler flags, and the fuzzing build, leave their runtime to
# the program.)
if(NOT WIN32 AND NOT KPLAN_FUZZ AND NOT CMAKE_CXX_FLAGS MATCHES "-fsanitize")
    target_link_options(kplan_shared PRIVATE LINKER:--no-undefined)
endif()
target_compile_features(kplan_shared INTERFACE cxx_std_20)
if(WIN32)
    target_compile_definitions(kplan_shared INTERFACE KPLAN_USING_DLL)
endif()
add_library(kplan::kplan ALIAS kplan_shared)
