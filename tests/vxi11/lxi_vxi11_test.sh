#!/usr/bin/env bash
# `lxi scpi -a 127.0.0.1 '*IDN?'` (lxi-tools, through VXI-11 and the portmapper) answers the
# simulator's identity. Usage: lxi_vxi11_test.sh FRONTPANEL_SIM LXI
set -euo pipefail
sim=$1
lxi=$2
log=$(mktemp)
"$sim" --headless --listen vxi11:127.0.0.1 2> "$log" &
pid=$!
trap 'kill "$pid" 2> /dev/null; wait "$pid" 2> /dev/null; rm -f "$log"' EXIT
# Wait (bounded) for the listener's announcement.
for _ in $(seq 100); do
    grep -q 'VXI-11 on 127.0.0.1' "$log" && break
    read -r -t 0.05 < /dev/zero || true
done
grep -q 'VXI-11 on 127.0.0.1' "$log" || { echo "no VXI-11 listener"; cat "$log"; exit 1; }
answer=$(timeout 20 "$lxi" scpi -a 127.0.0.1 '*IDN?')
expected='YxFrontPanel,frontpanel-sim demo PSU,YX-2026-00042,1.4.2'
if [ "$(printf '%s' "$answer" | tr -d '\r\n')" != "$expected" ]; then
    echo "lxi answered: $answer"
    exit 1
fi
echo "lxi: $answer"
