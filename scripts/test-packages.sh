#!/usr/bin/env bash
# Builds the Debian packages, installs them in a fresh Debian 12, runs vospeak, vodesk and the local
# service there, removes the packages again, and fails if anything of them is left. Needs root, the network and
# 1 GB. Besides the build it takes about three minutes, most of them for the fresh root with the
# dependencies; that is kept in build/package/root, and then it takes a minute.
set -euo pipefail
cd "$(dirname "$0")/.."
[ "$(id -u)" = 0 ] || { echo "test-packages: only root can make a fresh root" >&2; exit 1; }
scripts/packages.sh

root=$PWD/build/package/root
packages=(libvonetwork1 libvonetwork-dev vospeak vodesk vo-localservice)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

step() { echo "== $1 (after $SECONDS s)"; }

inside() {
    env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/tmp LC_ALL=C.UTF-8 DEBIAN_FRONTEND=noninteractive \
        "${network[@]}" chroot "$root" "$@"
}
network=()

put_packages() {
    rm -rf "$root/packages"
    cp -r build/package/packages "$root/packages"
}

# What is needed besides the packages themselves, so that removing them leaves what was there before.
install_dependencies() {
    local own dependencies
    own=$(IFS='|'; echo "${packages[*]}")
    mapfile -t dependencies < <(
        inside sh -c 'apt-get -s --no-install-recommends install /packages/*.deb' |
            awk -v own="^($own)\$" '$1 == "Inst" && $2 !~ own { print $2 }')
    [ ${#dependencies[@]} = 0 ] ||
        inside apt-get -qq -y --no-install-recommends install "${dependencies[@]}" >"$work/log" 2>&1 ||
        { cat "$work/log" >&2; exit 1; }
}

# The local service answers vospeak at the address that the packages are built for.
converse() {
    local network=("$PWD/tests/own-network.sh")
    inside bash -euc '
        coproc vo-localservice --data /tmp/service 2>/tmp/requests
        trap "kill $COPROC_PID; wait; rm -r /tmp/service /tmp/requests" EXIT
        read -r -t 60 line <&"${COPROC[0]}"
        vospeak voices --ca /tmp/service/tls/authority.pem'
}

# dpkg rewrites its own lists and logs; what it knows of single packages counts.
all_files() {
    find "$root" -xdev \( -path "$root/var/log" -o -path "$root/var/cache" -o -path "$root/packages" \) \
        -prune -o ! -path "$root/var/lib/dpkg/*-old" -printf '%y %P -> %l\n' | sort
}

if [ ! -e "$root" ]; then
    step "fresh root"
    rm -rf "$root.new"
    debootstrap --variant=minbase bookworm "$root.new" >"$work/log" || { cat "$work/log" >&2; exit 1; }
    echo "127.0.0.1 localhost" >"$root.new/etc/hosts"
    mv "$root.new" "$root"
fi
put_packages
inside dpkg --purge "${packages[@]}" >/dev/null 2>&1 # an earlier run may have ended before that
step "dependencies"
install_dependencies
all_files >"$work/before"

step "install"
inside sh -c 'dpkg --install /packages/*.deb' >"$work/log" 2>&1 || { cat "$work/log" >&2; exit 1; }
step "run"
inside vospeak --version
inside vospeak --help >"$work/help"
inside sh -euc '
    export QT_QPA_PLATFORM=offscreen XDG_RUNTIME_DIR=/tmp/session # as a desktop session has one
    mkdir -m 700 $XDG_RUNTIME_DIR
    vodesk --version
    rmdir $XDG_RUNTIME_DIR'
converse
cp tests/consumer/project/main.cpp "$work"
tests/consumer/pkg-config.sh c++ "$work" "$(dirname "$root"/usr/lib/*/pkgconfig/vonetwork.pc)"

step "compile each header alone"
for compiler in g++ clang++; do
    for options in -std=c++17 -std=c++20 -std=c++2b "-fno-exceptions -fno-rtti -std=c++17"; do
        tests/consumer/headers.sh "$root/usr/include/vonetwork" $compiler $options
    done
done

step "remove"
inside dpkg --purge "${packages[@]}" >/dev/null
all_files >"$work/after"
diff "$work/before" "$work/after"
if inside ldconfig -p | grep -i vonetwork; then
    exit 1
fi
echo "== nothing is left (after $SECONDS s)"
