#!/usr/bin/env bash
# Builds the library, vospeak and the tests for Windows with MinGW-w64, and runs them with Wine: the
# demonstration against the local service of this machine, then the tests. For Debian 12, as root or
# with sudo. OpenSSL and Qt are built once from Debian's sources, which takes a quarter of an
# hour on two idle cores, and are kept in build/windows; what is finished there is not done again.
set -euo pipefail
export LC_ALL=C.UTF-8
cd "$(dirname "$0")/.."

target=x86_64-w64-mingw32
work=$PWD/build/windows
sources=$work/sources # of Qt and of OpenSSL
root=$work/root       # where both are installed
bin=$work/project/bin # all that is built of this project
jobs=$(nproc)

fail() {
    echo "windows: $1" >&2
    exit 1
}

# Runs a function and says how long it took. Its output is in build/windows/log/NAME.
step() { # NAME [ARGUMENT...]
    local log=$work/log/$1 begin=$SECONDS
    mkdir -p "$work/log"
    printf '  %-40s' "$1"
    # A function within a condition is not ended by its first failure; a shell of its own is.
    set +e
    (set -e; "$@") >"$log" 2>&1
    local status=$?
    set -e
    if [ "$status" != 0 ]; then
        printf '  failed\n'
        tail -n 40 "$log" >&2
        fail "step $1 failed; all of its output is in $log"
    fi
    printf '%4d:%02d min\n' $(((SECONDS - begin) / 60)) $(((SECONDS - begin) % 60))
}

# The same for a step that has not been finished yet.
once() { # NAME [ARGUMENT...]
    if [ ! -e "$work/finished/$1" ]; then
        step "$@"
        mkdir -p "$work/finished"
        touch "$work/finished/$1"
    fi
}

packages() { scripts/install-packages.sh windows; }

# Debian's source packages, by a list of sources beside the machine's own.
apt_source() { # ARGUMENT...
    apt-get -o Dir::Etc::SourceList="$work/apt/deb-src.sources" -o Dir::Etc::SourceParts=- \
        -o Dir::State::Lists="$work/apt/lists" -o APT::Sandbox::User=root "$@"
}

package_lists() {
    mkdir -p "$work/apt/lists"
    sed 's/^Types:.*/Types: deb-src/' /etc/apt/sources.list.d/debian.sources >"$work/apt/deb-src.sources"
    apt_source update
}

# OpenSSL as its makers publish it: Debian's own changes are for Debian.
fetch_openssl() {
    mkdir -p "$sources/openssl"
    cd "$sources"
    apt_source source --download-only --tar-only openssl
    tar -xf openssl_*.orig.tar.gz --strip-components=1 -C openssl
}

fetch_qt() {
    mkdir -p "$sources"
    cd "$sources"
    apt_source source --download-only qtbase-opensource-src
    rm -rf qtbase
    dpkg-source --no-check -x qtbase-opensource-src_*.dsc qtbase
    sed -i '/^QMAKE_CFLAGS_OPTIMIZE/s/-O[23]/-O1/' qtbase/mkspecs/common/gcc-base.conf # compiles sooner
}

# Wine never tells of a connection that was refused or reset while a program had no events of its socket
# selected. Qt selects none after each event, and all again a little later; this Qt then looks for itself.
patch_qt() {
    patch --forward --directory="$sources/qtbase" --strip=1 <scripts/windows-sockets.patch
    rm -f "$work/finished/qt_core" # one without it
}

# Only the libraries, and only what TLS takes.
openssl() {
    cd "$sources/openssl"
    ./Configure mingw64 shared no-tests no-engine no-legacy no-comp no-cms no-ts no-ct no-srp \
        --cross-compile-prefix=$target- --prefix="$root" --libdir=lib
    make -j "$jobs" build_libs
    make install_dev
}

