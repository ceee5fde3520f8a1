#!/usr/bin/env bash
# Instructions per key press, counted by callgrind (independent of machine load): each probe
# runs twice with different numbers of presses, and the difference is divided by the difference
# in presses, so set-up and start-up costs cancel out. Heap allocations per press are counted by
# the probe itself (set-up excluded).
#   bench/instructions.sh [--check] [build-dir]   (default: build/bench, made with the bench preset)
# --check: exit 1 when a figure passes its target in the README's performance table (menu key
# press: at most 3,000 instructions and no allocation; value editor step: at most 10,000
# instructions). Instruction and allocation counts are the same on every machine; times are
# not, so none is checked.
set -euo pipefail
cd "$(dirname "$0")/.."
check=false
if [ "${1:-}" = "--check" ]; then
    check=true
    shift
fi
build=${1:-build/bench}
if [ ! -x "$build/bench/instructions_probe" ] || [ ! -x "$build/bench/menu_memory_probe" ]; then
    echo "building the bench preset first ..." >&2
    cmake --preset bench > /dev/null
    cmake --build "$build" --target instructions_probe menu_memory_probe > /dev/null
fi
command -v valgrind > /dev/null || { echo "instructions.sh: valgrind is not installed" >&2; exit 1; }

probe=$build/bench/instructions_probe
failures=0

instructions() {  # probe presses items -> total instructions of the run
    local out
    out=$(mktemp)
    valgrind --tool=callgrind --callgrind-out-file="$out" "$probe" "$1" "$2" "$3" 2> /dev/null
    callgrind_annotate "$out" 2> /dev/null | awk '/PROGRAM TOTALS/ { gsub(",", "", $1); print $1 }'
    rm -f "$out"
}

within() {  # label value target -> prints the verdict; counts a failure when value > target
    if awk -v value="$2" -v target="$3" 'BEGIN { exit !(value > target) }'; then
        printf '    FAILED: %s is %s, the target is at most %s\n' "$1" "$2" "$3"
        failures=$((failures + 1))
    fi
}

per_press() {  # label probe items instruction-target [allocation-target]
    local short=1000 long=11000
    local a b per allocations
    a=$(instructions "$2" $short "$3")
    b=$(instructions "$2" $long "$3")
    per=$(((b - a) / (long - short)))
    allocations=$("$probe" allocations "$2" $long "$3")
    printf '%-48s %8d instructions, %s allocations per press\n' "$1" "$per" "$allocations"
    if $check; then
        within "$1: instructions per press" "$per" "$4"
        if [ -n "${5:-}" ]; then
            within "$1: allocations per press" "$allocations" "$5"
        fi
    fi
}

per_press "menu key press, 1,000 items, 20x4" menu 1000 3000 0
per_press "value editor key press (step a digit), 20x4" value-editor 0 10000
printf '%-48s %s\n' "menu of 1,000,000 plain items" \
    "$("$build/bench/menu_memory_probe" 1000000 | sed -n 's/resident bytes per item: //p') resident bytes per item"

if [ "$failures" -gt 0 ]; then
    echo "instructions.sh: $failures figure(s) past their targets" >&2
    exit 1
fi
