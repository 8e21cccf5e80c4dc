# What a product build sets for its own service; the defaults point at the local service.
set(VONETWORK_SERVICE_BASE_ADDRESS "https://localhost:8443"
    CACHE STRING "Origin of the web service: https, a host, an optional port, no trailing slash")
set(VONETWORK_AVATAR_STORAGE_HOST "localhost:8443"
    CACHE STRING "Host that serves the stock avatar pictures")
set(VONETWORK_DEVICE_ID_COMMAND "wmic csproduct get uuid"
    CACHE STRING "Console command that prints the device identifier under its last word")

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