configure_qt() {
    rm -rf "$work/qt"
    mkdir -p "$work/qt"
    cd "$work/qt"
    "$sources/qtbase/configure" -xplatform win32-g++ -device-option CROSS_COMPILE=$target- \
        -external-hostbindir /usr/lib/qt5/bin -prefix "$root" -release -shared -pch -silent \
        -opensource -confirm-license \
        -openssl-linked -I "$root/include" -L "$root/lib" \
        OPENSSL_LIBS="-L$root/lib -lssl -lcrypto -lws2_32 -lcrypt32" \
        -no-dbus -no-opengl -no-vulkan -no-widgets -no-feature-sql -no-feature-xml \
        -no-feature-accessibility -no-feature-concurrent \
        -qt-zlib -qt-pcre -qt-doubleconversion -qt-libpng -no-libjpeg -qt-freetype -qt-harfbuzz \
        -no-icu -no-glib -nomake examples -nomake tests -nomake tools
}

qt_makefiles() { make -C "$work/qt" sub-src-qmake_all; }

# A folder of Qt's sources. A plain make would build tools for this machine that nobody needs.
qt() { # FOLDER...
    local folder
    for folder; do
        make -C "$work/qt/src/$folder" -f Makefile.Release -j "$jobs"
        make -C "$work/qt/src/$folder" -f Makefile.Release install
    done
}
qt_core() { qt 3rdparty/pcre2 winmain corelib; }
qt_network() { qt network; }
qt_test() { qt testlib; }
qt_gui() { qt 3rdparty/libpng 3rdparty/freetype 3rdparty/harfbuzz-ng gui; }

# CMake is to find this machine's programs of Qt, and the description of the compiler.
qt_for_cmake() {
    mkdir -p "$root/mkspecs"
    cp -r "$sources"/qtbase/mkspecs/{common,features,win32-g++} "$root/mkspecs"
    ln -sf /usr/lib/qt5/bin/{moc,rcc,qmake} "$root/bin"
}

build() {
    cmake --preset windows
    cmake --build --preset windows
}

# The DLLs that are deployed with a program, beside it.
dlls() {
    local name
    cp -u "$root"/bin/*.dll "$bin"
    for name in libstdc++-6 libgcc_s_seh-1 libwinpthread-1; do
        cp -u "$($target-g++-posix -print-file-name=$name.dll)" "$bin"
    done
}

# Programs of Qt write what they log to a debugger, unless they are told otherwise. Variables of that
# name do not get through to them from outside.
wine_prefix() {
    wineboot --init
    wine reg add 'HKCU\Environment' /v QT_FORCE_STDERR_LOGGING /d 1 /f
}

# All programs of Wine have the network of its server, which is started anew within the right one. Wine's
# services have the output of the program that starts them, and whoever reads that waits for their end; so
# nobody reads what wineboot, the first, has to say.
in_network() { # COMMAND...
    local own_network=tests/own-network.sh
    wineserver --kill || true
    $own_network true 2>/dev/null || own_network=
    $own_network sh -c 'wineboot </dev/null >/dev/null 2>&1 && exec "$@"' sh "$@"
}

demonstration() {
    printf '#!/bin/sh\nexec wine %q "$@"\n' "$bin/vospeak.exe" >"$work/vospeak"
    chmod +x "$work/vospeak"
    VOSPEAK=$work/vospeak in_network scripts/demo.sh
}

tests() { in_network ctest --preset windows -j "$jobs"; }

echo "What is needed"
step packages
once package_lists
once fetch_openssl
once fetch_qt
once patch_qt
once openssl
once configure_qt
once qt_makefiles
once qt_core
once qt_network
once qt_test
once qt_gui
once qt_for_cmake

echo "VoNetwork"
. scripts/compiler-cache.sh
step build
step dlls

echo "Run by Wine"
export WINEPREFIX=$work/wine WINEDEBUG=-all
once wine_prefix
step demonstration
sed 's/^/      /' "$work/log/demonstration"
step tests
tail -n 20 "$work/log/tests" | sed 's/^/      /'
