# Fails unless the newest release of CHANGELOG.md in ROOT is VERSION, each release has a date, that of
# the newest is in the manual page PAGE, if there is one, and each tag of a version is a release there:
# v1.2.3.4 is the tag of 1.2.3.4.
file(STRINGS ${ROOT}/CHANGELOG.md headings REGEX "^## [0-9]")
list(TRANSFORM headings REPLACE "^## ([0-9.]+).*" "\\1" OUTPUT_VARIABLE releases)
list(GET releases 0 newest)
if(NOT newest STREQUAL VERSION)
    message(SEND_ERROR "the newest release of CHANGELOG.md is ${newest}, the project's ${VERSION}")
endif()

foreach(heading IN LISTS headings)
    if(NOT heading MATCHES " \\(([0-9][0-9][0-9][0-9]-[0-9][0-9]-[0-9][0-9])\\)$")
        message(SEND_ERROR "CHANGELOG.md has no date (YYYY-MM-DD) in \"${heading}\"")
    elseif(PAGE)
        file(STRINGS ${PAGE} dated LIMIT_COUNT 1 REGEX "^\\.TH .*\"${CMAKE_MATCH_1}\"")
        if(NOT dated)
            message(SEND_ERROR "${PAGE} is not of ${CMAKE_MATCH_1}")
        endif()
        unset(PAGE) # the newest release is the first one
    endif()
endforeach()

execute_process(COMMAND git -C ${ROOT} tag --list "v[0-9]*" OUTPUT_VARIABLE tags ERROR_QUIET)
string(REGEX MATCHALL "[^\n]+" tags "${tags}")
foreach(tag IN LISTS tags)
    string(SUBSTRING ${tag} 1 -1 version)
    if(NOT version IN_LIST releases)
        message(SEND_ERROR "CHANGELOG.md has no release ${version}, which is tagged")
    endif()
endforeach()
