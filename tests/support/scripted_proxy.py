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
import hashlib
import socket
import socketserver
import struct
import sys
import threading


def md4(data):
    def f(x, y, z): return (x & y) | (~x & z)
    def g(x, y, z): return (x & y) | (x & z) | (y & z)
    def h(x, y, z): return x ^ y ^ z
    def rotl(v, s): v &= 0xffffffff; return ((v << s) | (v >> (32 - s))) & 0xffffffff
    msg = bytearray(data) + b'\x80'
    while len(msg) % 64 != 56:
        msg.append(0)
    msg += struct.pack('<Q', (len(data) * 8) & 0xffffffffffffffff)
    a, b, c, d = 0x67452301, 0xefcdab89, 0x98badcfe, 0x10325476
    for off in range(0, len(msg), 64):
        x = struct.unpack('<16I', msg[off:off + 64])
        aa, bb, cc, dd = a, b, c, d
        for i in range(16):
            k, s = i, (3, 7, 11, 19)[i % 4]
            if i % 4 == 0: a = rotl(a + f(b, c, d) + x[k], s)
            elif i % 4 == 1: d = rotl(d + f(a, b, c) + x[k], s)
            elif i % 4 == 2: c = rotl(c + f(d, a, b) + x[k], s)
            else: b = rotl(b + f(c, d, a) + x[k], s)
        for i in range(16):
            k, s = (i % 4) * 4 + i // 4, (3, 5, 9, 13)[i % 4]
            if i % 4 == 0: a = rotl(a + g(b, c, d) + x[k] + 0x5a827999, s)
            elif i % 4 == 1: d = rotl(d + g(a, b, c) + x[k] + 0x5a827999, s)
            elif i % 4 == 2: c = rotl(c + g(d, a, b) + x[k] + 0x5a827999, s)
            else: b = rotl(b + g(c, d, a) + x[k] + 0x5a827999, s)
        order = (0, 8, 4, 12, 2, 10, 6, 14, 1, 9, 5, 13, 3, 11, 7, 15)
        for i in range(16):
            k, s = order[i], (3, 9, 11, 15)[i % 4]
            if i % 4 == 0: a = rotl(a + h(b, c, d) + x[k] + 0x6ed9eba1, s)
            elif i % 4 == 1: d = rotl(d + h(a, b, c) + x[k] + 0x6ed9eba1, s)
            elif i % 4 == 2: c = rotl(c + h(d, a, b) + x[k] + 0x6ed9eba1, s)
            else: b = rotl(b + h(c, d, a) + x[k] + 0x6ed9eba1, s)
        a, b, c, d = [(v + w) & 0xffffffff for v, w in ((a, aa), (b, bb), (c, cc), (d, dd))]
    return struct.pack('<4I', a, b, c, d)


IP = [58, 50, 42, 34, 26, 18, 10, 2, 60, 52, 44, 36, 28, 20, 12, 4, 62, 54, 46, 38, 30, 22, 14, 6,
      64, 56, 48, 40, 32, 24, 16, 8, 57, 49, 41, 33, 25, 17, 9, 1, 59, 51, 43, 35, 27, 19, 11, 3,
      61, 53, 45, 37, 29, 21, 13, 5, 63, 55, 47, 39, 31, 23, 15, 7]
FP = [40, 8, 48, 16, 56, 24, 64, 32, 39, 7, 47, 15, 55, 23, 63, 31, 38, 6, 46, 14, 54, 22, 62, 30,
      37, 5, 45, 13, 53, 21, 61, 29, 36, 4, 44, 12, 52, 20, 60, 28, 35, 3, 43, 11, 51, 19, 59, 27,
      34, 2, 42, 10, 50, 18, 58, 26, 33, 1, 41, 9, 49, 17, 57, 25]
E = [32, 1, 2, 3, 4, 5, 4, 5, 6, 7, 8, 9, 8, 9, 10, 11, 12, 13, 12, 13, 14, 15, 16, 17,
     16, 17, 18, 19, 20, 21, 20, 21, 22, 23, 24, 25, 24, 25, 26, 27, 28, 29, 28, 29, 30, 31, 32, 1]
