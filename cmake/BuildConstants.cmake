# A variable that is set already is left alone, whether -D, the cache or the project around has set
# it. Before CMake 3.21 set(CACHE) would remove the variable of the project around.
macro(vonetwork_build_constant name standard description)
    if(NOT DEFINED ${name})
        set(${name} "${standard}" CACHE STRING "${description}")
    endif()
endmacro()

# The constants that a product build sets for its own service. The defaults point at the local one.
vonetwork_build_constant(VONETWORK_SERVICE_BASE_ADDRESS "https://localhost:8443"
    "Origin of the web service: https, a host, an optional port, no trailing slash")
vonetwork_build_constant(VONETWORK_AVATAR_STORAGE_HOST "localhost:8443"
    "Host that serves the stock avatar pictures")
vonetwork_build_constant(VONETWORK_DEVICE_ID_COMMAND "wmic csproduct get uuid"
    "Console command that prints the device identifier under its last word")

# The library makes addresses by plain concatenation, so this must be an origin and nothing more.
if(NOT VONETWORK_SERVICE_BASE_ADDRESS MATCHES "^https://[A-Za-z0-9.-]+(:[0-9]+)?$")
    message(FATAL_ERROR
        "VONETWORK_SERVICE_BASE_ADDRESS must be https://HOST or https://HOST:PORT, without a path "
        "or a trailing slash; it is \"${VONETWORK_SERVICE_BASE_ADDRESS}\".")
endif()

# The library compares the addresses of pictures to the letter. With anything else but a host here it
# would know no picture, without a word.
if(NOT VONETWORK_AVATAR_STORAGE_HOST MATCHES "^[A-Za-z0-9.-]+(:[0-9]+)?$")
    message(FATAL_ERROR
        "VONETWORK_AVATAR_STORAGE_HOST must be HOST or HOST:PORT, without a scheme, a path or a "
        "trailing slash; it is \"${VONETWORK_AVATAR_STORAGE_HOST}\".")
endif()

# Quotation marks and backslashes of the command are escaped for the text in C++.
string(REGEX REPLACE [[(["\\])]] [[\\\1]] VONETWORK_DEVICE_ID_COMMAND_LITERAL
    "${VONETWORK_DEVICE_ID_COMMAND}")
