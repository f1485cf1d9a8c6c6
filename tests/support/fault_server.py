#!/usr/bin/env python3
"""HTTP answers real servers will not give on purpose, for the client's tests.

Usage: fault_server.py PORT [--tls PORT CERT KEY]... [--silent PORT] [--unaccepted PORT]
Each request is answered by the fault its path names, over TLS too with --tls;
--silent accepts and never writes; --unaccepted never accepts (a full queue).
"""
import contextlib
import gzip
import socket
import socketserver
import ssl
import struct
import sys
import threading
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
    with contextlib.suppress(OSError):  # the client gave up, which its test reports
        for _ in range(FLOOD >> 20):
            conn.sendall(zeros)


def bomb(conn):
    body = gzip_bomb()
    conn.sendall(OK + b"Content-Encoding: gzip\r\nContent-Length: %d\r\n\r\n" % len(body) + body)


def hold(conn):
    """Keeps the connection until the client gives up."""
    with contextlib.suppress(OSError):
        while conn.recv(4096):
            pass


def answer(head, body=b"", then=None):
    def fault(conn):
        conn.sendall(head + body)
        if then:
            then(conn)
    return fault


PACKED = gzip.compress(b"<OFX>" + b"x" * 4000 + b"</OFX>")
GZIP = b"Content-Encoding: gzip\r\n"

FAULTS = {
    "/flood": flood,
    "/gzip-bomb": bomb,
    "/ok": answer(OK + b"Content-Length: 2\r\n\r\nok"),
    "/stall-status": hold,
    "/stall-headers": answer(OK + b"Content-Type: text/plain\r\n", then=hold),
    "/stall-body": answer(OK + b"Content-Length: 10\r\n\r\nabc", then=hold),
    "/cut-chunk": answer(OK + b"Transfer-Encoding: chunked\r\n\r\n3\r\nabc\r\na\r\nde"),
    "/gzip-truncated": answer(OK + GZIP + b"\r\n", PACKED[: len(PACKED) // 2]),
    "/gzip-corrupt": answer(OK + GZIP + b"\r\n", PACKED[:10] + b"\xff" * 64),
    "/long-header": answer(OK + b"X-Long: " + b"y" * (1 << 20) + b"\r\nContent-Length: 2\r\n\r\nok"),
    "/many-headers": answer(OK + b"".join(b"X-H%d: v\r\n" % i for i in range(10000)) + b"Content-Length: 2\r\n\r\nok"),
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
        fault = FAULTS.get(parts[1] if len(parts) > 1 else "")
        if fault is None:
            self.request.sendall(b"HTTP/1.1 404 Not Found\r\nContent-Length: 0\r\n\r\n")
        else:
            fault(self.request)


class TlsHandler(Handler):
    def setup(self):
        self.request = self.server.context.wrap_socket(self.request, server_side=True)
        super().setup()


class SilentHandler(socketserver.BaseRequestHandler):
    def handle(self):
        hold(self.request)


class Server(socketserver.ThreadingTCPServer):
    allow_reuse_address = True
    daemon_threads = True

    def handle_error(self, request, client_address):
        pass  # a client refusing the certificate, or leaving mid-answer: the client's test reports it


def unaccepted(port):
    listener = socket.create_server(("127.0.0.1", port), backlog=0)
    fillers = []
    for _ in range(2):  # the first fills the queue, the second waits for room
        filler = socket.socket()
        filler.setblocking(False)
        filler.connect_ex(("127.0.0.1", port))
        fillers.append(filler)
    threading.Event().wait()  # holds listener and fillers


def main(args):
    servers = [Server(("127.0.0.1", int(args.pop(0))), Handler)]
    while args:
        option, port = args.pop(0), int(args.pop(0))
        if option == "--tls":
            server = Server(("127.0.0.1", port), TlsHandler)
            server.context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
            server.context.load_cert_chain(args.pop(0), args.pop(0))
            servers.append(server)
        elif option == "--silent":
            servers.append(Server(("127.0.0.1", port), SilentHandler))
        elif option == "--unaccepted":
            threading.Thread(target=unaccepted, args=(port,), daemon=True).start()
    for server in servers[1:]:
        threading.Thread(target=server.serve_forever, daemon=True).start()
    servers[0].serve_forever()


if __name__ == "__main__":
    main(sys.argv[1:])
