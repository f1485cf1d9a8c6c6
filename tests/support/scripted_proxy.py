#!/usr/bin/env python3
"""A proxy for the tests, doing on demand what real proxies will not.

HTTP: CONNECT and absolute-URI requests, kept alive. Target hosts choose the behaviour:
  "refuseNNN.test"  the proxy answers status NNN
  "badsig.test"     the NTLM challenge has a wrong signature
  "close.test"      the proxy closes the connection
With --ntlm every HTTP request must pass an NTLM exchange (under "NTLM" or
"Negotiate") whose NT response is recomputed here from --password; a wrong one
gets a second 407. MD4 and DES come from libcrypto (NtlmAuthTest holds the
published values they must give).
Each NTLM Authenticate message seen is logged as "authenticate domain=D user=U ok=B".
"""
import argparse
import base64
import contextlib
import ctypes
import ctypes.util
import hashlib
import socket
import socketserver
import struct
import sys
import threading


# MD4 and DES from libcrypto's low-level calls: hashlib may lack md4 and has no DES.
CRYPTO = ctypes.CDLL(ctypes.util.find_library('crypto'))


def md4(data):
    out = ctypes.create_string_buffer(16)
    CRYPTO.MD4(bytes(data), len(data), out)
    return out.raw


def des_encrypt(key8, block8):
    schedule, out = ctypes.create_string_buffer(128), ctypes.create_string_buffer(8)
    CRYPTO.DES_set_key_unchecked(key8, schedule)
    CRYPTO.DES_ecb_encrypt(block8, out, schedule, 1)
    return out.raw


def desl(key16, data8):
    bits = int.from_bytes(key16 + b'\0' * 5, 'big')  # three 56-bit DES keys, 7 bits a key byte
    return b''.join(des_encrypt(bytes(((bits >> (161 - 7 * i)) & 0x7f) << 1 for i in range(8 * j, 8 * j + 8)), data8)
                    for j in range(3))


def nt_hash(password):
    return md4(password.encode('utf-16-le'))


SERVER_CHALLENGE = bytes.fromhex('0123456789abcdef')
CHALLENGE_FLAGS = 0x1 | 0x4 | 0x200 | 0x8000 | 0x80000 | 0x800000


def challenge_message(bad_signature):
    target = 'TEST'.encode('utf-16-le')
    info = struct.pack('<HH', 2, len(target)) + target + b'\0\0\0\0'
    head = (b'NTLMSSX\0' if bad_signature else b'NTLMSSP\0') + struct.pack('<I', 2)
    head += struct.pack('<HHI', len(target), len(target), 48) + struct.pack('<I', CHALLENGE_FLAGS)
    head += SERVER_CHALLENGE + b'\0' * 8 + struct.pack('<HHI', len(info), len(info), 48 + len(target))
    return head + target + info


def field(message, at):
    length, _, offset = struct.unpack_from('<HHI', message, at)
    return message[offset:offset + length]


def relay(client, upstream):
    def pump(source, sink):
        with contextlib.suppress(OSError):
            while data := source.recv(65536):
                sink.sendall(data)
        with contextlib.suppress(OSError):
            sink.shutdown(socket.SHUT_WR)
    other = threading.Thread(target=pump, args=(upstream, client), daemon=True)
    other.start()
    pump(client, upstream)
    other.join()
    upstream.close()


class Handler(socketserver.BaseRequestHandler):
    def log(self, text):
        with self.server.log_lock, open(self.server.args.log, 'a') as f:
            f.write(text + '\n')

    def handle(self):
        sock = self.request
        reader = sock.makefile('rb')
        while line := reader.readline():
            method, target, _ = line.decode('latin-1').split(' ', 2)
            headers = []
            while (header := reader.readline()) not in (b'\r\n', b'\n', b''):
                name, _, value = header.decode('latin-1').partition(':')
                headers.append((name.strip(), value.strip()))
            lookup = {name.lower(): value for name, value in headers}
            body = reader.read(int(lookup.get('content-length', '0')))
            if method == 'CONNECT':
                host, _, port = target.rpartition(':')
            else:
                authority, slash, path = target.split('://', 1)[1].partition('/')
                host, _, port = authority.partition(':')
            self.log('%s %s body=%d proxy-authorization=%s' % (method, target, len(body),
                                                                 lookup.get('proxy-authorization', '')))
            if host.startswith('close'):
                return
            if host.startswith('refuse'):
                return sock.sendall(('HTTP/1.0 %s Refused by script\r\n\r\n' % host[6:9]).encode())
            if self.server.args.ntlm and not self.authenticated(sock, lookup, host):
                continue
            upstream = socket.create_connection(('127.0.0.1', int(port or '80')))
            if method == 'CONNECT':
                sock.sendall(b'HTTP/1.0 200 Connection established\r\nProxy-agent: scripted\r\n\r\n')
                return relay(sock, upstream)
            forwarded = '%s %s%s HTTP/1.0\r\n' % (method, slash, path)
            for name, value in headers:
                if name.lower() not in ('proxy-authorization', 'connection', 'proxy-connection', 'keep-alive'):
                    forwarded += '%s: %s\r\n' % (name, value)
            upstream.sendall(forwarded.encode('latin-1') + b'Connection: close\r\n\r\n' + body)
            with upstream, upstream.makefile('rb') as answer:
                sock.sendall(answer.read())

    def authenticated(self, sock, headers, host):
        scheme, _, token = headers.get('proxy-authorization', '').partition(' ')
        message = base64.b64decode(token) if scheme in ('NTLM', 'Negotiate') and token else b''
        if len(message) >= 12 and message[8] == 1:
            challenge = base64.b64encode(challenge_message(host.startswith('badsig'))).decode()
            body = b'<html>Proxy authentication required</html>\r\n'
            sock.sendall(('HTTP/1.1 407 Proxy Authentication Required\r\nProxy-Authenticate: %s %s\r\n'
                          'Content-Length: %d\r\n\r\n' % (scheme, challenge, len(body))).encode() + body)
            return False
        if len(message) >= 64 and message[8] == 3:
            flags = struct.unpack_from('<I', message, 60)[0]
            domain = field(message, 28).decode('utf-16-le', 'replace')
            user = field(message, 36).decode('utf-16-le', 'replace')
            lm, nt = field(message, 12), field(message, 20)
            ess = flags & 0x80000
            expected = desl(nt_hash(self.server.args.password),
                            hashlib.md5(SERVER_CHALLENGE + lm[:8]).digest()[:8] if ess else SERVER_CHALLENGE)
            ok = nt == expected and ('%s\\%s' % (domain, user) if domain else user) == (self.server.args.user or '')
            self.log('authenticate domain=%s user=%s ok=%d' % (domain, user, ok))
            if ok:
                return True
        body = b'denied\r\n'
        sock.sendall(('HTTP/1.1 407 Proxy Authentication Required\r\nProxy-Authenticate: NTLM\r\n'
                      'Content-Length: %d\r\n\r\n' % len(body)).encode() + body)
        return False


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument('--port', type=int, required=True)
    parser.add_argument('--log', required=True)
    parser.add_argument('--ntlm', action='store_true')
    parser.add_argument('--user')
    parser.add_argument('--password', default='')
    args = parser.parse_args()
    socketserver.ThreadingTCPServer.daemon_threads = socketserver.ThreadingTCPServer.allow_reuse_address = True
    server = socketserver.ThreadingTCPServer(('127.0.0.1', args.port), Handler)
    server.args, server.log_lock = args, threading.Lock()
    open(args.log, 'w').close()
    server.serve_forever()


if __name__ == '__main__':
    sys.exit(main())
