include(CheckPIESupported)

option(VONETWORK_HARDENING
    "Make faults of memory harder to exploit: stack protector, checked C functions, read-only relocations, PIE"
    OFF)
if(VONETWORK_HARDENING)
    check_pie_supported(LANGUAGES CXX)
endif()

# Hardens a target built by gcc or clang. The checked C functions need an optimising build.
function(vonetwork_harden target)
    if(NOT VONETWORK_HARDENING OR NOT UNIX)
        return()
    endif()
    set_target_properties(${target} PROPERTIES POSITION_INDEPENDENT_CODE ON)
    target_compile_options(${target} PRIVATE
        -fstack-protector-strong
        $<$<NOT:$<CONFIG:Debug>>:-U_FORTIFY_SOURCE$<SEMICOLON>-D_FORTIFY_SOURCE=2>)
    if(NOT APPLE)
        target_link_options(${target} PRIVATE "LINKER:-z,relro,-z,now")
    endif()
endfunction()
