#!/usr/bin/env python3
"""Drives frontpanel-sim through Debian's pyvisa with the pyvisa-py backend over the raw
SCPI socket (TCPIP::127.0.0.1::PORT::SOCKET), as an instrument's user would.

Usage: pyvisa_socket_test.py FRONTPANEL_SIM"""

import csv
import re
import struct
import subprocess
import sys

import pyvisa

FAILURES = []


def check(what, got, expected):
    if got != expected:
        FAILURES.append(f"{what}: got {got!r}, expected {expected!r}")
    print(f"{'ok  ' if got == expected else 'FAIL'} {what}: {got!r}")


def start_simulator(command):
    """Starts the simulator on a port the system picks and returns (process, port)."""
    process = subprocess.Popen(
        command + ["--headless", "--listen", "127.0.0.1:0"],
        stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True)
    # The simulator names its bound address before serving; a bounded number of lines.
    for _ in range(50):
        line = process.stderr.readline()
        if not line:
            break
        found = re.search(r"remote control on 127\.0\.0\.1:(\d+)", line)
        if found:
            return process, int(found.group(1))
    process.kill()
    raise SystemExit("frontpanel-sim did not report its address")


def main():
    process, port = start_simulator(sys.argv[1:])
    try:
        manager = pyvisa.ResourceManager("@py")
        inst = manager.open_resource(f"TCPIP::127.0.0.1::{port}::SOCKET")
        inst.read_termination = "\n"
        inst.write_termination = "\n"
        inst.timeout = 5000
        inst.encoding = "utf-8"

        check("*IDN?", inst.query("*IDN?"),
              "YxFrontPanel,frontpanel-sim demo PSU,YX-2026-00042,1.4.2")
        inst.write("*RST;*CLS")
        check("SYST:VERS?", inst.query("SYST:VERS?"), "1999.0")
        check("*ESR? after *RST;*CLS", inst.query("*ESR?"), "0")

        # An undefined header: command error (ESR bit 5), seen in *STB? through ESB.
        inst.write("*ESE 32")
        inst.write("NOT:A:COMMand")
        check("*STB? after -113", inst.query("*STB?"), "32")
        check("*ESR? after -113", inst.query("*ESR?"), "32")
        check("SYST:ERR? after -113", inst.query("SYST:ERR?").split(",")[0], "-113")

        # Key presses take effect on the panel's next turn; *OPC? answers after them.
        inst.write("SYST:REM")
        inst.write("SYST:KEY ENTER")
        check("*OPC? after a key", inst.query("*OPC?"), "1")
        screen = inst.query("DISP:TEXT?")
        check("screen after Enter opens the Output menu", "Voltage" in screen, True)
        inst.write("*RST")
        check("*OPC? after *RST", inst.query("*OPC?"), "1")

        # A screenshot: a definite-length block holding a PNG of columns x 6 by lines x 8.
        lines = next(csv.reader([inst.query("DISP:TEXT?")]))
        png = inst.query_binary_values("HCOP:SDUM:DATA?", datatype="B", container=bytes)
        check("screenshot is a PNG", png[:8], b"\x89PNG\r\n\x1a\n")
        width, height = struct.unpack(">II", png[16:24])
        check("screenshot size", (png[12:16], width, height),
              (b"IHDR", len(lines[0]) * 6, len(lines) * 8))
        check("*OPC? after the screenshot", inst.query("*OPC?"), "1")

        # Error queue overflow: the last entry is -350.
        inst.write("*CLS")
        for _ in range(20):
            inst.write("NOPE")
        check("SYST:ERR:COUN? when full", inst.query("SYST:ERR:COUN?"), "16")
        codes = [inst.query("SYST:ERR?").split(",")[0] for _ in range(17)]
        check("queue overflow is the last entry", codes[15], "-350")
        check("then no error", codes[16], "0")
        check("*ESR? after overflow", inst.query("*ESR?"), "40")
        inst.close()
        manager.close()
    finally:
        process.terminate()
        process.wait(timeout=10)
    if FAILURES:
        print("\n".join(FAILURES), file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
