#!/usr/bin/env python3
"""Load and soak measurements of the command server, from outside, on loopback only.

Starts a server (frontpanel-sim --headless --listen 127.0.0.1:PORT, or any command given with
--server that prints nothing needed and listens on the port given in its arguments), then runs
one of:

  attack   forty lines of a deep header followed by relative headers (and forty of relative
           headers only) from one client, while another client asks *IDN? in a loop and a third
           presses a key and waits for it (SYST:KEY DOWN;*OPC?): prints the server's RSS
           growth, the answer times, and the key presses' times against those of an idle
           server measured first.
  token    N clients per second that fail the token check and hang up, for S seconds: prints
           the server's CPU time over that span (needs a server with an access token).
  soak     8 clients sending key presses and screen reads for S seconds: prints the server's
           RSS every 10 s and its growth from the first minute's sample to the last.
  hint     the simulator's demo only: one client selects System/Save settings and presses
           ENTER (a hint holds the panel for 1 s); another client's DISP:TEXT? is timed during
           the hint, and so is a change (*CLS;*OPC?) that must wait for the panel.

Not part of CI: run by hand, e.g.
  bench/remote_soak.py --sim build/default/tools/frontpanel-sim/frontpanel-sim attack
  bench/remote_soak.py --sim ... soak --seconds 600
Every loop is bounded (seconds are capped at 3600).
"""
import argparse
import multiprocessing
import os
import socket
import subprocess
import sys
import threading
import time

MAX_SECONDS = 3600


def free_port():
    with socket.socket(socket.AF_INET, socket.SOCK_STREAM) as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


def rss_kib(pid):
    with open(f"/proc/{pid}/status") as status:
        for line in status:
            if line.startswith("VmRSS:"):
                return int(line.split()[1])
    return 0


def cpu_seconds(pid):
    with open(f"/proc/{pid}/stat") as stat:
        fields = stat.read().rsplit(")", 1)[1].split()
    ticks = os.sysconf("SC_CLK_TCK")
    return (int(fields[11]) + int(fields[12])) / ticks


def connect(port, timeout=5.0):
    deadline = time.monotonic() + timeout
    while True:
        try:
            return socket.create_connection(("127.0.0.1", port), timeout=timeout)
        except OSError:
            if time.monotonic() > deadline:
                raise
            time.sleep(0.05)


class LineClient:
    def __init__(self, port):
        self.sock = connect(port)
        self.buffer = b""

    def query(self, line):
        self.sock.sendall(line.encode() + b"\n")
        return self.read_line()

    def read_line(self):
        while b"\n" not in self.buffer:
            chunk = self.sock.recv(65536)
            if not chunk:
                return None
            self.buffer += chunk
        line, self.buffer = self.buffer.split(b"\n", 1)
        return line.decode(errors="replace")

    def close(self):
        self.sock.close()


