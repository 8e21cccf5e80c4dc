#!/usr/bin/env bash
# Makes, in the folder given: authority.pem; localhost.pem and localhost.key (for localhost and
# 127.0.0.1, signed by the authority); elsewhere.pem and elsewhere.key (signed by it for another
# name); commonname.pem and commonname.key (signed by it for localhost, without alternative names);
# stranger.pem and stranger.key (for localhost, signed by themselves).
set -euo pipefail
folder=$1
mkdir -p "$folder"
cd "$folder"

new_key=(-newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes)

openssl req -x509 "${new_key[@]}" -keyout authority.key -out authority.new -days 30 \
    -subj "/CN=Test authority" -addext "basicConstraints=critical,CA:TRUE" \
    -addext "keyUsage=critical,keyCertSign" 2>/dev/null

sign() { # NAME COMMON-NAME EXTENSION
    openssl req "${new_key[@]}" -keyout "$1.key" -out "$1.csr" -subj "/CN=$2" 2>/dev/null
    openssl x509 -req -in "$1.csr" -CA authority.new -CAkey authority.key -CAcreateserial -days 30 \
        -extfile <(echo "$3") -out "$1.pem" 2>/dev/null
    rm "$1.csr"
}
sign localhost localhost "subjectAltName=DNS:localhost,IP:127.0.0.1"
sign elsewhere elsewhere "subjectAltName=DNS:elsewhere.example"
sign commonname localhost "keyUsage=digitalSignature"
openssl req -x509 "${new_key[@]}" -keyout stranger.key -out stranger.pem -days 30 \
    -subj "/CN=localhost" -addext "subjectAltName=DNS:localhost,IP:127.0.0.1" 2>/dev/null

rm authority.key
mv authority.new authority.pem # last: the build takes it as the sign that all is there
