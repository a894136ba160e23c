# SPDX-License-Identifier: MIT

# Refuses an option of this project that the project does not have. CMake itself only warns, at the
# end of much else. Include it after the last option.

set(known)
set(unknown)
get_cmake_property(variables CACHE_VARIABLES)
foreach(variable IN LISTS variables)
    if(variable MATCHES "^LIBCONFIGURATIONMANAGER_")
        get_property(help CACHE ${variable} PROPERTY HELPSTRING)
        # What CMake notes for a variable that only the command line or a preset has set.
        if(help MATCHES "^No help, variable specified on the command line")
            list(APPEND unknown ${variable})
        else()
            list(APPEND known ${variable})
        endif()
    endif()
endforeach()
if(unknown)
    # Otherwise the next try would fail as well.
    foreach(variable IN LISTS unknown)
        unset(${variable} CACHE)
    endforeach()
    list(JOIN unknown ", " unknown)
    list(JOIN known "\n  " known)
    message(FATAL_ERROR "There is no option ${unknown}; the options are\n  ${known}")
endif()
