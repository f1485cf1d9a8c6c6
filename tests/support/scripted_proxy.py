#!/usr/bin/env python3
"""A proxy for the tests, doing on demand what real proxies will not.

HTTP (CONNECT and absolute-URI requests, kept alive), SOCKS 4 and SOCKS 5 on
one port. Targets choose the behaviour:
  CONNECT/URL host "refuseNNN.test"  the proxy answers status NNN
  CONNECT/URL host "badsig.test"     the NTLM challenge has a wrong signature
  CONNECT/URL host "close.test"      the proxy closes the connection
  SOCKS target port 9000 + N         the SOCKS reply code is N
With --ntlm every HTTP request must pass an NTLM exchange (under "NTLM" or
"Negotiate") whose NT response is recomputed here from --password; a wrong one
gets a second 407. Python standard library only: MD4 and DES are written out
below (hashlib's md4 may be disabled) and checked against published values.
Each NTLM Authenticate message seen is logged as "authenticate domain=D user=U ok=B".
"""
import argparse
import base64
import contextlib
import hashlib
import socket
import socketserver
import struct
import sys
import threading


def md4(data):
    def rotl(v, s):
        v &= 0xffffffff
        return ((v << s) | (v >> (32 - s))) & 0xffffffff
    msg = bytes(data) + b'\x80' + b'\0' * ((55 - len(data)) % 64) + struct.pack('<Q', len(data) * 8)
    rounds = ((lambda x, y, z: (x & y) | (~x & z), 0, range(16), (3, 7, 11, 19)),
              (lambda x, y, z: (x & y) | (x & z) | (y & z), 0x5a827999, [i % 4 * 4 + i // 4 for i in range(16)],
               (3, 5, 9, 13)),
              (lambda x, y, z: x ^ y ^ z, 0x6ed9eba1, (0, 8, 4, 12, 2, 10, 6, 14, 1, 9, 5, 13, 3, 11, 7, 15),
               (3, 9, 11, 15)))
    h = [0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476]
    for off in range(0, len(msg), 64):
        x = struct.unpack('<16I', msg[off:off + 64])
        a, b, c, d = h
        for f, k, order, shifts in rounds:
            for i in range(16):  # each step updates the next word round a, d, c, b
                a, b, c, d = d, rotl(a + f(b, c, d) + x[order[i]] + k, shifts[i % 4]), b, c
        h = [(v + w) & 0xffffffff for v, w in zip(h, (a, b, c, d))]
    return struct.pack('<4I', *h)


IP = [[58, 60, 62, 64, 57, 59, 61, 63][r] - 8 * c for r in range(8) for c in range(8)]
FP = [IP.index(i) + 1 for i in range(1, 65)]
E = [(4 * j + k - 1) % 32 + 1 for j in range(8) for k in range(6)]
P = [16, 7, 20, 21, 29, 12, 28, 17, 1, 15, 23, 26, 5, 18, 31, 10, 2, 8, 24, 14, 32, 27, 3, 9,
     19, 13, 30, 6, 22, 11, 4, 25]
PC1 = [57, 49, 41, 33, 25, 17, 9, 1, 58, 50, 42, 34, 26, 18, 10, 2, 59, 51, 43, 35, 27, 19, 11, 3,
       60, 52, 44, 36, 63, 55, 47, 39, 31, 23, 15, 7, 62, 54, 46, 38, 30, 22, 14, 6, 61, 53, 45, 37,
       29, 21, 13, 5, 28, 20, 12, 4]
PC2 = [14, 17, 11, 24, 1, 5, 3, 28, 15, 6, 21, 10, 23, 19, 12, 4, 26, 8, 16, 7, 27, 20, 13, 2,
       41, 52, 31, 37, 47, 55, 30, 40, 51, 45, 33, 48, 44, 49, 39, 56, 34, 53, 46, 42, 50, 36, 29, 32]
SHIFTS = [1, 1, 2, 2, 2, 2, 2, 2, 1, 2, 2, 2, 2, 2, 2, 1]
SBOX = [[int(n, 16) for n in box] for box in (
    'e4d12fb83a6c59070f74e2d1a6cb953841e8d62bfc973a50fc8249175b3ea06d',
    'f18e6b34972dc05a3d47f28ec01a69b50e7ba4d158c6932fd8a13f42b67c05e9',
    'a09e63f51dc7b428d709346a285ecbf1d6498f30b12c5ae71ad069874fe3b52c',
    '7de3069a1285bc4fd8b56f03472c1ae9a690cb7df13e52843f06a1d8945bc72e',
    '2c417ab6853fd0e9eb2c47d150fa3986421bad78f9c5630eb8c71e2d6f09a453',
    'c1af92680d34e75baf427c9561de0b389ef528c3704a1db6432c95fabe17608d',
    '4b2ef08d3c975a61d0b7491ae35c2f8614bdc37eaf6805926bd814a7950fe23c',
    'd2846fb1a93e50c71fd8a374c56b0e927b419ce206adf35821e74a8dfc90356b')]


def permute(value, table, width):
    out = 0
    for position in table:
        out = (out << 1) | ((value >> (width - position)) & 1)
    return out


def des_encrypt(key8, block8):
    key = permute(int.from_bytes(key8, 'big'), PC1, 64)
    c, d = key >> 28, key & 0xfffffff
    subkeys = []
    for shift in SHIFTS:
        c = ((c << shift) | (c >> (28 - shift))) & 0xfffffff
        d = ((d << shift) | (d >> (28 - shift))) & 0xfffffff
        subkeys.append(permute((c << 28) | d, PC2, 56))
    block = permute(int.from_bytes(block8, 'big'), IP, 64)
    left, right = block >> 32, block & 0xffffffff
    for subkey in subkeys:
        x = permute(right, E, 32) ^ subkey
        s = 0
        for i in range(8):
            six = (x >> (42 - 6 * i)) & 0x3f
            s = (s << 4) | SBOX[i][((six & 0x20) | ((six & 1) << 4)) | ((six >> 1) & 0xf)]
        left, right = right, left ^ permute(s, P, 32)
    return permute((right << 32) | left, FP, 64).to_bytes(8, 'big')


def desl(key16, data8):
    bits = int.from_bytes(key16 + b'\0' * 5, 'big')  # three 56-bit DES keys, 7 bits a key byte
    return b''.join(des_encrypt(bytes(((bits >> (161 - 7 * i)) & 0x7f) << 1 for i in range(8 * j, 8 * j + 8)), data8)
                    for j in range(3))


def nt_hash(password):
    return md4(password.encode('utf-16-le'))


def self_check():
    nt = nt_hash('Password')
    challenge = bytes.fromhex('0123456789abcdef')
    assert nt.hex() == 'a4f49c406510bdcab6824ee7c30fd852', 'md4'
    assert desl(nt, challenge).hex() == '67c43011f30298a2ad35ece64f16331c44bdbed927841f94', 'des'
    client = b'\xaa' * 8
    ess = desl(nt, hashlib.md5(challenge + client).digest()[:8])
    assert ess.hex() == '7537f803ae367128ca458204bde7caf81e97ed2683267232', 'ess'


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


def read_exact(sock, n):
    data = b''
    while len(data) < n:
        piece = sock.recv(n - len(data))
        if not piece:
            raise EOFError
        data += piece
    return data


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
        first = self.request.recv(1, socket.MSG_PEEK)
        if first:
            {b'\x04': self.socks4, b'\x05': self.socks5}.get(first, self.http)(self.request)

    def socks4(self, sock):
        request = read_exact(sock, 8)
        user = b''
        while not user.endswith(b'\0'):
            user += read_exact(sock, 1)
        port = struct.unpack('>H', request[2:4])[0]
        self.log('socks4 user=%s' % user[:-1].decode('latin-1'))
        if 9000 <= port <= 9255:  # the scripted reply code
            return sock.sendall(bytes([0, port - 9000]) + b'\0' * 6)
        upstream = socket.create_connection((socket.inet_ntoa(request[4:8]), port))
        sock.sendall(bytes([0, 90]) + b'\0' * 6)
        relay(sock, upstream)

    def socks5(self, sock):
        methods = read_exact(sock, read_exact(sock, 2)[1])
        method = self.server.args.socks5_method
        if method is None:
            method = 2 if 2 in methods and self.server.args.user else 0
        sock.sendall(bytes([5, method]))
        if method not in (0, 2):
            return
        if method == 2:
            user = read_exact(sock, read_exact(sock, 2)[1]).decode('latin-1')
            password = read_exact(sock, read_exact(sock, 1)[0]).decode('latin-1')
            ok = user == self.server.args.user and password == self.server.args.password
            self.log('socks5 user=%s ok=%d' % (user, ok))
            sock.sendall(bytes([1, 0 if ok else 1]))
            if not ok:
                return
        head = read_exact(sock, 4)
        if head[3] == 1:
            host = socket.inet_ntoa(read_exact(sock, 4))
        else:
            host = read_exact(sock, read_exact(sock, 1)[0]).decode('latin-1')
        port = struct.unpack('>H', read_exact(sock, 2))[0]
        self.log('socks5 connect %s:%d' % (host, port))
        if 9000 <= port <= 9255:  # the scripted reply code
            return sock.sendall(bytes([5, port - 9000, 0, 1]) + b'\0' * 6)
        upstream = socket.create_connection(('127.0.0.1' if host == 'localhost' else host, port))
        sock.sendall(bytes([5, 0, 0, 1, 127, 0, 0, 1, 0, 0]))
        relay(sock, upstream)

    def http(self, sock):
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
    parser.add_argument('--socks5-method', type=int)
    args = parser.parse_args()
    self_check()
    socketserver.ThreadingTCPServer.daemon_threads = socketserver.ThreadingTCPServer.allow_reuse_address = True
    server = socketserver.ThreadingTCPServer(('127.0.0.1', args.port), Handler)
    server.args, server.log_lock = args, threading.Lock()
    open(args.log, 'w').close()
    server.serve_forever()


if __name__ == '__main__':
    sys.exit(main())