def start_server(args, port):
    if args.server:
        command = [part.replace("{port}", str(port)) for part in args.server.split()]
    else:
        command = [args.sim, "--headless", "--listen", f"127.0.0.1:{port}"]
    process = subprocess.Popen(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    connect(port).close()
    time.sleep(0.5)
    return process


def percentile(values, fraction):
    ordered = sorted(values)
    return ordered[min(len(ordered) - 1, int(fraction * len(ordered)))]


def answer_times(port, query, stop=None, limit=100000):
    """Sends `query` until `stop` is set (or `limit` times); returns the answer times."""
    client = LineClient(port)
    times = []
    for _ in range(limit):
        if stop is not None and stop.is_set():
            break
        start = time.perf_counter()
        if client.query(query) is None:
            break
        times.append(time.perf_counter() - start)
    client.close()
    return times


def ask(port, query, stop, results):
    """answer_times in a process of its own: the times go to `results`."""
    results.put(answer_times(port, query, stop))


# A key press the panel's thread serves, and the answer once it has.
KEY_PRESS = "SYST:KEY DOWN;*OPC?"


def summary(times):
    return (f"{len(times)} answers, median {percentile(times, 0.5) * 1000:.3f} ms, "
            f"p99 {percentile(times, 0.99) * 1000:.3f} ms, max {max(times) * 1000:.3f} ms")


def attack(args, port, pid):
    idle_keys = answer_times(port, KEY_PRESS, limit=2000)  # on an otherwise idle server
    before = rss_kib(pid)
    deep = "A:" * 1000 + "A" + ";A" * 999
    wide = "A" + ";A" * 1999
    # The asking clients run in processes of their own, so that the attacker's sending does not
    # hold up their measurements (one interpreter runs one thread at a time).
    stop = multiprocessing.Event()
    results = multiprocessing.Queue()
    key_results = multiprocessing.Queue()
    asker = multiprocessing.Process(target=ask, args=(port, "*IDN?", stop, results))
    presser = multiprocessing.Process(target=ask, args=(port, KEY_PRESS, stop, key_results))
    asker.start()
    presser.start()
    peak = before
    for _ in range(args.rounds):
        attacker = connect(port)
        payload = "".join(f"{deep}\n{wide}\n" for _ in range(40)).encode()
        attacker.sendall(payload)
        attacker.sendall(b"*OPC?\n")
        attacker.settimeout(30)
        received = b""
        while b"1\n" not in received:
            chunk = attacker.recv(65536)
            if not chunk:
                break
            received += chunk
            peak = max(peak, rss_kib(pid))
        peak = max(peak, rss_kib(pid))
        attacker.close()
    stop.set()
    times = results.get(timeout=60)
    keys = key_results.get(timeout=60)
    asker.join()
    presser.join()
    after = rss_kib(pid)
    print(f"RSS before {before} KiB, peak {peak} KiB, after {after} KiB, "
          f"growth {peak - before} KiB")
    if times:
        print(f"*IDN? during the attack: {summary(times)}")
    print(f"key press ({KEY_PRESS}) idle: {summary(idle_keys)}")
    if keys:
        ratio = percentile(keys, 0.5) / percentile(idle_keys, 0.5)
        print(f"key press during the attack: {summary(keys)}; median {ratio:.2f} x idle")


def token(args, port, pid):
    seconds = min(args.seconds, MAX_SECONDS)
    start_cpu = cpu_seconds(pid)
    start = time.monotonic()
    clients = 0
    refused = 0
    while time.monotonic() - start < seconds:
        second = time.monotonic()
        for _ in range(args.clients):
            client = connect(port)
            client.sendall(b'SYST:AUTH "wrong"\n')
            client.settimeout(5)
            try:
                answer = client.recv(4096)
            except OSError:
                answer = b""
            refused += answer.startswith(b"-203")
            client.close()
            clients += 1
        time.sleep(max(0.0, 1.0 - (time.monotonic() - second)))
    elapsed = time.monotonic() - start
    print(f"{clients} clients ({refused} answered -203) failed the token check and hung up "
          f"over {elapsed:.1f} s; "
          f"server CPU time {cpu_seconds(pid) - start_cpu:.3f} s")


def soak(args, port, pid):
    seconds = min(args.seconds, MAX_SECONDS)
    stop = threading.Event()
    counts = [0] * args.clients

    def drive(index):
        client = LineClient(port)
        keys = ["DOWN", "UP"]
        for turn in range(10 ** 9):
            if stop.is_set():
                break
            answer = client.query(f"SYST:KEY {keys[turn % 2]};:DISP:TEXT? 1;INV? 1;:SYST:ERR?")
            for _ in range(2):
                if answer is not None:
                    answer = client.read_line()
            if answer is None:
                break
            counts[index] += 1
        client.close()

    threads = [threading.Thread(target=drive, args=(i,)) for i in range(args.clients)]
    for thread in threads:
        thread.start()
    start = time.monotonic()
    samples = []
    while time.monotonic() - start < seconds:
        time.sleep(min(10.0, max(0.0, seconds - (time.monotonic() - start))))
        samples.append((time.monotonic() - start, rss_kib(pid)))
        print(f"{samples[-1][0]:6.0f} s  RSS {samples[-1][1]} KiB  lines {sum(counts)}", flush=True)
    stop.set()
    for thread in threads:
        thread.join()
    settled = [rss for at, rss in samples if at >= min(60.0, seconds / 2)]
    if settled:
        print(f"RSS from {settled[0]} KiB to {settled[-1]} KiB (max {max(settled)} KiB) after the "
              f"first {min(60.0, seconds / 2):.0f} s; {sum(counts)} lines of 4 commands")


def hint(args, port, pid):
    del pid
    driver = LineClient(port)
    reader = LineClient(port)

    def selected():
        lines = driver.query("DISP:TEXT?").split('","')
        for number in range(1, len(lines) + 1):
            if driver.query(f"DISP:INV? {number}") != '""':
                return lines[number - 1]
        return ""

    for _ in range(12):
        if "System" in selected():
            break
        driver.query("SYST:KEY DOWN;:*OPC?")
    driver.query("SYST:KEY ENTER;:*OPC?")
    for _ in range(12):
        if "Save settings" in selected():
            break
        driver.query("SYST:KEY DOWN;:*OPC?")
    if "Save settings" not in selected():
        print("Save settings not found (not the simulator's demo?)")
        return
    for _ in range(min(args.rounds, 20)):
        driver.sock.sendall(b"SYST:KEY ENTER\n")
        time.sleep(0.1)
        start = time.perf_counter()
        reader.query("DISP:TEXT? 1")
        read = time.perf_counter() - start
        start = time.perf_counter()
        reader.query("*CLS;*OPC?")
        change = time.perf_counter() - start
        print(f"during the hint: DISP:TEXT? {read * 1000:.2f} ms, *CLS;*OPC? {change * 1000:.0f} ms")
        time.sleep(1.2)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--sim", default="frontpanel-sim")
    parser.add_argument("--server", help="server command; {port} is replaced by the port")
    parser.add_argument("mode", choices=["attack", "token", "soak", "hint"])
    parser.add_argument("--seconds", type=float, default=600)
    parser.add_argument("--clients", type=int, default=8)
    parser.add_argument("--rounds", type=int, default=1)
    args = parser.parse_args()
    args.clients = max(1, min(args.clients, 1000))
    args.rounds = max(1, min(args.rounds, 100))
    port = free_port()
    process = start_server(args, port)
    try:
        modes = {"attack": attack, "token": token, "soak": soak, "hint": hint}
        modes[args.mode](args, port, process.pid)
    finally:
        process.terminate()
        process.wait(timeout=10)
    return 0


if __name__ == "__main__":
    sys.exit(main())
