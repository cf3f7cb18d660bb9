# One step of the install tests (STEP), run as cmake -P. The install lies in WORK/prefix,
# installed elsewhere and moved there, so that nothing can find its data through the path it
# was installed to; the program is run from WORK, where the source tree is not.
set(prefix ${WORK}/prefix)

function(run)
    cmake_parse_arguments(RUN "" "OUT;DIR" "COMMAND" ${ARGN})
    if(NOT RUN_DIR)
        set(RUN_DIR ${WORK})
    endif()
    execute_process(COMMAND ${RUN_COMMAND} WORKING_DIRECTORY ${RUN_DIR} RESULT_VARIABLE rc
                    OUTPUT_VARIABLE out ERROR_VARIABLE err)
    if(NOT rc EQUAL 0)
        list(JOIN RUN_COMMAND " " shown)
        message(FATAL_ERROR "${shown}: exit ${rc}\n${out}\n${err}")
    endif()
    if(RUN_OUT)
        set(${RUN_OUT} "${out}" PARENT_SCOPE)
    endif()
endfunction()

# The groups matched are the caller's CMAKE_MATCH_1 to 3.
function(expect text pattern what)
    if(NOT text MATCHES "${pattern}")
        message(FATAL_ERROR "${what}: no match for \"${pattern}\" in\n${text}")
    endif()
    foreach(group 1 2 3)
        set(CMAKE_MATCH_${group} "${CMAKE_MATCH_${group}}" PARENT_SCOPE)
    endforeach()
endfunction()

# The example's output against what the installed program and the installed class table
# say of the same drawing.
function(check_example out)
    expect("${out}" "(^|\n)standards: ${prefix}/share/kplan/standards\n"
           "the library's standards directory")
    run(COMMAND ${prefix}/bin/kplan list --class B1 OUT listed)
    string(REPLACE "\n" ";" rows "${listed}")
    set(expected "")
    set(count 0)
    foreach(row IN LISTS rows)
        # handle generation kind number class class_name area_ha ...
        if(row MATCHES "^([0-9A-F]+) +[0-9] +planned +([^ ]+) +([^ ]+) +[^ ]+ +([0-9.]+)")
            string(APPEND expected "  ${CMAKE_MATCH_1} ${CMAKE_MATCH_2} ${CMAKE_MATCH_3} "
                                   "${CMAKE_MATCH_4}\n")
            math(EXPR count "${count} + 1")
        endif()
    endforeach()
    if(count EQUAL 0)
        message(FATAL_ERROR "kplan list --class B1 lists no planned parcel:\n${listed}")
    endif()
    string(FIND "${out}" "planned parcels of class B1: ${count}\n${expected}" at)
    if(at EQUAL -1)
        message(FATAL_ERROR "the parcels of B1 differ from kplan list's:\n${expected}\nin\n${out}")
    endif()

    run(COMMAND ${prefix}/bin/kplan stats OUT stats)
    expect("${stats}" "范围线：([0-9A-F]+)，" "kplan stats's scope line")
    set(scope ${CMAKE_MATCH_1})
    expect("${stats}" "规划地块：([0-9]+)（([0-9]+) 块与范围线相交）" "kplan stats's parcel count")
    expect("${out}" "scope line ${scope}: ${CMAKE_MATCH_1} planned parcels inside, ${CMAKE_MATCH_2} crossing it"
           "the scope line and its parcels")
    expect("${stats}" "\nH +建设用地 +([0-9]+\\.[0-9][0-9]) " "kplan stats's H")
    expect("${out}" "\nH inside the scope line: ${CMAKE_MATCH_1} ha\n" "H")

    file(STRINGS "${prefix}/share/kplan/standards/通用国标/用地分类/2011国标城乡用地类别.txt" line
         REGEX "^B1:" ENCODING UTF-8)
    expect("${line}" "\\$\\(([0-9]+),([0-9]+),([0-9]+)\\)" "the colour of B1 in the class table")
    expect("${out}"
           "\nhatched ${count} parcels in \\(${CMAKE_MATCH_1},${CMAKE_MATCH_2},${CMAKE_MATCH_3}\\)"
           "the hatches")