P = [16, 7, 20, 21, 29, 12, 28, 17, 1, 15, 23, 26, 5, 18, 31, 10, 2, 8, 24, 14, 32, 27, 3, 9,
     19, 13, 30, 6, 22, 11, 4, 25]
PC1 = [57, 49, 41, 33, 25, 17, 9, 1, 58, 50, 42, 34, 26, 18, 10, 2, 59, 51, 43, 35, 27, 19, 11, 3,
       60, 52, 44, 36, 63, 55, 47, 39, 31, 23, 15, 7, 62, 54, 46, 38, 30, 22, 14, 6, 61, 53, 45, 37,
       29, 21, 13, 5, 28, 20, 12, 4]
PC2 = [14, 17, 11, 24, 1, 5, 3, 28, 15, 6, 21, 10, 23, 19, 12, 4, 26, 8, 16, 7, 27, 20, 13, 2,
       41, 52, 31, 37, 47, 55, 30, 40, 51, 45, 33, 48, 44, 49, 39, 56, 34, 53, 46, 42, 50, 36, 29, 32]
SHIFTS = [1, 1, 2, 2, 2, 2, 2, 2, 1, 2, 2, 2, 2, 2, 2, 1]
SBOX = [
    [14, 4, 13, 1, 2, 15, 11, 8, 3, 10, 6, 12, 5, 9, 0, 7, 0, 15, 7, 4, 14, 2, 13, 1, 10, 6, 12, 11, 9, 5, 3, 8,
     4, 1, 14, 8, 13, 6, 2, 11, 15, 12, 9, 7, 3, 10, 5, 0, 15, 12, 8, 2, 4, 9, 1, 7, 5, 11, 3, 14, 10, 0, 6, 13],
    [15, 1, 8, 14, 6, 11, 3, 4, 9, 7, 2, 13, 12, 0, 5, 10, 3, 13, 4, 7, 15, 2, 8, 14, 12, 0, 1, 10, 6, 9, 11, 5,
     0, 14, 7, 11, 10, 4, 13, 1, 5, 8, 12, 6, 9, 3, 2, 15, 13, 8, 10, 1, 3, 15, 4, 2, 11, 6, 7, 12, 0, 5, 14, 9],
    [10, 0, 9, 14, 6, 3, 15, 5, 1, 13, 12, 7, 11, 4, 2, 8, 13, 7, 0, 9, 3, 4, 6, 10, 2, 8, 5, 14, 12, 11, 15, 1,
     13, 6, 4, 9, 8, 15, 3, 0, 11, 1, 2, 12, 5, 10, 14, 7, 1, 10, 13, 0, 6, 9, 8, 7, 4, 15, 14, 3, 11, 5, 2, 12],
    [7, 13, 14, 3, 0, 6, 9, 10, 1, 2, 8, 5, 11, 12, 4, 15, 13, 8, 11, 5, 6, 15, 0, 3, 4, 7, 2, 12, 1, 10, 14, 9,
     10, 6, 9, 0, 12, 11, 7, 13, 15, 1, 3, 14, 5, 2, 8, 4, 3, 15, 0, 6, 10, 1, 13, 8, 9, 4, 5, 11, 12, 7, 2, 14],
    [2, 12, 4, 1, 7, 10, 11, 6, 8, 5, 3, 15, 13, 0, 14, 9, 14, 11, 2, 12, 4, 7, 13, 1, 5, 0, 15, 10, 3, 9, 8, 6,
     4, 2, 1, 11, 10, 13, 7, 8, 15, 9, 12, 5, 6, 3, 0, 14, 11, 8, 12, 7, 1, 14, 2, 13, 6, 15, 0, 9, 10, 4, 5, 3],
    [12, 1, 10, 15, 9, 2, 6, 8, 0, 13, 3, 4, 14, 7, 5, 11, 10, 15, 4, 2, 7, 12, 9, 5, 6, 1, 13, 14, 0, 11, 3, 8,
     9, 14, 15, 5, 2, 8, 12, 3, 7, 0, 4, 10, 1, 13, 11, 6, 4, 3, 2, 12, 9, 5, 15, 10, 11, 14, 1, 7, 6, 0, 8, 13],
    [4, 11, 2, 14, 15, 0, 8, 13, 3, 12, 9, 7, 5, 10, 6, 1, 13, 0, 11, 7, 4, 9, 1, 10, 14, 3, 5, 12, 2, 15, 8, 6,
     1, 4, 11, 13, 12, 3, 7, 14, 10, 15, 6, 8, 0, 5, 9, 2, 6, 11, 13, 8, 1, 4, 10, 7, 9, 5, 0, 15, 14, 2, 3, 12],
    [13, 2, 8, 4, 6, 15, 11, 1, 10, 9, 3, 14, 5, 0, 12, 7, 1, 15, 13, 8, 10, 3, 7, 4, 12, 5, 6, 11, 0, 14, 9, 2,
     7, 11, 4, 1, 9, 12, 14, 2, 0, 6, 10, 13, 15, 3, 5, 8, 2, 1, 14, 7, 4, 10, 8, 13, 15, 12, 9, 0, 3, 5, 6, 11],
]


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


