#!/usr/bin/env python3
"""Drives frontpanel-sim through VISA's TCPIP::127.0.0.1::inst0::INSTR (VXI-11) with Debian's
pyvisa-py, and measures the *IDN? round trip over VXI-11 against the raw socket: pyvisa-py on
both resources (INSTR and TCPIP::127.0.0.1::PORT::SOCKET), and a bare Python socket. The
medians are printed, never checked: the test does not fail on timing.

Usage: pyvisa_vxi11_test.py FRONTPANEL_SIM
Exits non-zero, with the failed check on stderr, when a check fails."""

import os
import socket
import statistics
import sys
import time

import pyvisa

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "support"))
from sim_process import start_simulator, stop_simulator  # noqa: E402

IDENTITY = "YxFrontPanel,frontpanel-sim demo PSU,YX-2026-00042,1.4.2"
ROUNDS = 5
ROUND_TRIPS = 200  # per round and client


def start(program):
    """The simulator with VXI-11 and the raw socket: (process, raw port)."""
    sim, announced = start_simulator(
        [program, "--headless", "--listen", "vxi11:127.0.0.1", "--listen", "127.0.0.1:0"],
        ["raw", "vxi11", "vxi11_registration"])
    registration = announced["vxi11_registration"]
    # VISA finds the core port through port 111. When another process's portmapper holds it
    # (refusing this simulator's registration), INSTR would reach that process instead.
    if registration != "registered with rpcbind" and "portmapper on port 111" not in registration:
        stop_simulator(sim)
        sys.exit("port 111 does not lead to this simulator: " + registration)
    return sim, announced["raw"]


def check(condition, what):
    if not condition:
        raise AssertionError(what)


def round_trips(query, times):
    """Appends the duration of ROUND_TRIPS queries to `times`."""
    for _ in range(ROUND_TRIPS):
        start = time.perf_counter()
        answer = query()
        times.append(time.perf_counter() - start)
        check(answer.strip() == IDENTITY, "identity during the measurement: " + repr(answer))


def main():
    sim, raw_port = start(sys.argv[1])
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

        # The three clients in turn, round after round, so that they share the machine's load.
        socket_resource = manager.open_resource(f"TCPIP::127.0.0.1::{raw_port}::SOCKET")
        socket_resource.timeout = 5000
        socket_resource.read_termination = "\n"
        socket_resource.write_termination = "\n"
        bare = socket.create_connection(("127.0.0.1", raw_port), timeout=5)
        bare.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
        reader = bare.makefile("r")

        def bare_query():
            bare.sendall(b"*IDN?\n")
            return reader.readline()

        clients = {"instr": lambda: instrument.query("*IDN?"),
                   "socket": lambda: socket_resource.query("*IDN?"),
                   "bare": bare_query}
        times = {name: [] for name in clients}
        for query in clients.values():
            query()  # the first query of each outside the figures
        for _ in range(ROUNDS):
            for name, query in clients.items():
                round_trips(query, times[name])
        median = {name: statistics.median(values) for name, values in times.items()}
        reader.close()
        bare.close()
        socket_resource.close()
        instrument.close()

        print(f"*IDN? round trip medians over {ROUNDS * ROUND_TRIPS} queries each, "
              f"load average {os.getloadavg()[0]:.2f}: "
              f"pyvisa-py VXI-11 INSTR {median['instr'] * 1e6:.0f} us, "
              f"pyvisa-py raw SOCKET {median['socket'] * 1e6:.0f} us, "
              f"Python socket {median['bare'] * 1e6:.0f} us; "
              f"INSTR/SOCKET {median['instr'] / median['socket']:.2f}, "
              f"INSTR/Python socket {median['instr'] / median['bare']:.2f}")
    finally:
        stop_simulator(sim)


if __name__ == "__main__":
    main()
