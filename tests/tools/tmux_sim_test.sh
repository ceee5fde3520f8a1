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

# The screen with its attributes; a line shown in reverse video has ESC [7m right before its
# text.
styled_screen() { tmux capture-pane -p -e -t "$session"; }
reversed() { styled_screen | grep -q "$(printf '\033')\\[7m$1"; }

# Waits (up to 10 s) until the text is shown in reverse video (the menu's cursor line).
expect_reverse() {
    tries=0
    while ! reversed "$1"; do
        tries=$((tries + 1))
        if [ $tries -gt 100 ]; then
            echo "FAILED: the cursor line '$1' is not in reverse video:"
            styled_screen | cat -v
            exit 1
        fi
        sleep 0.1
    done
}

tmux new-session -d -s "$session" -x 100 -y 20 "$sim; echo SIM-EXITED-\$?; sleep 30"
expect "Output"
expect "LOCAL"
expect "Network"
# The cursor starts on the first line; "down" must move the reverse video to the second.
expect_reverse "Output"
tmux send-keys -t "$session" Down
expect_reverse "Network"
if reversed "Output"; then
    echo "FAILED: 'Output' is still in reverse video after down:"
    styled_screen | cat -v
    exit 1
fi
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
