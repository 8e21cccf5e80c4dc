# The host that the README shows is the one that is compiled.
file(READ ${ROOT}/README.md readme)
file(READ ${ROOT}/examples/minimal/main.cpp host)
string(FIND "${readme}" "${host}" place)
if(place EQUAL -1)
    message(FATAL_ERROR "README.md does not show examples/minimal/main.cpp as it is")
endif()
