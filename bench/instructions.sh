#!/usr/bin/env bash
# Instructions per key press, counted by callgrind (independent of machine load): each probe
# runs twice with different numbers of presses, and the difference is divided by the difference
# in presses, so set-up and start-up costs cancel out.
#   bench/instructions.sh [build-dir]     (default: build/bench, made with the bench preset)
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build/bench}
if [ ! -x "$build/bench/instructions_probe" ] || [ ! -x "$build/bench/menu_memory_probe" ]; then
    echo "building the bench preset first ..." >&2
    cmake --preset bench > /dev/null
    cmake --build "$build" --target instructions_probe menu_memory_probe > /dev/null
fi
command -v valgrind > /dev/null || { echo "instructions.sh: valgrind is not installed" >&2; exit 1; }

instructions() {  # probe presses items -> total instructions of the run
    local out
    out=$(mktemp)
    valgrind --tool=callgrind --callgrind-out-file="$out" \
        "$build/bench/instructions_probe" "$1" "$2" "$3" 2> /dev/null
    callgrind_annotate "$out" 2> /dev/null | awk '/PROGRAM TOTALS/ { gsub(",", "", $1); print $1 }'
    rm -f "$out"
}

per_press() {  # label probe items
    local short=1000 long=11000
    local a b
    a=$(instructions "$2" $short "$3")
    b=$(instructions "$2" $long "$3")
    printf '%-48s %8d instructions per press\n' "$1" $(((b - a) / (long - short)))
}

per_press "menu key press, 1,000 items, 20x4" menu 1000
per_press "value editor key press (step a digit), 20x4" value-editor 0
printf '%-48s %s\n' "menu of 1,000,000 plain items" \
    "$("$build/bench/menu_memory_probe" 1000000 | sed -n 's/resident bytes per item: //p') resident bytes per item"
