#!/usr/bin/env bash
# Tests the bridge to the official flash tool. A stand-in plays that tool and records its call.
# shellcheck disable=SC2016,SC2088 # what stands in single quotes is for other shells
set -euo pipefail

sources=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
failed=0
root=$(cd "$(mktemp -d)" && pwd -P)
trap 'rm -rf "$root"' EXIT
bridge=usr/lib/quillstone/bridge/esptool

# Begins a case, in a new folder with the bridge installed, an image, a home folder, and a search
# path of "usr/bin", "later" and what the scripts need.
machine() {
    name=$1
    cd / && rm -rf "$root" && mkdir "$root" && cd "$root"
    mkdir -p {home,later,system,usr/bin,usr/lib/quillstone/bridge}
    local tool
    for tool in mv sed sh tail tr; do
        ln -s "$(type -P "$tool")" system
    done
    cp "$sources/bridge/esptool" $bridge
    : >-f
}

script() {
    mkdir -p "$(dirname "$1")"
    printf '#!/bin/sh -e\n%s\n' "$2" >"$1"
    chmod +x "$1"
}

# official PLACE [VERSION]: a stand-in that records its arguments and ends with 7.
official() {
    script "$1" "version=${2:-4.7.0}; "'[ "$2" != esptool ] || shift 2
        [ "$1" != version ] || { printf "esptool v%s\n" $version; echo $version; exit; }
        printf "%s\0" "$@" >~/call.new; mv ~/call.new ~/call; exit 7'
}

# Runs a command. Sets `status` and `errors`, and `call` to the official tool's arguments.
run() {
    status=0 call=()
    errors=$(timeout 60 env HOME="$root/home" PATH="$root/usr/bin:$root/later:$root/system" "$@" \
        2>&1 >/dev/null) ||
        status=$?
    [[ ! -e home/call ]] || mapfile -d '' -t call <home/call
}

# same ACTUAL EXPECTED
same() {
    [[ $1 != "$2" ]] || return 0
    printf '%s: %q instead of %q\n' "$name" "$1" "$2"
    failed=1
}

# calls NAME VERSION RESET BEFORE COMMAND: the official tool gets all images, in order.
calls() {
    local version=$2 reset=$3 command=() image
    local wanted=(--port /dev/p --baud 9600 --before "${@:4:2}")
    [[ $5 != *-* ]] || wanted=(--verbose "${wanted[@]}")
    machine "the call for $1"
    official usr/bin/esptool "$version"
    for image in "a b" $'\'"$x`*\\n' $'n\nl\r' $'@\xFF\xE3\x83' $'\n' {6..10}; do
        wanted+=("${#wanted[@]}" "$root/$image")
        command+=(-ca "$((${#wanted[@]} - 2))" -cf "$root/$image")
    done
    run "$bridge" -vv ${reset:+-cd "$reset"} -cb 9600 -cp /dev/p "${command[@]}"
    same "$status: ${call[*]@Q}" "7: ${wanted[*]@Q}"
}
calls "no reset" 4.7.0 "" default_reset write_flash
calls "the start values" 4.7.0 ck default_reset write_flash
calls "reset none" 4.7.0 none no_reset write_flash
calls "reset none, version 5" 5.0.2 none no-reset write-flash
calls "reset wifio, version 10" 10.0 wifio default-reset write-flash
calls "another reset" 4.7.0 usb_reset usb_reset write_flash

# refused NAME MESSAGE COMMAND...: the command ends with 2 and this one line, and changes no file.
refused() {
    local message=$2 before
    machine "$1"
    official usr/bin/esptool
    before=$(ls -AR)
    run "${@:3}"
    same "$status, ${errors#*: }" "2, $message"
    same "$(ls -AR)" "$before"
}
refused "no image" "no image to write" "$bridge" -vv -cd ck
refused "an unknown option" "unknown option: -x" "$bridge" -ca 1 -cf f -x
refused "an address alone" "address without a file: 1" "$bridge" -ca 1
refused "a file alone" "file without an address: a b" "$bridge" -cf $'a\nb'
refused "an empty address" "no value after -ca" "$bridge" -ca -cf f
refused "a value that begins with @" "no value after -ca" "$bridge" -ca @a -cf f

# finds NAME PLACE EXPECTED SETUP...: the bridge finds the official tool at PLACE, though SETUP puts
# another esptool first on the path.
finds() {
    machine "the official tool $1"
    official "$2"
    "${@:4}"
    run "$bridge" -ca 0 -cf -f
    same "$status, $(grep -c . <<<"$errors"): ${call[*]}" "$3"
}
another_version() { sed '$a#' "$bridge" >usr/bin/esptool && chmod +x usr/bin/esptool; }
found="--before default_reset write_flash 0 ./-f"
finds "behind a link" later/esptool "7, 0: $found" ln -s ../lib/quillstone/bridge/esptool usr/bin
finds "of the old name, behind a copy" later/esptool.py "7, 0: $found" cp $bridge usr/bin
finds "of pipx" home/.local/bin/esptool "7, 0: $found" another_version
finds "as a module" later/python3 "7, 0: $found" cp $bridge usr/bin
finds "behind another tool" later/esptool "7, 1: $found" ln -s /bin/echo usr/bin/esptool
finds "nowhere" elsewhere/esptool "127, 2: " cp $bridge usr/bin

exit "$failed"