def des7(key7, block8):
    bits = int.from_bytes(key7, 'big')
    key8 = bytes((((bits >> (49 - 7 * i)) & 0x7f) << 1) for i in range(8))
    return des_encrypt(key8, block8)


def desl(key16, data8):
    k = key16 + b'\0' * 5
    return des7(k[0:7], data8) + des7(k[7:14], data8) + des7(k[14:21], data8)


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


class Proxy(socketserver.ThreadingTCPServer):
    daemon_threads = True
    allow_reuse_address = True


class Handler(socketserver.BaseRequestHandler):
    def log(self, text):
        with self.server.log_lock, open(self.server.args.log, 'a') as f:
            f.write(text + '\n')

    def handle(self):
        sock = self.request
        first = sock.recv(1, socket.MSG_PEEK)
        if first == b'\x04':
            self.socks4(sock)
        elif first == b'\x05':
            self.socks5(sock)
        elif first:
            self.http(sock)

    def read_exact(self, sock, n):
        data = b''
        while len(data) < n:
            piece = sock.recv(n - len(data))
            if not piece:
                raise EOFError
            data += piece
        return data

    def scripted_code(self, port):
        return port - 9000 if 9000 <= port <= 9255 else None

    def socks4(self, sock):
        request = self.read_exact(sock, 8)
        user = b''
        while not user.endswith(b'\0'):
            user += self.read_exact(sock, 1)
        port = struct.unpack('>H', request[2:4])[0]
        address = socket.inet_ntoa(request[4:8])
        self.log('socks4 user=%s' % user[:-1].decode('latin-1'))
        code = self.scripted_code(port)
        if code is not None:
            sock.sendall(bytes([0, code]) + b'\0' * 6)
            return
        upstream = socket.create_connection((address, port))
        sock.sendall(bytes([0, 90]) + b'\0' * 6)
        self.relay(sock, upstream)

    def socks5(self, sock):
        greeting = self.read_exact(sock, 2)
        methods = self.read_exact(sock, greeting[1])
        method = self.server.args.socks5_method
        if method is None:
            method = 2 if 2 in methods and self.server.args.user else 0
        sock.sendall(bytes([5, method]))
        if method not in (0, 2):
            return
        if method == 2:
            version, n = self.read_exact(sock, 2)
            user = self.read_exact(sock, n).decode('latin-1')
            n = self.read_exact(sock, 1)[0]
            password = self.read_exact(sock, n).decode('latin-1')
            ok = user == self.server.args.user and password == self.server.args.password
            self.log('socks5 user=%s ok=%d' % (user, ok))
            sock.sendall(bytes([1, 0 if ok else 1]))
            if not ok:
                return
        head = self.read_exact(sock, 4)
        if head[3] == 1:
            host = socket.inet_ntoa(self.read_exact(sock, 4))
        else:
            host = self.read_exact(sock, self.read_exact(sock, 1)[0]).decode('latin-1')
        port = struct.unpack('>H', self.read_exact(sock, 2))[0]
        self.log('socks5 connect %s:%d' % (host, port))
        code = self.scripted_code(port)
        if code is not None:
            sock.sendall(bytes([5, code, 0, 1]) + b'\0' * 6)
            return
        upstream = socket.create_connection(('127.0.0.1' if host == 'localhost' else host, port))
        sock.sendall(bytes([5, 0, 0, 1, 127, 0, 0, 1, 0, 0]))
        self.relay(sock, upstream)

    def relay(self, client, upstream):
        def pump(source, sink):
            try:
                while True:
                    data = source.recv(65536)
                    if not data:
                        break
                    sink.sendall(data)
            except OSError:
                pass
            try:
                sink.shutdown(socket.SHUT_WR)
            except OSError:
                pass
        other = threading.Thread(target=pump, args=(upstream, client), daemon=True)
        other.start()
        pump(client, upstream)
        other.join()
        upstream.close()

    def http(self, sock):
        reader = sock.makefile('rb')
        while True:
            line = reader.readline()
            if not line:
                return
            method, target, _ = line.decode('latin-1').split(' ', 2)
            headers = []
            while True:
                header = reader.readline()
                if header in (b'\r\n', b'\n', b''):
                    break
                name, _, value = header.decode('latin-1').partition(':')
                headers.append((name.strip(), value.strip()))
            lookup = {name.lower(): value for name, value in headers}
            body = reader.read(int(lookup.get('content-length', '0')))
            if method == 'CONNECT':
                host, _, port = target.rpartition(':')
                path = ''
            else:
                rest = target.split('://', 1)[1]
                authority, slash, path = rest.partition('/')
                host, _, port = authority.partition(':')
                port = port or '80'
                path = slash + path
            self.log('%s %s body=%d proxy-authorization=%s' % (method, target, len(body),
                                                                 lookup.get('proxy-authorization', '')))
            if host.startswith('close'):
                return
            if host.startswith('refuse'):
                code = host[6:9]
                sock.sendall(('HTTP/1.0 %s Refused by script\r\n\r\n' % code).encode())
                return
            if self.server.args.ntlm and not self.authenticated(sock, lookup, host):
                continue
            if method == 'CONNECT':
                upstream = socket.create_connection(('127.0.0.1', int(port)))
                sock.sendall(b'HTTP/1.0 200 Connection established\r\nProxy-agent: scripted\r\n\r\n')
                self.relay(sock, upstream)
                return
            upstream = socket.create_connection(('127.0.0.1', int(port)))
            forwarded = '%s %s HTTP/1.0\r\n' % (method, path)
            for name, value in headers:
                if name.lower() not in ('proxy-authorization', 'connection', 'proxy-connection', 'keep-alive'):
                    forwarded += '%s: %s\r\n' % (name, value)
            upstream.sendall(forwarded.encode('latin-1') + b'Connection: close\r\n\r\n' + body)
            answer = b''
            while True:
                data = upstream.recv(65536)
                if not data:
                    break
                answer += data
            upstream.close()
            sock.sendall(answer)

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
            key = nt_hash(self.server.args.password)
            if flags & 0x80000:
                expected = desl(key, hashlib.md5(SERVER_CHALLENGE + lm[:8]).digest()[:8])
            else:
                expected = desl(key, SERVER_CHALLENGE)
            expected_user = self.server.args.user or ''
            who = '%s\\%s' % (domain, user) if domain else user
            ok = nt == expected and who == expected_user
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
    server = Proxy(('127.0.0.1', args.port), Handler)
    server.args = args
    server.log_lock = threading.Lock()
    open(args.log, 'w').close()
    server.serve_forever()


if __name__ == '__main__':
    sys.exit(main())
