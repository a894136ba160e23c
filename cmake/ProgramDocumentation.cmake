# SPDX-License-Identifier: MIT

# A program itself writes its manual page and completions (--generate). A build for another kind of
# machine needs CMAKE_CROSSCOMPILING_EMULATOR for that.
function(install_documentation program)
    if(CMAKE_CROSSCOMPILING AND NOT CMAKE_CROSSCOMPILING_EMULATOR)
        message(STATUS "${program}: no manual page and no completions without an emulator")
        return()
    endif()
    set(files)
    foreach(document IN ITEMS
        man:${program}.1:${CMAKE_INSTALL_MANDIR}/man1
        bash:${program}:${CMAKE_INSTALL_DATADIR}/bash-completion/completions
        zsh:_${program}:${CMAKE_INSTALL_DATADIR}/zsh/site-functions)
        string(REGEX MATCH "^([^:]*):([^:]*):(.*)$" document ${document})
        set(kind ${CMAKE_MATCH_1})
        set(folder ${CMAKE_CURRENT_BINARY_DIR}/generated/${kind})
        set(file ${folder}/${CMAKE_MATCH_2})
        file(MAKE_DIRECTORY ${folder})
        add_custom_command(OUTPUT ${file}
            COMMAND ${program} --generate ${kind} > ${file}
            DEPENDS ${program}
            VERBATIM)
        install(FILES ${file} DESTINATION ${CMAKE_MATCH_3})
        list(APPEND files ${file})
    endforeach()
    add_custom_target(${program}-documentation ALL DEPENDS ${files})
endfunction()
