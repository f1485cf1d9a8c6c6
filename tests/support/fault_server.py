#!/usr/bin/env python3
"""HTTP answers real servers will not give on purpose, for the client's tests.

Usage: fault_server.py PORT

Listens on 127.0.0.1:PORT until killed. Each connection's request is read
(head and Content-Length body) and answered by the fault its path names;
a connection that sends nothing (a readiness probe) is simply closed.
Python 3 standard library only.
"""
import socketserver
import struct
import sys
import zlib

OK = b"HTTP/1.1 200 OK\r\n"
FLOOD = 1 << 31  # 2 GiB


def gzip_bomb():
    """FLOOD zeros as gzip, about 2 MB. Each 1 MiB of zeros ends in a full
    flush, which makes its compressed form the same every time, so one is
    compressed and repeated."""
    block = zlib.compressobj(9, zlib.DEFLATED, -15)
    piece = block.compress(bytes(1 << 20)) + block.flush(zlib.Z_FULL_FLUSH)
    header = b"\x1f\x8b\x08\x00" + struct.pack("<I", 0) + b"\x00\x03"
    crc = 0x4DBDF21C  # crc32 of FLOOD zeros
    return header + piece * (FLOOD >> 20) + block.flush() + struct.pack("<II", crc, FLOOD & 0xFFFFFFFF)


def flood(conn):
    conn.sendall(OK + b"Content-Length: %d\r\n\r\n" % FLOOD)
    zeros = bytes(1 << 20)
    try:
        for _ in range(FLOOD >> 20):
            conn.sendall(zeros)
    except OSError:
        pass  # the client gave up, which its test reports


def bomb(conn):
    body = gzip_bomb()
    conn.sendall(OK + b"Content-Encoding: gzip\r\nContent-Length: %d\r\n\r\n" % len(body) + body)


FAULTS = {"/flood": flood, "/gzip-bomb": bomb}


class Handler(socketserver.StreamRequestHandler):
    def handle(self):
        line = self.rfile.readline()
        if not line:
            return  # a readiness probe
        length = 0
        while (header := self.rfile.readline()) not in (b"\r\n", b"\n", b""):
            name, _, value = header.decode("latin-1").partition(":")
            if name.strip().lower() == "content-length":
                length = int(value)
        self.rfile.read(length)
        parts = line.decode("latin-1").split(" ")
        fault = FAULTS.get(parts[1] if len(parts) > 1 else "")
        if fault is None:
            self.request.sendall(b"HTTP/1.1 404 Not Found\r\nContent-Length: 0\r\n\r\n")
        else:
            fault(self.request)


class Server(socketserver.ThreadingTCPServer):
    allow_reuse_address = True
    daemon_threads = True


if __name__ == "__main__":
    with Server(("127.0.0.1", int(sys.argv[1])), Handler) as server:
        server.serve_forever()