endfunction()

if(STEP STREQUAL "install")
    file(REMOVE_RECURSE ${WORK})
    file(MAKE_DIRECTORY ${WORK})
    run(COMMAND ${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${WORK}/installed)
    file(RENAME ${WORK}/installed ${prefix})
    foreach(file bin/kplan lib/libkplan.so lib/pkgconfig/kplan.pc lib/cmake/kplan/kplanConfig.cmake
                 include/kplan/record/DKBJXDInfo.h include/kplan/host/dxf/Dxf.h
                 share/kplan/samples/sample-plan.dxf share/kplan/patterns/kplaniso.pat)
        if(NOT EXISTS ${prefix}/${file})
            message(FATAL_ERROR "not installed: ${file}")
        endif()
    endforeach()

elseif(STEP STREQUAL "program")
    # With no argument the installed program reads the installed sample with the installed
    # standards, and prints what the program of the build tree prints for the sample.
    run(COMMAND ${prefix}/bin/kplan stats OUT installed)
    expect("${installed}" "^图纸：prefix/share/kplan/samples/sample-plan.dxf\n" "the drawing read")
    expect("${installed}" "\n标准：通用国标，类别表：prefix/share/kplan/standards/通用国标/"
           "the standards read")
    run(COMMAND ${BUILD_KPLAN} stats OUT built)
    # Past the two lines naming the files read.
    foreach(output installed built)
        set(table "${${output}}")
        foreach(line 1 2)
            string(FIND "${table}" "\n" end)
            math(EXPR end "${end} + 1")
            string(SUBSTRING "${table}" ${end} -1 table)
        endforeach()
        set(${output}_table "${table}")
    endforeach()
    if(NOT installed_table STREQUAL built_table OR NOT installed_table MATCHES "城乡用地汇总表")
        message(FATAL_ERROR "the installed program's tables differ:\n${installed}\n---\n${built}")
    endif()

elseif(STEP STREQUAL "example_cmake")
    set(build ${WORK}/example-cmake)
    file(REMOVE_RECURSE ${build})
    run(COMMAND ${CMAKE_COMMAND} -S ${SOURCE_DIR}/examples/sibling-module -B ${build}
            -DCMAKE_PREFIX_PATH=${prefix} -DCMAKE_CXX_COMPILER=${CXX} -DCMAKE_BUILD_TYPE=Release)
    run(COMMAND ${CMAKE_COMMAND} --build ${build})
    run(COMMAND ${build}/sibling OUT out)
    check_example("${out}")

elseif(STEP STREQUAL "example_pkgconfig")
    set(ENV{PKG_CONFIG_PATH} ${prefix}/lib/pkgconfig)
    run(COMMAND pkg-config --cflags --libs kplan OUT flags)
    run(COMMAND pkg-config --cflags kplan OUT cflags)
    run(COMMAND pkg-config --variable=libdir kplan OUT libdir)
    separate_arguments(flags UNIX_COMMAND "${flags}")
    separate_arguments(cflags UNIX_COMMAND "${cflags}")
    string(STRIP "${libdir}" libdir)
    # Every installed header together, with nothing but what the package file names: none
    # may need a header left out of the install or an undeclared library's.
    file(GLOB_RECURSE headers RELATIVE ${prefix}/include/kplan ${prefix}/include/kplan/*.h)
    set(all "")
    foreach(header IN LISTS headers)
        string(APPEND all "#include \"${header}\"\n")
    endforeach()
    file(WRITE ${WORK}/all-headers.cpp "${all}")
    run(COMMAND ${CXX} -std=c++20 -fsyntax-only -Wall -Wextra -Wpedantic -Werror
            ${WORK}/all-headers.cpp ${cflags})
    run(COMMAND ${CXX} -std=c++20 -O1 ${SOURCE_DIR}/examples/sibling-module/main.cpp ${flags}
            -Wl,-rpath,${libdir} -o ${WORK}/sibling-pkgconfig)
    # The sample named, and the hatched drawing saved and read back by the program.
    set(sample ${prefix}/share/kplan/samples/sample-plan.dxf)
    run(COMMAND ${WORK}/sibling-pkgconfig ${sample} B1 ${WORK}/hatched.dxf OUT out)
    check_example("${out}")
    expect("${out}" "hatched ([0-9]+) parcels" "the hatches")
    set(hatched ${CMAKE_MATCH_1})
    run(COMMAND ${prefix}/bin/kplan info ${sample} OUT before)
    run(COMMAND ${prefix}/bin/kplan info ${WORK}/hatched.dxf OUT after)
    expect("${before}" "\n  HATCH: ([0-9]+)\n" "the sample's hatches")
    set(before ${CMAKE_MATCH_1})
    expect("${after}" "\n  HATCH: ([0-9]+)\n" "the saved drawing's hatches")
    math(EXPR added "${CMAKE_MATCH_1} - ${before}")
    if(NOT added EQUAL hatched)
        message(FATAL_ERROR "the saved drawing holds ${added} more hatches, not ${hatched}")
    endif()

elseif(STEP STREQUAL "exports")
    # The dynamic symbols hold the interface a sibling module calls, and none of the host's
    # inner workings, the program's folders or the clipper underneath.
    run(COMMAND nm -D --defined-only -C ${prefix}/lib/libkplan.so OUT symbols)
    set(exported
        # records, class tables, statistics, drawing, geometry
        "CDKBJXDInfo::GetDkbjByClass(" "CDKBJXDInfo::GetArea(" "CDKTCInfo::" "CDYBJInfo::"
        "CJFBJInfo::" "CJZBJInfo::" "CGHHXInfo::" "dk::SelectParcels(" "CKovaAttribSet::FGetColorFromCur("
        " FGetHArea(" " FGetDKAreaByBoundaryGPC(" " FTJDKAreaByBoundary(" " FIsDKAndBoundaryInter("
        "ClipperLib::FGetPathFromPolyline(" " KovaSelectGHFWX(" " FHatch(" " FGetDKLayer("
        " FGetCenterPt(" " FOffset("
        # the host surface they use, and opening and saving a drawing
        "CString::FromUtf8(" "CStringArray::Add(" "AcDbPolyline::" "AcDbHatch::" "acdbOpenObject("
        " acutBuildList" " acedSSGet" " acDocManagerPtr" "AcApDocManager::appendDocument("
        "CKovaDataSet::FGetGStandardDirPath(" "kova::ent::GetArea(" " gpc_polygon_clip"
        "dxf::load(" "dxf::save(" "typeinfo for AcDbPolyline" "vtable for AcDbEntity")
    foreach(name IN LISTS exported)
        string(FIND "${symbols}" "${name}" at)
        if(at EQUAL -1)
            message(FATAL_ERROR "libkplan.so does not export ${name}")
        endif()
    endforeach()
    set(hidden
        "db::CommandLine" "db::HatchPatternFile" "db::SelectionSets" "db::installedDataFolder"
        "db::wideToUtf8" "dxf::TagReader" "dxf::TagWriter" "dxf::FieldTable" "dxf::ReadContext"
        "arx::systemVariableShort" "arx::entityShape"
        "anonymous namespace" "kplan::report::" "kplan::gis::" "kplan::render::" "kplan::cli::"
        "ClipperLib::Clipper" "ClipperLib::Area(")
    foreach(name IN LISTS hidden)
        string(FIND "${symbols}" "${name}" at)
        if(NOT at EQUAL -1)
            string(REGEX MATCH "[^\n]*${name}[^\n]*" line "${symbols}")
            message(FATAL_ERROR "libkplan.so exports an internal: ${line}")
        endif()
    endforeach()
    string(REGEX MATCHALL "\n" lines "${symbols}")
    list(LENGTH lines count)
    message(STATUS "libkplan.so exports ${count} symbols")

else()
    message(FATAL_ERROR "unknown step ${STEP}")
endif()
