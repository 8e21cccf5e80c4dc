#!/bin/sh
# Builds and runs a host with what pkg-config says of the library that is installed.
# Usage: pkg-config.sh COMPILER FOLDER PKGCONFIG   FOLDER has main.cpp and gets the program, PKGCONFIG
#                                                  has vonetwork.pc
set -eu
export PKG_CONFIG_PATH="$3"
# Debian's Qt asks for -fPIC; its CMake files pass it, those of pkg-config do not.
"$1" -std=c++17 -fPIC "$2/main.cpp" -o "$2/pkg-config-host" $(pkg-config --cflags --libs vonetwork)
LD_LIBRARY_PATH=$(pkg-config --variable=libdir vonetwork) exec "$2/pkg-config-host"
