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
import time
import zlib

OK = b"HTTP/1.1 200 OK\r\n"


def gzip_with_comment(text):
    """A gzip member whose header carries FCOMMENT, which the client must skip."""
    deflate = zlib.compressobj(9, zlib.DEFLATED, -15)
    header = b"\x1f\x8b\x08\x10" + struct.pack("<I", 0) + b"\x00\x03" + b"a comment\x00"
    return header + deflate.compress(text) + deflate.flush() + struct.pack("<II", zlib.crc32(text), len(text))


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


def stall(conn):
    conn.sendall(OK + b"Content-Length: 10\r\n\r\nabc")
    conn.settimeout(10)
    try:
        while conn.recv(4096):  # until the client gives up and closes
            pass
    except OSError:
        pass


# Each fault: the pieces written with a pause between (each arrives as its own
# read), or a function that has the connection.
FAULTS = {
    "/split-crlf": [OK + b"Transfer-Encoding: chunked\r\n\r\n5\r", b"\nhello\r", b"\n6\r\n world\r\n0\r", b"\n\r\n"],
    "/close-delimited": [b"HTTP/1.0 200 OK\r\n\r\nbody until", b" the close"],
    "/stall": stall,
    "/flood": flood,
    "/gzip-bomb": bomb,
    "/close-mid-body": [OK + b"Content-Length: 100\r\n\r\npartial"],
    "/bad-gzip": [OK + b"Content-Encoding: gzip\r\n\r\n\x1f\x8b\x07\x00\x00\x00\x00\x00\x00\x03xx"],
    "/gzip-comment": [OK + b"Content-Encoding: gzip\r\n\r\n" + gzip_with_comment(b"commented body")],
}


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
        fault = FAULTS.get(parts[1] if len(parts) > 1 else "", [b"HTTP/1.1 404 Not Found\r\nContent-Length: 0\r\n\r\n"])
        if callable(fault):
            return fault(self.request)
        for i, piece in enumerate(fault):
            if i > 0:
                time.sleep(0.03)
            self.request.sendall(piece)


class Server(socketserver.ThreadingTCPServer):
    allow_reuse_address = True
    daemon_threads = True


if __name__ == "__main__":
    with Server(("127.0.0.1", int(sys.argv[1])), Handler) as server:
        server.serve_forever()
