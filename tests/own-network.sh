#!/bin/sh
# Runs a program in a network of its own that has nothing but the loopback, so that all its ports are
# free. Only root may do so on every system; it fails for others.
# Usage: own-network.sh PROGRAM [ARGUMENT ...]
exec unshare --net sh -c 'ip link set lo up && exec "$@"' sh "$@"
