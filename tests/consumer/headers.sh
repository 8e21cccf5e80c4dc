#!/bin/sh
# Compiles each installed header alone, with what is strict in Qt and in the compiler.
# Usage: headers.sh FOLDER COMPILER OPTION...   FOLDER is the one that hosts include from
set -eu
cd "$1"
shift
# As system headers, so that warnings of Qt's own do not count.
qt=$(pkg-config --cflags Qt5Core Qt5Network | sed 's/-I/-isystem /g')
macros="-DQT_NO_KEYWORDS -DQT_NO_FOREACH -DQT_NO_CAST_FROM_ASCII -DQT_NO_CAST_TO_ASCII
    -DQT_NO_CAST_FROM_BYTEARRAY -DQT_NO_URL_CAST_FROM_STRING -DQT_NO_JAVA_STYLE_ITERATORS
    -DQT_NO_NARROWING_CONVERSIONS_IN_CONNECT -DQT_STRICT_ITERATORS
    -DQT_DISABLE_DEPRECATED_BEFORE=0x060000"
warnings="-Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror"
find . -name '*.h' | xargs -P 2 -I {} \
    "$@" -fPIC $qt $macros $warnings -I . -fsyntax-only -include {} -x c++ /dev/null
