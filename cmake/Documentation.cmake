# The manual page kplan(1) and the bash completion of kplan, made at build time by the
# program itself from the command line it parses (kplan --generate man|complete-bash), so
# that neither can say other than the program; installed where man and bash-completion
# look for them.
#
# Run as a script (cmake -P) it is the build step: PROGRAM --generate KIND into OUTPUT,
# compressed as Debian ships manual pages (gzip -9n: no name or time stamp inside) when
# OUTPUT ends in .gz.
if(CMAKE_SCRIPT_MODE_FILE)
    string(REGEX REPLACE "\\.gz$" "" plain "${OUTPUT}")
    execute_process(COMMAND "${PROGRAM}" --generate "${KIND}" OUTPUT_FILE "${plain}.tmp"
                    RESULT_VARIABLE failed)
    if(failed)
        message(FATAL_ERROR "${PROGRAM} --generate ${KIND}: ${failed}")
    endif()
    if(plain STREQUAL OUTPUT)
        file(RENAME "${plain}.tmp" "${OUTPUT}")
    else()
        execute_process(COMMAND gzip -9n -c "${plain}.tmp" OUTPUT_FILE "${OUTPUT}"
                        RESULT_VARIABLE failed)
        file(REMOVE "${plain}.tmp")
        if(failed)
            file(REMOVE "${OUTPUT}")
            message(FATAL_ERROR "gzip ${OUTPUT}: ${failed}")
        endif()
    endif()
    return()
endif()

# A program built for another platform does not run here to describe itself; the page and
# the completion are those of the Linux build.
if(CMAKE_CROSSCOMPILING OR WIN32)
    return()
endif()

include(GNUInstallDirs)
set(KPLAN_MAN_PAGE ${PROJECT_BINARY_DIR}/doc/kplan.1.gz)
set(KPLAN_BASH_COMPLETION ${PROJECT_BINARY_DIR}/doc/kplan.bash)
foreach(kind_and_output IN ITEMS "man=${KPLAN_MAN_PAGE}" "complete-bash=${KPLAN_BASH_COMPLETION}")
    string(REPLACE "=" ";" kind_and_output "${kind_and_output}")
    list(GET kind_and_output 0 kind)
    list(GET kind_and_output 1 output)
    add_custom_command(
        OUTPUT ${output}
        COMMAND ${CMAKE_COMMAND} -E make_directory ${PROJECT_BINARY_DIR}/doc
        COMMAND ${CMAKE_COMMAND} -DPROGRAM=$<TARGET_FILE:kplan> -DKIND=${kind}
                -DOUTPUT=${output} -P ${CMAKE_CURRENT_LIST_FILE}
        DEPENDS kplan ${CMAKE_CURRENT_LIST_FILE}
        COMMENT "kplan --generate ${kind}"
        VERBATIM)
endforeach()
add_custom_target(kplan_documentation ALL DEPENDS ${KPLAN_MAN_PAGE} ${KPLAN_BASH_COMPLETION})

install(FILES ${KPLAN_MAN_PAGE} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES ${KPLAN_BASH_COMPLETION}
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions RENAME kplan)
