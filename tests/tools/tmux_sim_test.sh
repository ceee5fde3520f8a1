#!/bin/sh
# Starts frontpanel-sim inside tmux, presses real keys with send-keys and checks the captured
# screen: the menu, moving the cursor, opening and closing a sub-menu, local/remote and quit.
set -eu
sim=$1
session="yxfp-sim-$$"
export LANG=C.UTF-8 LC_ALL=C.UTF-8 TERM=xterm-256color
cleanup() { tmux kill-session -t "$session" 2> /dev/null || true; }
trap cleanup EXIT

screen() { tmux capture-pane -p -t "$session"; }

# Waits (up to 10 s) until the screen contains the text; fails with the screen otherwise.
expect() {
    tries=0
    while ! screen | grep -q -F -- "$1"; do
        tries=$((tries + 1))
        if [ $tries -gt 100 ]; then
            echo "FAILED: the screen never showed '$1':"
            screen
            exit 1
        fi
        sleep 0.1
    done
}

tmux new-session -d -s "$session" -x 100 -y 20 "$sim; echo SIM-EXITED-\$?; sleep 30"
expect "Output"
expect "LOCAL"
expect "Network"
tmux send-keys -t "$session" Down
expect "┌"
tmux send-keys -t "$session" Enter
expect "DHCP: Off"
expect "IP address"
tmux send-keys -t "$session" BSpace
expect "Display"
tmux send-keys -t "$session" l
expect "REMOTE"
tmux send-keys -t "$session" q
expect "SIM-EXITED-0"
echo "tmux simulator test passed"
