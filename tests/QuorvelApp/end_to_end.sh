#!/bin/bash
# Drives the real program with mouse and keyboard on a display of its own, as a person would, in a
# throw-away home, and looks at the disk after each step.
# Usage: end_to_end.sh PROGRAM [FOLDER-FOR-PICTURES]
set -u
program=$1
pictures=${2:-}
home=$(mktemp -d "${TMPDIR:-/tmp}/quorvel-window-XXXXXX")
export HOME=$home CFFIXED_USER_HOME=$home XDG_CONFIG_HOME=$home/.config XDG_RUNTIME_DIR=$home/.run
export XDG_DATA_HOME=$home/.local/share DBUS_SESSION_BUS_ADDRESS=unix:path=$home/.no-bus
export QT_QPA_PLATFORM=xcb LC_ALL=C.UTF-8
mkdir -m 700 "$home/.run"
program_pid= display_pid=

finish() {
    [ -n "$program_pid" ] && kill "$program_pid" 2>/dev/null
    for pid in $(running_targets); do kill "$pid"; done
    [ -n "$display_pid" ] && kill "$display_pid" 2>/dev/null
    wait 2>/dev/null
    rm -rf "$home"
}
trap finish EXIT

fail() {
    echo "FAILED: $1" >&2
    import -silent -window root "${TMPDIR:-/tmp}/quorvel-window-failed.png" 2>/dev/null
    exit 1
}
picture() { [ -z "$pictures" ] || import -silent -window root "$pictures/$1.png"; }
step() { echo "-- $1"; }
# eventually WHAT COMMAND...: tries for twenty seconds
eventually() {
    local what=$1 tries=0
    shift
    until "$@" >/dev/null 2>&1; do
        tries=$((tries + 1))
        [ $tries -lt 200 ] || fail "$what"
        sleep 0.1
    done
}
running_targets() { pgrep -f "^[^ ]*sleep 98765$|$home/Applications/.*/Contents/MacOS/" || true; }
keys() { xdotool key --clearmodifiers "$@"; }
type_text() { xdotool type --clearmodifiers --delay 5 "$1"; }
click() { xdotool mousemove "$1" "$2" click 1; }
# colour_at X Y RRGGBB
colour_at() {
    [ "$(import -silent -window root -crop "1x1+$1+$2" -depth 8 rgb:- | xxd -p)" = "$3" ]
}
# Whether any pixel of the root window has that colour.
shows_colour() {
    import -silent -window root -depth 8 rgb:- | xxd -p -c 3 | grep -qx "$1"
}
config_of() { grep -o "\"$2\": *[^,]*" "$home/Applications/$1.app/Contents/Resources/instance.json"; }
config_has() { config_of "$1" "$2" | grep -q -- "$3"; }

# A sheet stands over the window when the place beside it is darkened.
sheet_open() { ! colour_at 5 300 ecedf1; }
sheet_closed() { colour_at 5 300 ecedf1; }
