# Installs what is built in BUILD, moves it to FOLDER, and fails unless it is what installed.txt lists
# for a LIBDIR, a VERSION and a CONFIG.
file(REMOVE_RECURSE ${FOLDER} ${FOLDER}.at-first)
execute_process(COMMAND ${CMAKE_COMMAND} --install ${BUILD} --prefix ${FOLDER}.at-first
    RESULT_VARIABLE failed OUTPUT_QUIET)
if(failed)
    message(FATAL_ERROR "cmake --install: ${failed}")
endif()
file(RENAME ${FOLDER}.at-first ${FOLDER})

file(GLOB_RECURSE files RELATIVE ${FOLDER} ${FOLDER}/*)
list(SORT files)
list(JOIN files "\n" files)
file(READ ${CMAKE_CURRENT_LIST_DIR}/installed.txt expected)
string(REGEX REPLACE "^(#[^\n]*\n)+" "" expected "${expected}")
string(CONFIGURE "${expected}" expected @ONLY)
if(NOT "${files}\n" STREQUAL expected)
    message(FATAL_ERROR "this is installed:\n${files}\nand not:\n${expected}")
endif()
