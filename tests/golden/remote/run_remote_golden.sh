#!/usr/bin/env bash
# Drives the demo through frontpanel-ctl and compares the answers and screens with the
# checked-in expectation. Usage: run_remote_golden.sh SIM CTL COMMANDS EXPECTED [EMULATOR...]
# (EMULATOR: the command that runs the cross-built programs)
# The simulator runs --headless with its command server on an ephemeral loopback port and a
# Unix socket; its log tells the port. YXFP_UPDATE_GOLDEN=1 rewrites the expectation.
set -euo pipefail
sim=$1 ctl=$2 commands=$3 expected=$4
shift 4
emulator=("$@")

# shellcheck source=tests/support/listening_sim.sh
source "$(dirname "$0")/../../support/listening_sim.sh"
make_work_dir
start_listening_sim "${emulator[@]}" "$sim" --headless --idle 0 --listen 127.0.0.1:0 \
    --listen "unix:$work/panel.sock"

actual="$work/actual"
: > "$actual"
while IFS= read -r line; do
    case $line in '#'* | '') continue ;; esac
    address=$tcp
    if [ "${line#unix }" != "$line" ]; then
        line=${line#unix }
        address="unix:$work/panel.sock"
    fi
    echo "> $line" >> "$actual"
    status=0
    "${emulator[@]}" "$ctl" --screen "$address" "$line" >> "$actual" 2>&1 || status=$?
    echo "exit $status" >> "$actual"
done < "$commands"

kill -TERM "$sim_pid"
status=0
wait "$sim_pid" || status=$?
sim_pid=
if [ "$status" -ne 0 ]; then
    echo "frontpanel-sim --headless ended with status $status after SIGTERM" >&2
    exit 1
fi

if [ "${YXFP_UPDATE_GOLDEN:-}" = 1 ]; then
    cp "$actual" "$expected"
    echo "rewrote $expected"
    exit 0
fi
if ! diff -u "$expected" "$actual"; then
    echo "the answers and screens differ from $expected (YXFP_UPDATE_GOLDEN=1 rewrites it)" >&2
    exit 1
fi
