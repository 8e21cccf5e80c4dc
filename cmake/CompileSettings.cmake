include(${CMAKE_CURRENT_LIST_DIR}/Hardening.cmake)

option(VONETWORK_WARNINGS_AS_ERRORS "Treat compiler warnings as errors" OFF)

# The settings that every C++ target of this project shares.
function(vonetwork_compile_settings target)
    set_target_properties(${target} PROPERTIES
        CXX_STANDARD 17
        CXX_STANDARD_REQUIRED ON
        CXX_EXTENSIONS OFF
        UNITY_BUILD OFF) # unnamed namespaces of several sources have helpers of the same name
    if(MSVC)
        # Sources are UTF-8, which this compiler takes for the machine's code page otherwise.
        target_compile_options(${target} PRIVATE /W4 /utf-8)
    else()
        target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic)
    endif()
    if(VONETWORK_WARNINGS_AS_ERRORS)
        target_compile_options(${target} PRIVATE $<IF:$<CXX_COMPILER_ID:MSVC>,/WX,-Werror>)
    endif()
    vonetwork_harden(${target})
endfunction()

# The settings of a target that uses Qt: no keywords, no silent conversions between bytes and text.
function(vonetwork_qt_settings target)
    vonetwork_compile_settings(${target})
    set_target_properties(${target} PROPERTIES AUTOMOC ON)
    target_compile_definitions(${target} PRIVATE
        QT_NO_KEYWORDS QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII QT_NO_URL_CAST_FROM_STRING)
    # The milder form, which a project around may have chosen, is refused by Qt beside the strict one.
    target_compile_options(${target} PRIVATE -UQT_RESTRICTED_CAST_FROM_ASCII)
endfunction()
