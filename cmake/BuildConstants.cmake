# A variable that is there already is obeyed, whether -D, the cache or the project around has set it:
# set(CACHE) would remove the caller's own under the rules of CMake before 3.21.
macro(vonetwork_build_constant name standard description)
    if(NOT DEFINED ${name})
        set(${name} "${standard}" CACHE STRING "${description}")
    endif()
endmacro()

# What a product build sets for its own service; the defaults point at the local service.
vonetwork_build_constant(VONETWORK_SERVICE_BASE_ADDRESS "https://localhost:8443"
    "Origin of the web service: https, a host, an optional port, no trailing slash")
vonetwork_build_constant(VONETWORK_AVATAR_STORAGE_HOST "localhost:8443"
    "Host that serves the stock avatar pictures")
vonetwork_build_constant(VONETWORK_DEVICE_ID_COMMAND "wmic csproduct get uuid"
    "Console command that prints the device identifier under its last word")

# Request addresses are made by plain concatenation, so the origin must be one and nothing more.
if(NOT VONETWORK_SERVICE_BASE_ADDRESS MATCHES "^https://[A-Za-z0-9.-]+(:[0-9]+)?$")
    message(FATAL_ERROR
        "VONETWORK_SERVICE_BASE_ADDRESS must be https://HOST or https://HOST:PORT, without a path "
        "or a trailing slash; it is \"${VONETWORK_SERVICE_BASE_ADDRESS}\".")
endif()

# Compared to the letter; with anything else no picture would ever be known, and nobody told.
if(NOT VONETWORK_AVATAR_STORAGE_HOST MATCHES "^[A-Za-z0-9.-]+(:[0-9]+)?$")
    message(FATAL_ERROR
        "VONETWORK_AVATAR_STORAGE_HOST must be HOST or HOST:PORT, without a scheme, a path or a "
        "trailing slash; it is \"${VONETWORK_AVATAR_STORAGE_HOST}\".")
endif()

# A command may hold quotation marks and backslashes; this is how C++ spells them.
string(REGEX REPLACE [[(["\\])]] [[\\\1]] VONETWORK_DEVICE_ID_COMMAND_LITERAL
    "${VONETWORK_DEVICE_ID_COMMAND}")
