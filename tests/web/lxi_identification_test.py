#!/usr/bin/env python3
"""Checks the simulator's web panel from outside, as an LXI tool would: reads
/lxi/identification, parses it with xml.etree and compares its identity with what *IDN?
answers over the raw SCPI socket, and its interfaces with the ones the simulator announced;
then compares /screenshot.png with the screenshot HCOPy:SDUMp:DATA? returns.

Without PNG support in the build (--no-png) the screenshot must be refused with 501.

Usage: lxi_identification_test.py FRONTPANEL_SIM [--vxi11] [--no-png]"""

import http.client
import os
import socket
import struct
import sys
import xml.etree.ElementTree as ElementTree

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "support"))
from sim_process import check, exit_status, start_simulator, stop_simulator  # noqa: E402

NAMESPACE = "{http://www.lxistandard.org/InstrumentIdentification/1.0}"


def start(program, vxi11):
    """The simulator with the raw socket and the web panel (and VXI-11): (process, raw, web)."""
    command = [program, "--headless", "--listen", "127.0.0.1:0", "--web", "127.0.0.1:0"]
    if vxi11:
        command += ["--listen", "vxi11:127.0.0.1"]
    process, ports = start_simulator(command, ["raw", "web"])
    return process, ports["raw"], ports["web"]


class RawSocket:
    """The raw SCPI socket: newline-terminated commands and responses."""

    def __init__(self, port):
        self.connection = socket.create_connection(("127.0.0.1", port), timeout=5)
        self.buffer = b""

    def fill(self):
        chunk = self.connection.recv(65536)
        if not chunk:
            raise SystemExit("the command server closed the connection")
        self.buffer += chunk

    def receive(self, count):
        while len(self.buffer) < count:
            self.fill()
        data, self.buffer = self.buffer[:count], self.buffer[count:]
        return data

    def query(self, command):
        self.connection.sendall(command.encode() + b"\n")
        while b"\n" not in self.buffer:
            self.fill()
        line, _, self.buffer = self.buffer.partition(b"\n")
        return line.decode()

    def query_block(self, command):
        """A definite-length block #<n><length><bytes> and its terminator."""
        self.connection.sendall(command.encode() + b"\n")
        head = self.receive(2)
        if head[:1] != b"#":
            raise SystemExit(f"{command}: no block but {head!r}")
        length = int(self.receive(int(head[1:2])))
        data = self.receive(length)
        self.receive(1)
        return data


def get(port, path, host=None):
    connection = http.client.HTTPConnection("127.0.0.1", port, timeout=5)
    headers = {"Host": host} if host else {}
    connection.request("GET", path, headers=headers)
    response = connection.getresponse()
    body = response.read()
    connection.close()
    return response, body


def png_size(data):
    if data[:8] != b"\x89PNG\r\n\x1a\n" or data[12:16] != b"IHDR":
        return None
    return struct.unpack(">II", data[16:24])


def main():
    vxi11 = "--vxi11" in sys.argv[2:]
    png = "--no-png" not in sys.argv[2:]
    process, raw_port, web_port = start(sys.argv[1], vxi11)
    try:
        scpi = RawSocket(raw_port)
        idn = scpi.query("*IDN?").split(",")
        check("*IDN? has four fields", len(idn), 4)

        response, body = get(web_port, "/lxi/identification")
        check("identification status", response.status, 200)
        check("identification type", response.getheader("Content-Type").split(";")[0],
              "text/xml")
        root = ElementTree.fromstring(body)
        check("root element", root.tag, NAMESPACE + "LXIDevice")
        fields = [root.findtext(NAMESPACE + name) for name in
                  ("Manufacturer", "Model", "SerialNumber", "FirmwareRevision")]
        check("identity equals *IDN?", fields, idn)
        base = f"http://127.0.0.1:{web_port}"
        check("IdentificationURL", root.findtext(NAMESPACE + "IdentificationURL"),
              base + "/lxi/identification")
        interfaces = root.findall(NAMESPACE + "Interface")
        check("one interface", len(interfaces), 1)
        check("interface type", interfaces[0].get("InterfaceType"), "LXI")
        addresses = [element.text for element in
                     interfaces[0].findall(NAMESPACE + "InstrumentAddressString")]
        expected = [base + "/", f"TCPIP::127.0.0.1::{raw_port}::SOCKET"]
        if vxi11:
            expected.append("TCPIP::127.0.0.1::inst0::INSTR")
        check("instrument addresses", addresses, expected)

        # Another site's name for this address (DNS rebinding) gets nothing.
        response, body = get(web_port, "/lxi/identification", f"evil.example:{web_port}")
        check("foreign host refused", response.status, 421)

        response, image = get(web_port, "/screenshot.png")
        if not png:
            check("screenshot without PNG support", response.status, 501)
            check("it names what to install", b"libpng-dev" in image, True)
            return
        check("screenshot status", response.status, 200)
        check("screenshot type", response.getheader("Content-Type"), "image/png")
        check("screenshot not cached", response.getheader("Cache-Control"), "no-store")
        block = scpi.query_block("HCOP:SDUM:DATA?")
        size = png_size(image)
        check("screenshot is a PNG the size of HCOPy:SDUMp:DATA?'s", size, png_size(block))
        check("screenshot size is 20x4 cells of 6x8", size, (120, 32))
    finally:
        stop_simulator(process)


if __name__ == "__main__":
    main()
    sys.exit(exit_status())
