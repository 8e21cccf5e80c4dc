# Fails unless readelf finds in FILE everything that hardening gives.
function(expect what pattern)
    if(NOT output MATCHES "${pattern}")
        message(SEND_ERROR "${FILE} has no ${what}")
    endif()
endfunction()

execute_process(COMMAND ${READELF} --wide --file-header --program-headers --dynamic --dyn-syms ${FILE}
    OUTPUT_VARIABLE output)
expect("position independence" "Type: +DYN")
expect("read-only relocations" "GNU_RELRO")
expect("relocation before the start" "BIND_NOW|FLAGS_1.*NOW")
expect("stack protector" "__stack_chk_fail")
expect("checked functions of the C library" "__[a-z]+_chk")
