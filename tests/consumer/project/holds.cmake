# Fails unless LIBRARY holds each of TEXTS.
foreach(text IN LISTS TEXTS)
    file(STRINGS ${LIBRARY} found REGEX "${text}")
    if(NOT found)
        message(FATAL_ERROR "${LIBRARY} does not hold \"${text}\"")
    endif()
endforeach()
