# Sourced by scripts that need the port of the built-in service address.

# Prints the service's base address in a build folder.
base_address() { # BUILD
    sed -n 's/^VONETWORK_SERVICE_BASE_ADDRESS:[A-Z]*=//p' "$1/CMakeCache.txt"
}

# Succeeds when something listens on the port of this machine.
is_taken() { # PORT
    (exec 3<>"/dev/tcp/127.0.0.1/$1") 2>/dev/null
}
