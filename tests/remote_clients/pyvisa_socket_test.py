#!/usr/bin/env python3
"""Drives frontpanel-sim through Debian's pyvisa with the pyvisa-py backend over the raw
SCPI socket (TCPIP::127.0.0.1::PORT::SOCKET), as an instrument's user would.

Usage: pyvisa_socket_test.py FRONTPANEL_SIM [--no-png]   (--no-png: a build without PNG support)"""

import csv
import os
import struct
import sys

import pyvisa

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "support"))
from sim_process import check, exit_status, start_simulator, stop_simulator  # noqa: E402

def main():
    arguments = sys.argv[1:]
    with_png = "--no-png" not in arguments
    program = [argument for argument in arguments if argument != "--no-png"]
    process, ports = start_simulator(program + ["--headless", "--listen", "127.0.0.1:0"],
                                     ["raw"])
    port = ports["raw"]
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

        # A screenshot: a definite-length block holding a PNG of columns x 6 by lines x 8;
        # a build without PNG support does not know the command.
        if with_png:
            lines = next(csv.reader([inst.query("DISP:TEXT?")]))
            png = inst.query_binary_values("HCOP:SDUM:DATA?", datatype="B", container=bytes)
            check("screenshot is a PNG", png[:8], b"\x89PNG\r\n\x1a\n")
            width, height = struct.unpack(">II", png[16:24])
            check("screenshot size", (png[12:16], width, height),
                  (b"IHDR", len(lines[0]) * 6, len(lines) * 8))
        else:
            inst.write("HCOP:SDUM:DATA?")
            check("screenshot without PNG support",
                  inst.query("SYST:ERR?").split(",")[0], "-113")
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
        stop_simulator(process)
    return exit_status()


if __name__ == "__main__":
    sys.exit(main())
