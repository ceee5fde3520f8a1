#!/usr/bin/env bash
# The exit status and the one-line message of frontpanel-sim as scripts see them: 2 for a bad
# command line, 1 for a device that cannot be used, 0 after SIGINT, SIGTERM or SIGHUP in a
# headless run.
# Usage: simulator_exit_test.sh SIM [EMULATOR...]
# YXFP_SIM_HAS_<PART>=0 (EVDEV, GPIOD, REMOTE, SETTINGS, WEB, TERMINAL) when the simulator was
# built without that part: its options then give one line naming what to install, status 2.
set -uo pipefail
sim=$1
shift
run=("$@" "$sim")
failures=0

expect() {  # status message-pattern arguments...
    local want=$1 pattern=$2 output status
    shift 2
    output=$("${run[@]}" "$@" 2>&1 < /dev/null)
    status=$?
    if [ "$status" -ne "$want" ] || ! grep -q -- "$pattern" <<< "$output"; then
        echo "FAILED: frontpanel-sim $*: status $status (want $want), output: $output"
        failures=$((failures + 1))
    else
        echo "ok: frontpanel-sim $* -> $status"
    fi
}

expect 2 "unknown option '--colour'" --colour
expect 2 "--input wants evdev:PATH" --headless --input keyboard
if [ "${YXFP_SIM_HAS_WEB:-1}" = 1 ]; then
    expect 2 "--web" --web nowhere
else
    expect 2 "this build has no web panel (install libwebsockets-dev" --web 127.0.0.1:0
fi
if [ "${YXFP_SIM_HAS_SETTINGS:-1}" = 0 ]; then
    expect 2 "this build has no settings store (install nlohmann-json3-dev" --settings s.json --keys down
fi
if [ "${YXFP_SIM_HAS_TERMINAL:-1}" = 1 ]; then
    # Not on a terminal (standard input is /dev/null here): it says what to use, not curses.
    expect 2 "must be a terminal"
else
    expect 2 "this build has no terminal display (install libncurses-dev"
fi
expect 2 "needs a value" --idle
expect 1 "/dev/i2c-77" --display hd44780-i2c:/dev/i2c-77 --keys down
if [ "${YXFP_SIM_HAS_GPIOD:-1}" = 1 ]; then
    expect 1 "gpiochip99" --headless --input gpio:gpiochip99:up=1,down=2,left=3,right=4,enter=5,back=6
fi
if [ "${YXFP_SIM_HAS_EVDEV:-1}" = 1 ]; then
    expect 1 "/nonexistent/event9" --headless --input evdev:/nonexistent/event9
else
    expect 2 "built without libevdev" --headless --input evdev:/nonexistent/event9
fi

if [ "${YXFP_SIM_HAS_REMOTE:-1}" = 0 ]; then
    expect 2 "this build has no remote control" --headless --listen unix:panel.sock
    [ "$failures" -eq 0 ]
    exit
fi

# A headless run with a server ends on each of these signals with status 0 (SIGHUP: a closed
# terminal ends the run as SIGTERM does, not with the default action).
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
for signal in INT TERM HUP; do
    mkfifo "$work/log.$signal"
    "${run[@]}" --headless --listen "unix:$work/panel.$signal.sock" 2> "$work/log.$signal" &
    pid=$!
    exec 3< "$work/log.$signal"
    # Wait for the line that says it listens (the read blocks; no polling, no sleep).
    listening=false
    while IFS= read -r line <&3; do
        case $line in *"remote control on unix:"*) listening=true; break ;; esac
    done
    cat <&3 > /dev/null &
    kill -s "$signal" "$pid"
    wait "$pid"
    status=$?
    exec 3<&-
    if ! $listening || [ "$status" -ne 0 ]; then
        echo "FAILED: SIG$signal: listening=$listening, status $status (want 0)"
        failures=$((failures + 1))
    else
        echo "ok: --headless ends with 0 on SIG$signal"
    fi
done

[ "$failures" -eq 0 ]
