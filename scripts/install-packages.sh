#!/usr/bin/env bash
# Installs, on Debian 12, those of the named packages that are missing. As root or with sudo.
# Usage: scripts/install-packages.sh [build | test | check | docs | fuzz | pictures | benchmark | package | windows | PACKAGE ...]
#   build (the default)  for building and running everything
#   test                 build, the programs that the tests start, and ccache
#   check                build, and the tools that check the sources
#   docs                 what makes the documents
#   fuzz                 build, and clang with its run-time libraries
#   pictures             build, and what takes pictures of the desktop host
#   benchmark            build, libcurl, and the programs that measure and serve
#   package              build, and what makes and checks Debian packages
#   windows              build, and what compiles for Windows and runs what comes of it
set -euo pipefail

build=(g++ cmake ninja-build pkg-config qtbase5-dev libcpp-httplib-dev nlohmann-json3-dev
    libssl-dev flite1-dev libpocketsphinx-dev libsphinxbase-dev pocketsphinx-en-us libsndfile1-dev
    libsamplerate0-dev libsqlitecpp-dev libqrencode-dev openssl ca-certificates qtmultimedia5-dev
    qttools5-dev qttools5-dev-tools libqt5multimedia5-plugins)
test=(abigail-tools ccache fish iproute2 man-db mandoc nginx-light python3-httpbin gunicorn squid
    zbar-tools zsh)
check=(git clang clang-format clang-tidy-22 clazy valgrind libcurl4-openssl-dev g++-mingw-w64-x86-64-posix)
docs=(doxygen graphviz fonts-dejavu-core)
fuzz=(clang libclang-rt-dev)
pictures=(fonts-dejavu-core fonts-wqy-microhei xauth xvfb)
benchmark=(ccache iproute2 libcurl4-openssl-dev nginx-light python3 valgrind)
package=(ccache clang debootstrap dpkg-dev file lintian)
windows=(dpkg-dev g++-mingw-w64-x86-64-posix make patch perl wine wine64 xz-utils)

wanted=()
for name in "${@:-build}"; do
    case $name in
    build) wanted+=("${build[@]}") ;;
    test) wanted+=("${build[@]}" "${test[@]}") ;;
    check) wanted+=("${build[@]}" "${check[@]}") ;;
    docs) wanted+=("${docs[@]}") ;;
    fuzz) wanted+=("${build[@]}" "${fuzz[@]}") ;;
    pictures) wanted+=("${build[@]}" "${pictures[@]}") ;;
    benchmark) wanted+=("${build[@]}" "${benchmark[@]}") ;;
    package) wanted+=("${build[@]}" "${package[@]}") ;;
    windows) wanted+=("${build[@]}" "${windows[@]}") ;;
    -*)
        echo "usage: scripts/install-packages.sh [build | test | check | docs | fuzz | pictures | benchmark | package | windows | PACKAGE ...]" >&2
        exit 2
        ;;
    *) wanted+=("$name") ;;
    esac
done

fail() {
    echo "install-packages: $1" >&2
    exit 1
}

is_installed() { # PACKAGE
    [ "$(dpkg-query -W -f '${db:Status-Status}\n' "$1" 2>/dev/null | sort -u)" = installed ]
}

is_known() { # PACKAGE
    [ -n "$(apt-cache madison "$1" 2>/dev/null)" ]
}

as_root() {
    if [ "$(id -u)" = 0 ]; then
        "$@"
    else
        sudo "$@"
    fi
}

update() {
    [ -z "${updated:-}" ] || return 0
    updated=yes
    echo "install-packages: reading the package lists"
    as_root apt-get -qq update || fail "the package lists cannot be read"
}

install() {
    as_root env DEBIAN_FRONTEND=noninteractive apt-get -qq -y --no-install-recommends \
        -o Dpkg::Use-Pty=0 install "${missing[@]}" >/dev/null
}

command -v apt-get >/dev/null || fail "there is no apt-get; these must be there: ${wanted[*]}"
missing=()
for package in "${wanted[@]}"; do
    is_installed "$package" || missing+=("$package")
done
[ ${#missing[@]} -gt 0 ] || exit 0
[ "$(id -u)" = 0 ] || command -v sudo >/dev/null ||
    fail "run this as root, or install sudo; missing: ${missing[*]}"

for package in "${missing[@]}"; do
    is_known "$package" || update
done
echo "install-packages: installing ${missing[*]}"
if ! install; then
    # The lists may be older than the archive and name versions that are gone.
    [ -z "${updated:-}" ] || fail "cannot install ${missing[*]}"
    update
    install || fail "cannot install ${missing[*]}"
fi
