# Shared by the scripts that look at the window, sourced after lib.sh: a virtual display with one
# program on it. The programs see an empty home folder, $home. What is started here ends with the
# script, whatever ends that.
# shellcheck shell=bash disable=SC2154

work=$(mktemp -d)
home=$work/home
mkdir "$home"
app='' xvfb=''
close_display() {
    [[ -z $xvfb ]] || kill "$xvfb" 2>/dev/null || true
    end_jobs "$xvfb"
    rm -rf "$work"
}
trap close_display EXIT
trap 'exit 130' INT # bash ignores it while a command runs that outlives it

# Waits until the rest of the line, as a command, succeeds, for at most $1 seconds.
within() {
    local end=$((SECONDS + $1))
    shift
    until "$@"; do
        ((SECONDS < end)) || return 1
        sleep 0.1
    done
}

app_ended() { ! kill -0 "$app" 2>/dev/null; }
window_or_end() {
    window=$(xdotool search --onlyvisible --name '^Quillstone$' 2>/dev/null | head -n 1)
    [[ -n $window ]] || app_ended
}
file_or_end() { [[ -e $1 ]] || app_ended; }
same_picture_twice() {
    import -silent -window "$window" "ppm:$work/before" && sleep 0.5 &&
        import -silent -window "$window" "ppm:$work/after" && cmp -s "$work"/{before,after}
}

# Needs the packages in $display_packages.
open_display() {
    # Xvfb picks a free display and tells its number when it is ready.
    mkfifo "$work/number"
    setpriv --pdeathsig TERM Xvfb -screen 0 1024x768x24 -nolisten tcp -noreset -displayfd 3 \
        3>"$work/number" 2>"$work/xvfb.log" &
    xvfb=$!
    read -r -t 20 number <"$work/number" || die "no virtual display: $(<"$work/xvfb.log")"
    export DISPLAY=:$number XDG_RUNTIME_DIR=$work QT_QPA_PLATFORM=xcb LC_ALL=C.UTF-8
    unset WAYLAND_DISPLAY XDG_CACHE_HOME XDG_CONFIG_HOME XDG_DATA_HOME XDG_STATE_HOME
    # Nor the user's desktop. Without an address, Qt would start a session bus that stays on this
    # display for good.
    export DBUS_SESSION_BUS_ADDRESS=disabled: NO_AT_BRIDGE=1
    unset AT_SPI_BUS_ADDRESS DESKTOP_SESSION QT_IM_MODULE QT_QPA_PLATFORMTHEME QT_STYLE_OVERRIDE \
        XDG_CURRENT_DESKTOP XMODIFIERS
}

# Starts the program $1 as $app, with its window as $window, which gets the keyboard.
start_program() {
    HOME=$home setpriv --pdeathsig KILL "$1" &
    app=$!
    within 30 window_or_end || die "no window came up"
    app_ended && die "the program ended before its window came up"
    # Without a window manager nothing gives the window the keyboard.
    timeout 10 xdotool windowfocus --sync "$window"
}

# Presses Start and waits for the file $1, which the flash tool leaves when it is done.
run_job() {
    eval "$(xdotool getwindowgeometry --shell "$window" | grep '^HEIGHT=')"
    # The content below the menu bar is 540 high, and the middle of Start lies at (462, 300) in it.
    xdotool mousemove --window "$window" 462 $((HEIGHT - 540 + 300)) click 1
    within 60 file_or_end "$1" || echo "$1 is still missing after a minute." >&2
    app_ended && die "the program ended during the job"
    within 20 same_picture_twice || die "the window does not come to rest"
}

take_picture() {
    import -silent -window "$window" "$1"
    echo "Picture of the window: $1"
}

quit_program() {
    xdotool key --clearmodifiers ctrl+q
    within 10 app_ended || die "the program does not end on Ctrl+Q"
    local status=0
    wait "$app" || status=$?
    app=''
    ((status == 0)) || die "the program ended with status $status"
}
