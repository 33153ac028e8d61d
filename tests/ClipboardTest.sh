#!/usr/bin/env bash
# Usage: tests/ClipboardTest.sh PROGRAM
# The owner of the clipboard may be a program that doesn't answer, so nothing but a paste asks it.
# Here the owner is stopped by SIGSTOP while the window is used, and all that the program asks of the
# X server is traced. Ends with 77 where a command is missing.
set -euo pipefail
program=$(realpath "$1")
for command in Xvfb import xclip xdotool xtrace; do
    command -v "$command" >/dev/null || { echo "Skipped, since $command is missing." && exit 77; }
done
source "$(dirname "${BASH_SOURCE[0]}")/../scripts/lib.sh"
source scripts/window.sh
# shellcheck disable=SC2154 # window.sh sets work, home and window
base=$work/base owner=''
fake=$(($$ % 50000 + 100)) # the tracer's display, which is also a TCP port, less 6000
end_all() {
    [[ -z $owner ]] || kill -KILL "$owner"
    close_display
    rm -f "/tmp/.X11-unix/X$fake" # the tracer leaves it
}
trap end_all EXIT
mkdir -p "$base/esptool"
cp "$program" "$base/quillstone"
printf '#!/bin/sh\necho "$*" >~/call.new; mv ~/call.new ~/call\n' >"$base/esptool/esptool"
# It loses what is passed in shared memory.
printf '#!/bin/sh\nQT_XCB_NO_MITSHM=1 exec xtrace -n -D :%s -o %q %q 2>%q' \
    "$fake" "$work/trace" "$base/quillstone" "$work/xtrace.log" >"$base/traced"
chmod +x "$base"/{esptool/esptool,traced}

# Clicks button $1 at the place $2, $3 of the content, which is 540 high.
click() { xdotool mousemove --window "$window" "$2" $((HEIGHT - 540 + $3)) click "$1"; }
# Starts the tool, whose last argument must be $1.
runs_with() {
    rm -f "$home/call"
    xdotool key ctrl+Return
    within 60 file_or_end "$home/call" || die "the window doesn't answer"
    [[ $(<"$home/call") == *" $1" ]] || die "the tool got: $(<"$home/call")"
}

open_display
setpriv --pdeathsig KILL xclip -quiet -selection clipboard <<<pasted 2>"$work/xclip.log" &
owner=$!
disown "$owner" # its end is no news
within 10 grep -qs Waiting "$work/xclip.log" || die "xclip doesn't own the clipboard"
start_program "$base/traced"
eval "$(xdotool getwindowgeometry --shell "$window" | grep '^HEIGHT=')"

kill -STOP "$owner"
for control in "120 119" "250 420" "200 260"; do # a one-line field, the output, the command
    read -r x y <<<"$control"
    click 1 "$x" "$y"
    xdotool key ctrl+a
    click 3 "$x" "$y" # its menu
    xdotool key Escape
    click 1 90 $((10 + 540 - HEIGHT)) # the edit menu
    xdotool key Escape Escape Right
done
xdotool key ctrl+End space t y p e d
runs_with typed
grep -q ConvertSelection "$work/trace" && die "the clipboard was asked, and nothing pasted"

kill -CONT "$owner"
xdotool key ctrl+v
runs_with typedpasted
grep -q ConvertSelection "$work/trace" || die "the trace lacks the paste"
quit_program
