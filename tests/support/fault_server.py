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

PAUSE = 0.03  # between writes that must arrive as separate reads


def gzip_with_comment(text):
    """A gzip member whose header carries FCOMMENT, which the client must skip."""
    deflate = zlib.compressobj(9, zlib.DEFLATED, -15)
    body = deflate.compress(text) + deflate.flush()
    header = b"\x1f\x8b\x08\x10" + struct.pack("<I", 0) + b"\x00\x03" + b"a comment\x00"
    trailer = struct.pack("<II", zlib.crc32(text) & 0xFFFFFFFF, len(text))
    return header + body + trailer


def split_crlf(conn):
    for piece in (b"HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n5\r", b"\nhello\r",
                  b"\n6\r\n world\r\n0\r", b"\n\r\n"):
        conn.sendall(piece)
        time.sleep(PAUSE)


def close_delimited(conn):
    conn.sendall(b"HTTP/1.0 200 OK\r\n\r\nbody until")
    time.sleep(PAUSE)
    conn.sendall(b" the close")


def stall(conn):
    conn.sendall(b"HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\nabc")
    conn.settimeout(10)
    try:
        while conn.recv(4096):  # until the client gives up and closes
            pass
    except OSError:
        pass


def close_mid_body(conn):
    conn.sendall(b"HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\npartial")


def bad_gzip(conn):
    conn.sendall(b"HTTP/1.1 200 OK\r\nContent-Encoding: gzip\r\n\r\n\x1f\x8b\x07\x00\x00\x00\x00\x00\x00\x03xx")


def gzip_comment(conn):
    conn.sendall(b"HTTP/1.1 200 OK\r\nContent-Encoding: gzip\r\n\r\n" + gzip_with_comment(b"commented body"))


FAULTS = {
    "/split-crlf": split_crlf,
    "/close-delimited": close_delimited,
    "/stall": stall,
    "/close-mid-body": close_mid_body,
    "/bad-gzip": bad_gzip,
    "/gzip-comment": gzip_comment,
}


def read_request(conn):
    """The request's path, or None when the peer sent no request."""
    data = b""
    while b"\r\n\r\n" not in data:
        piece = conn.recv(4096)
        if not piece:
            return None
        data += piece
    head, _, body = data.partition(b"\r\n\r\n")
    lines = head.decode("latin-1").split("\r\n")
    length = 0
    for line in lines[1:]:
        name, _, value = line.partition(":")
        if name.strip().lower() == "content-length":
            length = int(value.strip())
    while len(body) < length:
        piece = conn.recv(4096)
        if not piece:
            break
        body += piece
    parts = lines[0].split(" ")
    return parts[1] if len(parts) > 1 else ""


class Handler(socketserver.BaseRequestHandler):
    def handle(self):
        path = read_request(self.request)
        if path is None:
            return
        fault = FAULTS.get(path)
        if fault is None:
            self.request.sendall(b"HTTP/1.1 404 Not Found\r\nContent-Length: 0\r\n\r\n")
        else:
            fault(self.request)


class Server(socketserver.ThreadingTCPServer):
    allow_reuse_address = True
    daemon_threads = True


def main():
    with Server(("127.0.0.1", int(sys.argv[1])), Handler) as server:
        server.serve_forever()


if __name__ == "__main__":
    main()
