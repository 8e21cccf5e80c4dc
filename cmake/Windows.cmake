# What differs for Windows. Elsewhere the functions do nothing.
if(WIN32)
    enable_language(RC)
endif()

# A program finds the DLLs that lie beside it, so all that is built comes to lie in one folder.
if(WIN32 AND VONETWORK_IS_TOP_LEVEL AND NOT CMAKE_RUNTIME_OUTPUT_DIRECTORY)
    set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
endif()

# Gives a program or a DLL the version and the description that Windows shows of it. The DLL has the same
# name whichever compiler makes it.
function(vonetwork_windows_resource target description)
    if(NOT WIN32)
        return()
    endif()
    get_target_property(kind ${target} TYPE)
    if(kind STREQUAL "EXECUTABLE")
        set(type VFT_APP)
        set(suffix ${CMAKE_EXECUTABLE_SUFFIX})
    else()
        set(type VFT_DLL)
        set(suffix ${CMAKE_SHARED_LIBRARY_SUFFIX})
        set_target_properties(${target} PROPERTIES PREFIX "")
    endif()
    string(REPLACE "." "," numbers ${PROJECT_VERSION})
    set(resource ${CMAKE_CURRENT_BINARY_DIR}/${target}.rc)
    configure_file(${PROJECT_SOURCE_DIR}/cmake/version.rc.in ${resource} @ONLY)
    target_sources(${target} PRIVATE ${resource})
endfunction()
