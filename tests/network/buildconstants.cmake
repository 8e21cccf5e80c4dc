# Tries values that a product build may set for the library's constants, and reports every row that
# is not taken or refused as it says.

function(configure_with variable value)
    execute_process(
        COMMAND ${CMAKE_COMMAND} "-D${variable}=${value}" -P ${ROOT}/cmake/BuildConstants.cmake
        RESULT_VARIABLE status ERROR_VARIABLE message OUTPUT_QUIET)
    set(status ${status} PARENT_SCOPE)
    set(message "${message}" PARENT_SCOPE)
endfunction()

function(accepts variable)
    foreach(value IN LISTS ARGN)
        configure_with(${variable} "${value}")
        if(NOT status EQUAL 0)
            message(SEND_ERROR "${variable} does not take \"${value}\": ${message}")
        endif()
    endforeach()
endfunction()

function(refuses variable)
    foreach(value IN LISTS ARGN)
        configure_with(${variable} "${value}")
        if(status EQUAL 0 OR NOT message MATCHES "${variable}[ \n]+must[ \n]+be")
            message(SEND_ERROR "${variable} is not refused as \"${value}\": ${message}")
        endif()
    endforeach()
endfunction()

accepts(VONETWORK_SERVICE_BASE_ADDRESS
    https://api.example.com
    https://localhost:8443
    https://127.0.0.1)
refuses(VONETWORK_SERVICE_BASE_ADDRESS
    http://api.example.com
    ftp://api.example.com
    api.example.com
    https://
    https://api.example.com/
    https://api.example.com/v1
    https://api.example.com?a=b
    "https://api.example.com#a"
    https://user@api.example.com
    https://api.example.com:
    https://api.example.com:https
    "https://api example.com"
    "")
accepts(VONETWORK_AVATAR_STORAGE_HOST
    files.example.com
    localhost:8443
    127.0.0.1)
refuses(VONETWORK_AVATAR_STORAGE_HOST
    https://files.example.com
    files.example.com/
    files.example.com/pictures
    user@files.example.com
    files.example.com:
    files.example.com:https
    "files example com"
    "")

# The variables are plain ones here, as a project around this one sets them.
function(obeys_plain_variables)
    set(VONETWORK_SERVICE_BASE_ADDRESS https://api.example.com)
    set(VONETWORK_AVATAR_STORAGE_HOST files.example.com)
    set(VONETWORK_DEVICE_ID_COMMAND "newid get id")
    include(${ROOT}/cmake/BuildConstants.cmake)
    set(all "${VONETWORK_SERVICE_BASE_ADDRESS} ${VONETWORK_AVATAR_STORAGE_HOST} ${VONETWORK_DEVICE_ID_COMMAND}")
    if(NOT all STREQUAL "https://api.example.com files.example.com newid get id")
        message(SEND_ERROR "Plain variables are not obeyed: ${all}")
    endif()
endfunction()
obeys_plain_variables()

# The constant has to be the command, whatever characters that is made of.
function(spells_command command)
    set(VONETWORK_DEVICE_ID_COMMAND "${command}")
    include(${ROOT}/cmake/BuildConstants.cmake)
    configure_file(${ROOT}/network/buildconstants.h.in ${FOLDER}/buildconstants.h @ONLY)
    file(WRITE ${FOLDER}/compare.cpp
        "#include \"buildconstants.h\"\n"
        "#include <string_view>\n"
        "static_assert(std::string_view(BuildConstants::deviceIdCommand) == R\"~(${command})~\");\n")
    execute_process(COMMAND ${COMPILER} -std=c++17 -fsyntax-only ${FOLDER}/compare.cpp
        RESULT_VARIABLE status)
    if(NOT status EQUAL 0)
        message(SEND_ERROR "The constant is not ${command}")
    endif()
endfunction()
if(COMPILER)
    spells_command("wmic csproduct get uuid")
    spells_command([[sh -c "cat /etc/machine-id"]])
    spells_command([[C:\tools\newid.exe csproduct get uuid]])
    spells_command([["C:\new tools\id.exe" get uuid]])
    spells_command([[powershell -Command "(Get-CimInstance Win32_ComputerSystemProduct).UUID"]])
endif()
