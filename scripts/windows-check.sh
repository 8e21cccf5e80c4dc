#!/usr/bin/env bash
# Compiles the libraries and the examples for Windows with MinGW-w64 and the headers of this machine's
# Qt, warnings as errors, and checks what the DLL would export. Nothing is linked or run; that is
# scripts/windows.sh.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-packages.sh check
. scripts/compiler-cache.sh

build=build/windows-check
cmake --preset windows-check >/dev/null
cmake --build --preset windows-check

# The names that the directives in objects have the linker export, as they stand in sources.
directed_names() { # OBJECT...
    local object
    for object; do
        x86_64-w64-mingw32-objcopy -O binary --only-section=.drectve \
            --set-section-flags .drectve=alloc "$object" "$build/directives"
        tr ' ' '\n' <"$build/directives"
    done | sed -n 's/^-export:"\([^"]*\)".*/\1/p' | c++filt | sort -u
}

# The names that the shared library exports elsewhere. With MinGW classes are exported whole: the
# private function of the meta-object is added, and the names of types are in every module.
expected_names() {
    sed -n "s/.*<elf-symbol name='\([^']*\)'.*/\1/p" tests/abi/library.xml | c++filt |
        grep -v '^typeinfo name for '
    for class in VoNetwork VoNetworkIntf VoNetworker; do
        echo "$class::qt_static_metacall(QObject*, QMetaObject::Call, int, void**)"
    done
}

mapfile -t objects < <(find "$build/network/CMakeFiles/VoNetwork.dir" -name '*.obj')
if ! diff <(expected_names | sort -u) <(directed_names "${objects[@]}"); then
    echo "windows-check: the library would not export what it exports elsewhere (<)" >&2
    exit 1
fi
mapfile -t objects < <(find "$build/http/CMakeFiles/VoHttp.dir" -name '*.obj')
if ! diff /dev/null <(directed_names "${objects[@]}"); then
    echo "windows-check: the toolkit would be exported" >&2
    exit 1
fi
