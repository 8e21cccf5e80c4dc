#!/usr/bin/env bash
# Shows VoNetwork at work on this machine: builds vospeak, vodesk and the local service, signs in, lists
# voices, music and updates, speaks a sentence and recognises it again, in one reply and as a task,
# and compares. Keeps the audio in demo-output/. For a fresh Debian 12, as root or with sudo.
# VOSPEAK in the environment is another program to take in the place of vospeak.
set -euo pipefail
export LC_ALL=C.UTF-8
cd "$(dirname "$0")/.."
. scripts/service-port.sh

sentence="Go forward ten meters."
phone=+447700900123 # of a range that is kept for examples
build=build/gcc
vospeak=${VOSPEAK:-$build/examples/cli/vospeak}
localservice=$build/localservice/vo-localservice
programs=(vo-localservice)
[ -n "${VOSPEAK:-}" ] || programs+=(vospeak vodesk)
output=demo-output
work=$(mktemp -d)
export XDG_CONFIG_HOME=$work/config # the user's own session is left alone
service_pid=

finish() {
    local status=$?
    trap - EXIT
    if [ -n "$service_pid" ]; then
        kill "$service_pid" 2>/dev/null || true
        wait "$service_pid" 2>/dev/null || true
    fi
    rm -rf "$work"
    exit "$status"
}
trap finish EXIT
trap 'exit 130' INT
trap 'exit 143' TERM

fail() {
    echo "demo: $1" >&2
    exit 1
}

# Runs a command and says how long it took. Its output is shown only when it fails.
step() { # TEXT COMMAND...
    local text=$1 begin=${EPOCHREALTIME//./} took
    shift
    printf '  %-60s' "$text"
    if ! "$@" >"$work/out" 2>"$work/log"; then
        printf '  failed\n'
        cat "$work/out" "$work/log" >&2
        exit 1
    fi
    took=$(((${EPOCHREALTIME//./} - begin) / 10000))
    printf '%5d.%02d s\n' $((took / 100)) $((took % 100))
}

# Shows the output of the last step.
show_last() { sed 's/^/      /' "$work/out"; }

configure() { cmake --preset gcc; }

build() { cmake --build --preset gcc --target "${programs[@]}"; }

# Returns when the service says that it listens.
start_service() {
    local line
    # The service's descriptors are copied, because bash closes them as soon as the service ends.
    coproc "$localservice" --port "$port" --data "$work/data" 2>"$work/service.log"
    service_pid=$!
    exec {service_out}<&"${COPROC[0]}"
    if ! read -r -t 60 line <&"$service_out"; then
        cat "$work/service.log"
        return 1
    fi
    authority=${line##*, authority }
}

# The service prints a line with the code that it would send to the phone.
code_from_service() {
    local line
    while read -r -t 60 line <&"$service_out"; do
        if [[ $line == *": SMS to $phone: "* ]]; then
            line=${line##*"$phone: "}
            echo "${line%% *}"
            return
        fi
    done
    echo "the service sent no code" >&2
    return 1
}

# The service sends the code while vospeak waits for it to be entered.
sign_in() { code_from_service | "$vospeak" login --sms "$phone" --ca "$authority"; }

list() { # COMMAND
    "$vospeak" "$1" --ca "$authority"
}

say() { # FILE [OPTION]
    "$vospeak" say "$sentence" -o "$1" --ca "$authority" "${@:2}"
}

hear() { # FILE [OPTION]
    "$vospeak" recognize "$1" --ca "$authority" "${@:2}" >"$work/text"
}

# Compares without case and punctuation, which cannot be heard.
words() { tr '[:upper:]' '[:lower:]' | tr -cs "a-z'\n" ' ' | sed 's/^ *//; s/ *$//'; }

compare() { # FILE
    local heard
    heard=$(<"$work/text")
    if [ "$(words <<<"$heard")" != "$(words <<<"$sentence")" ]; then
        {
            echo "demo: the sentence that was recognised is not the one that was spoken"
            echo "  spoken:      $sentence"
            echo "  recognised:  $heard"
            echo "  audio:       $1"
        } >&2
        exit 1
    fi
    printf '      spoken      %s\n      recognised  %s\n      the same; the audio is in %s (%d bytes)\n' \
        "$sentence" "$heard" "$1" "$(stat -c %s "$1")"
}

echo "Building"
step "install what is missing" scripts/install-packages.sh build
step "configure ($build)" configure
step "build ${programs[*]}" build

address=$(base_address "$build")
[[ $address =~ ^https://localhost:([0-9]+)$ ]] ||
    fail "the library in $build is built for $address, not for a service on this machine"
port=${BASH_REMATCH[1]}
! is_taken "$port" || fail "port $port of this machine is taken; end what listens there and try again"

echo "Starting"
step "start the local service at $address" start_service
mkdir -p "$output"

echo "Signing in"
step "ask for a code, enter it" sign_in
show_last

echo "What there is"
for command in voices music update; do
    step "$command" list "$command"
    show_last
done

echo "At once"
step "speak" say "$output/short.wav"
step "upload and recognise" hear "$output/short.wav"
compare "$output/short.wav"

echo "As tasks"
step "speak: queue, wait, fetch the audio" say "$output/long.wav" --long
step "upload and recognise: queue, wait" hear "$output/long.wav" --long
compare "$output/long.wav"

echo "Done: every sentence came back as it was spoken."
echo "The same in a window: $build/examples/desktop/vodesk (it can start the local service itself)"
