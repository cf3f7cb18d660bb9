# One library per source folder; sources are picked up by glob so that a new class is
# one new .h/.cpp pair and nothing else.
function(kplan_folder_library name dir)
    file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${dir}/*.cpp)
    if(sources)
        add_library(${name} STATIC ${sources})
        target_link_libraries(${name} PUBLIC kplan_flags ${ARGN})
    else()
        add_library(${name} INTERFACE)
        target_link_libraries(${name} INTERFACE kplan_flags ${ARGN})
    endif()
endfunction()
