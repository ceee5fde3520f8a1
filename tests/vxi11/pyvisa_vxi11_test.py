#!/usr/bin/env python3
"""Drives frontpanel-sim through VISA's TCPIP::127.0.0.1::inst0::INSTR (VXI-11) with Debian's
pyvisa-py, and measures the *IDN? round trip over VXI-11 against the raw socket.

Usage: pyvisa_vxi11_test.py FRONTPANEL_SIM
Exits non-zero, with the failed check on stderr, when a check fails."""

import re
import socket
import statistics
import subprocess
import sys
import time

import pyvisa

IDENTITY = "YxFrontPanel,frontpanel-sim demo PSU,YX-2026-00042,1.4.2"
ROUND_TRIPS = 200


def start_simulator(program):
    sim = subprocess.Popen(
        [program, "--headless", "--listen", "vxi11:127.0.0.1", "--listen", "127.0.0.1:0"],
        stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True)
    raw_port = core_port = None
    # The listeners are announced before the panel runs; the lines are bounded.
    for _ in range(50):
        line = sim.stderr.readline()
        if not line:
            break
        match = re.search(r"remote control on 127\.0\.0\.1:(\d+)", line)
        if match:
            raw_port = int(match.group(1))
        match = re.search(r"VXI-11 on 127\.0\.0\.1 \(core port (\d+)\)", line)
        if match:
            core_port = int(match.group(1))
        if raw_port and core_port:
            return sim, raw_port
    sim.kill()
    sys.exit("the simulator did not announce its listeners")


def check(condition, what):
    if not condition:
        raise AssertionError(what)


def median_round_trip(query):
    times = []
    for _ in range(ROUND_TRIPS):
        start = time.perf_counter()
        answer = query()
        times.append(time.perf_counter() - start)
        check(answer.strip() == IDENTITY, "identity during the measurement: " + repr(answer))
    return statistics.median(times)


def main():
    sim, raw_port = start_simulator(sys.argv[1])
    try:
        manager = pyvisa.ResourceManager("@py")
        instrument = manager.open_resource("TCPIP::127.0.0.1::inst0::INSTR")
        instrument.timeout = 5000

        check(instrument.query("*IDN?").strip() == IDENTITY, "identity over VXI-11")

        # Status polling: MAV while a response waits, clear once it is read.
        instrument.write("*IDN?")
        check(instrument.read_stb() & 0x10, "MAV set while a response waits")
        check(instrument.read().strip() == IDENTITY, "the waiting response")
        check(not instrument.read_stb() & 0x10, "MAV clear after reading")

        # *OPC? after key presses answers once they were handled.
        instrument.write("SYST:KEY DOWN")
        instrument.write("SYST:KEY DOWN")
        check(instrument.query("*OPC?").strip() == "1", "*OPC? after key presses")

        # Device clear drops the response of a query nobody read.
        instrument.write("*IDN?")
        instrument.clear()
        check(not instrument.read_stb() & 0x10, "no response waits after device clear")
        check(instrument.query("*OPC?").strip() == "1", "the next query after device clear")
        check(instrument.query("SYST:ERR?").strip() == '0,"No error"', "error queue empty")

        vxi11 = median_round_trip(lambda: instrument.query("*IDN?"))
        instrument.close()

        with socket.create_connection(("127.0.0.1", raw_port), timeout=5) as raw:
            reader = raw.makefile("r")

            def raw_query():
                raw.sendall(b"*IDN?\n")
                return reader.readline()

            raw_median = median_round_trip(raw_query)

        print(f"*IDN? round trip median over {ROUND_TRIPS}: VXI-11 {vxi11 * 1e6:.0f} us, "
              f"raw socket {raw_median * 1e6:.0f} us, ratio {vxi11 / raw_median:.2f}")
    finally:
        sim.terminate()
        sim.wait(timeout=10)


if __name__ == "__main__":
    main()
