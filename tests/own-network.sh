#!/bin/sh
# Runs a program in a network of its own that has nothing but the loopback, so that all ports are free
# there. Fails for a user who may not make such a network; root may on every system.
# Usage: own-network.sh PROGRAM [ARGUMENT ...]
exec unshare --net sh -c 'ip link set lo up && exec "$@"' sh "$@"
