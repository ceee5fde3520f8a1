#!/bin/sh
# Starts frontpanel-sim inside tmux, presses real keys with send-keys and checks the captured
# screen: the menu, the cursor in reverse video, a sub-menu, the IP editor, back by Escape,
# local/remote and quit. Arguments: the simulator, after the emulator's command that runs it
# when it was cross-built (tmux runs them as one shell command line).
set -eu
sim="$*"
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
# The selected line is shown in reverse video: ESC [7m right before its text.
tries=0
while ! tmux capture-pane -p -e -t "$session" | grep -q "$(printf '\033')\[7mNetwork"; do
    tries=$((tries + 1))
    if [ $tries -gt 100 ]; then
        echo "FAILED: the cursor line 'Network' is not in reverse video:"
        tmux capture-pane -p -e -t "$session" | cat -v
        exit 1
    fi
    sleep 0.1
done
tmux send-keys -t "$session" Enter
expect "DHCP: Off"
expect "IP address"
tmux send-keys -t "$session" Down Enter
expect ">> IP address <<"
expect "192.168.  1.100"
tmux send-keys -t "$session" Up
expect "255.168.  1.100"
tmux send-keys -t "$session" Enter
expect "DHCP: Off"
tmux send-keys -t "$session" Escape
expect "System"
tmux send-keys -t "$session" l
expect "REMOTE"
tmux send-keys -t "$session" q
expect "SIM-EXITED-0"
echo "tmux simulator test passed"
