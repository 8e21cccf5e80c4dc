# Fails unless PAGE shows the file SOURCE, which is compiled, to the letter.
file(READ ${PAGE} page)
file(READ ${SOURCE} source)
string(FIND "${page}" "${source}" place)
if(place EQUAL -1)
    message(FATAL_ERROR "${PAGE} does not show ${SOURCE} as it is")
endif()
