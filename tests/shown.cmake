# The source that a page shows is the one that is compiled.
file(READ ${PAGE} page)
file(READ ${SOURCE} source)
string(FIND "${page}" "${source}" place)
if(place EQUAL -1)
    message(FATAL_ERROR "${PAGE} does not show ${SOURCE} as it is")
endif()
