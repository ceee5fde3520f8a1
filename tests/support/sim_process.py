"""The end-to-end tests' simulator and checks: starts frontpanel-sim, reads the listeners it
announces, keeps its log drained, stops it; and records failed checks."""

import re
import subprocess
import sys
import threading

# What the simulator's log says when a listener is up: name -> pattern with the port.
ANNOUNCEMENTS = {
    "raw": r"remote control on 127\.0\.0\.1:(\d+)",
    "web": r"web panel on http://127\.0\.0\.1:(\d+)/",
    "vxi11": r"VXI-11 on 127\.0\.0\.1 \(core port (\d+)\)",
    # How VISA finds the VXI-11 core port: "registered with rpcbind", or the reason it is not.
    "vxi11_registration": r"frontpanel-sim: VXI-11 (?!on )(.*)",
}

FAILURES = []


def check(what, got, expected):
    """Prints the check and records it in FAILURES when `got` is not `expected`."""
    if got != expected:
        FAILURES.append(f"{what}: got {got!r}, expected {expected!r}")
    print(f"{'ok  ' if got == expected else 'FAIL'} {what}: {got!r}")


def exit_status():
    """1 after printing the failed checks to stderr, 0 when there were none."""
    if FAILURES:
        print("\n".join(FAILURES), file=sys.stderr)
        return 1
    return 0


def start_simulator(command, wanted):
    """Runs `command` (the simulator and its options) and reads its log until it announced
    the listeners named in `wanted` (keys of ANNOUNCEMENTS; a bounded number of lines).
    Returns (process, {name: port, or the text for a name without a port}); the rest of the log is read and dropped meanwhile, so
    the simulator never blocks on it."""
    process = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                               stderr=subprocess.PIPE, text=True)
    ports = {}
    for _ in range(50):
        line = process.stderr.readline()
        if not line:
            break
        for name in wanted:
            found = re.search(ANNOUNCEMENTS[name], line)
            if found:
                value = found.group(1)
                ports[name] = int(value) if value.isdigit() else value
        if all(name in ports for name in wanted):
            threading.Thread(target=process.stderr.read, daemon=True).start()
            return process, ports
    process.kill()
    raise SystemExit(f"frontpanel-sim did not announce its listeners: {', '.join(wanted)}")


def stop_simulator(process):
    """Asks the simulator to end (SIGTERM); kills it when it has not within 10 s."""
    process.terminate()
    try:
        process.wait(timeout=10)
    except subprocess.TimeoutExpired:
        process.kill()
