# Fills the header of the build's constants and has the compiler compare the command in it.
include(${ROOT}/cmake/BuildConstants.cmake)
configure_file(${ROOT}/network/buildconstants.h.in ${FOLDER}/buildconstants.h @ONLY)
file(WRITE ${FOLDER}/compare.cpp
    "#include \"buildconstants.h\"\n"
    "#include <string_view>\n"
    "static_assert(std::string_view(BuildConstants::deviceIdCommand)\n"
    "              == R\"~(${VONETWORK_DEVICE_ID_COMMAND})~\");\n")
execute_process(COMMAND ${COMPILER} -std=c++17 -fsyntax-only ${FOLDER}/compare.cpp
    RESULT_VARIABLE result)
if(NOT result EQUAL 0)
    message(FATAL_ERROR "The constant is not ${VONETWORK_DEVICE_ID_COMMAND}")
endif()
