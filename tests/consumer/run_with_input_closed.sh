#!/bin/sh
# Runs a terminal program as CI can: on a terminal type curses knows, output thrown away, and
# input from a pipe that is already closed, so that its key source reports the end at once and
# the program stops on its own. Fails when it exits with another status than 0.
#   run_with_input_closed.sh PROGRAM [EMULATOR...]   (EMULATOR: runs a cross-built PROGRAM)
set -eu
program=$1
shift
: | TERM=xterm-256color "$@" "$program" > /dev/null
echo "$(basename "$program") ended with its input"
