#!/usr/bin/env python3
"""Holds many slow connections to a server from one address, as an attacker would.

Usage: slow_clients.py PORT [--connections 1100] [--interval 5] [--seconds 30]
                       [--source 127.0.0.2]

Each connection starts a request and then sends one more header byte every
INTERVAL seconds, never finishing it. A connection the server closes is opened
again one INTERVAL later, so the attack keeps trying to hold every slot. All connections
come from SOURCE (any 127.x.y.z address reaches a server on 127.0.0.1), so the
client that measures the server from 127.0.0.1 is "another client". Stops by
itself after SECONDS and prints, once a second on standard error and at the end
on standard output, how many connections the server was holding open.
"""
import argparse
import errno
import resource
import selectors
import socket
import sys
import time

REQUEST_START = b"GET /check_url/http://slow.example HTTP/1.1\r\nHost: x\r\nX-Slow: "


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("port", type=int)
    parser.add_argument("--connections", type=int, default=1100)
    parser.add_argument("--interval", type=float, default=5.0)
    parser.add_argument("--seconds", type=float, default=30.0)
    parser.add_argument("--source", default="127.0.0.2")
    args = parser.parse_args()

    soft, hard = resource.getrlimit(resource.RLIMIT_NOFILE)
    wanted = args.connections + 64
    if soft < wanted:
        resource.setrlimit(resource.RLIMIT_NOFILE, (min(wanted, hard), hard))

    selector = selectors.DefaultSelector()
    sockets = {}  # slot -> (socket, time of its next byte)
    reopen = {}  # slot -> when a closed connection is opened again
    opened = 0

    def open_slot(slot, now):
        nonlocal opened
        sock = socket.socket(socket.AF_INET, socket.SOCK_STREAM)
        sock.bind((args.source, 0))
        sock.setblocking(False)
        try:
            sock.connect(("127.0.0.1", args.port))
        except BlockingIOError:
            pass
        except OSError:
            sock.close()
            reopen[slot] = now + args.interval
            return
        opened += 1
        sockets[slot] = (sock, now)
        selector.register(sock, selectors.EVENT_READ, slot)

    def close_slot(slot, now):
        sock, _ = sockets.pop(slot)
        selector.unregister(sock)
        sock.close()
        reopen[slot] = now + args.interval

    started = time.monotonic()
    last_report = started
    sent_start = set()
    held_samples = []
    while True:
        now = time.monotonic()
        if now - started >= args.seconds:
            break
        for slot in range(args.connections):
            if slot not in sockets:
                if reopen.get(slot, 0) <= now:
                    sent_start.discard(slot)
                    open_slot(slot, now)
                continue
            sock, due = sockets[slot]
            if now < due:
                continue
            try:
                sock.send(REQUEST_START if slot not in sent_start else b"a")
                sent_start.add(slot)
                sockets[slot] = (sock, now + args.interval)
            except BlockingIOError:
                pass  # still connecting
            except OSError as error:
                if error.errno not in (errno.ENOTCONN, errno.EAGAIN):
                    close_slot(slot, now)
        for key, _ in selector.select(timeout=0.05):
            slot = key.data
            try:
                if key.fileobj.recv(4096) == b"":
                    close_slot(slot, now)
            except OSError:
                close_slot(slot, now)
        if now - last_report >= 1.0:
            last_report = now
            held = len(sockets)
            held_samples.append(held)
            print(f"slow clients: {held} open, {opened} opened so far", file=sys.stderr)
    for slot in list(sockets):
        close_slot(slot, now)
    settled = held_samples[len(held_samples) // 2:] or [0]
    print(f"{min(settled)} {max(settled)} {opened}")


if __name__ == "__main__":
    main()
