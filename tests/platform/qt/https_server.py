#!/usr/bin/env python3
"""HTTPS servers with a certificate authority of their own, made on the spot, for tests of a client.

Usage: https_server.py FOLDER. Writes FOLDER/ca.pem and FOLDER/store, a folder as a system keeps its trusted authorities
in, prints the ports as one line of JSON, and serves until its standard input ends. Every server answers as the query
parameter "v" asks for; see `behave`.
"""

import json
import pathlib
import socket
import ssl
import struct
import subprocess
import sys
import threading
import urllib.parse

MANIFEST = {"version": "9.1", "url": "https://ferrowyn.example/Ferrowyn-9.1.dmg", "notes": "Ünïcode"}
BODIES = {
    "manifest": json.dumps(MANIFEST).encode(),
    "same": json.dumps({**MANIFEST, "version": "0"}).encode(),
    "insecure-download": json.dumps({**MANIFEST, "url": "http://ferrowyn.example/x"}).encode(),
    "no-url": b'{"version": "9.1"}',
    "array": b"[1, 2]",
    "text": b"It works!",
    "binary": bytes(range(256)),
    "empty": b"",
    "mebibyte": b"x" * (1 << 20),
    "mebibyte-and-one": b"x" * ((1 << 20) + 1),
}


def openssl(folder, *arguments):
    subprocess.run(["openssl", *arguments], cwd=folder, check=True, capture_output=True)


def make_authority(folder, name):
    openssl(folder, "req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1", "-nodes", "-days", "2",
            "-subj", f"/CN={name}", "-keyout", f"{name}.key", "-out", f"{name}.pem")


def make_certificate(folder, name, authority, alternative_names, days="2"):
    """Signed by the authority; in force from now on, or over already with negative days."""
    openssl(folder, "req", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1", "-nodes", "-subj", f"/CN={name}",
            "-keyout", f"{name}.key", "-out", f"{name}.csr")
    (folder / f"{name}.ext").write_text(f"subjectAltName={alternative_names}\n", encoding="ascii")
    openssl(folder, "x509", "-req", "-in", f"{name}.csr", "-CA", f"{authority}.pem", "-CAkey", f"{authority}.key",
            "-CAcreateserial", "-days", days, "-extfile", f"{name}.ext", "-out", f"{name}.pem")


def make_store(folder, authority):
    store = folder / "store"
    store.mkdir()
    (store / "ca-certificates.crt").write_bytes((folder / f"{authority}.pem").read_bytes())


def answer(connection, status, body=b"", **headers):
    """A whole HTTP answer; underscores in header names stand for dashes."""
    lines = [f"HTTP/1.1 {status}", f"Content-Length: {len(body)}", "Connection: close"]
    lines += [f"{name.replace('_', '-')}: {value}" for name, value in headers.items()]
    connection.sendall(("\r\n".join(lines) + "\r\n\r\n").encode() + body)


def close_with_reset(connection):
    """Leaves nothing to wait for: the peer gets a reset, not an end."""
    connection.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))
    connection.close()


def wait_for_client_to_go(connection):
    while connection.recv(4096):
        pass


def behave(connection, request, ports):
    """Answers one request."""
    target = urllib.parse.urlsplit(request.split(b" ")[1].decode())
    query = urllib.parse.parse_qs(target.query)
    behaviour = query["v"][0]
    if behaviour in BODIES:
        answer(connection, "200 OK", BODIES[behaviour], Content_Type="application/json")
    elif behaviour == "echo":
        answer(connection, "200 OK", request, Cache_Control="max-age=3600", Set_Cookie="crumb=1")
    elif behaviour.isdigit():
        answer(connection, f"{behaviour} Whatever", b"<html>No</html>")
    elif behaviour == "redirect-http":
        answer(connection, "302 Found", Location=f"http://127.0.0.1:{ports['plain']}/?v=manifest")
    elif behaviour == "redirect-file":
        answer(connection, "302 Found", Location="file:///etc/hostname")
    elif behaviour == "redirect-https":
        answer(connection, "302 Found", Location=f"https://127.0.0.1:{ports['good']}/elsewhere?v=manifest")
    elif behaviour == "redirect-with-a-body":
        answer(connection, "302 Found", b"Elsewhere", Location="/x?v=text")
    elif behaviour == "redirect-with-odd-characters":
        # Nothing of it may become a line of the next request.
        answer(connection, "302 Found", Location="/x?v=echo&odd=a b\rX-Odd: 1\x0b\x7f\rX-Odd: 2")
    elif behaviour == "redirect-for-ever":
        answer(connection, "302 Found", Location=f"/?v=redirect-for-ever")
    elif behaviour == "silent":
        wait_for_client_to_go(connection)
    elif behaviour == "unfinished":
        # Alive all the time, and never done.
        connection.sendall(b"HTTP/1.1 200 OK\r\nContent-Length: 1000\r\n\r\n{")
        wait_for_client_to_go(connection)
    elif behaviour == "reset":
        close_with_reset(connection)
    elif behaviour == "cut-off":
        connection.sendall(b"HTTP/1.1 200 OK\r\nContent-Length: 1000\r\n\r\n{}")
    elif behaviour == "five-megabytes-announced":
        # Announced and never sent: who waits for it waits for ever.
        connection.sendall(b"HTTP/1.1 200 OK\r\nContent-Length: 5000000\r\n\r\n{")
        wait_for_client_to_go(connection)
    elif behaviour == "endless":
        connection.sendall(b"HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n")
        chunk = b"10000\r\n" + b"x" * 0x10000 + b"\r\n"
        while True:
            connection.sendall(chunk)
    elif behaviour == "endless-fields":
        connection.sendall(b"HTTP/1.1 200 OK\r\n")
        while True:
            connection.sendall(b"X-Field: value\r\n" * 1000)
    elif behaviour == "endless-field":
        connection.sendall(b"HTTP/1.1 200 OK\r\nX-Field: ")
        while True:
            connection.sendall(b"x" * 0x10000)
    elif behaviour == "endless-first-line":
        while True:
            connection.sendall(b"HTTP/1.1 200 " * 1000)
    elif behaviour == "endless-interim-answers":
        while True:
            connection.sendall(b"HTTP/1.1 103 Early Hints\r\n\r\n" * 1000)
    elif behaviour == "not-http":
        connection.sendall(b"220 mail.example ESMTP ready\r\n")
    elif behaviour == "nothing":
        pass
    elif behaviour == "broken-chunk":
        connection.sendall(b"HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\nzz\r\n")
    else:
        answer(connection, "400 Bad Request", b"no such behaviour")


def serve_one(connection, context, ports):
    try:
        if context:
            connection = context.wrap_socket(connection, server_side=True)
        else:
            # What a web server says to a client that encrypts where it need not.
            answer(connection, "400 Bad Request")
        request = b""
        while b"\r\n\r\n" not in request:
            received = connection.recv(4096)
            if not received:
                return
            request += received
        behave(connection, request, ports)
    except OSError:
        pass  # The client went away, which is what many tests are about.
    finally:
        connection.close()


def serve(listener, serve_connection, *arguments):
    while True:
        connection, _ = listener.accept()
        threading.Thread(target=serve_connection, args=(connection, *arguments), daemon=True).start()


def pump(source, sink):
    try:
        while received := source.recv(4096):
            sink.sendall(received)
        sink.shutdown(socket.SHUT_WR)
    except OSError:
        pass


def refuse_tunnel(connection):
    """What a proxy does that asks for a password."""
    with connection:
        connection.recv(4096)
        connection.sendall(b"HTTP/1.1 407 Proxy Authentication Required\r\nContent-Length: 0\r\nConnection: close\r\n\r\n")


def tunnel(connection):
    """What an HTTP proxy does for encrypted connections; a name under "behind" leads to this machine."""
    request = b""
    while b"\r\n\r\n" not in request:
        request += connection.recv(4096)
    host, port = request.split(b" ")[1].decode().rsplit(":", 1)
    with connection, socket.create_connection(("127.0.0.1" if host.startswith("behind.") else host, int(port))) as server:
        connection.sendall(b"HTTP/1.1 200 Connection established\r\n\r\n")
        back = threading.Thread(target=pump, args=(server, connection), daemon=True)
        back.start()
        pump(connection, server)
        back.join()


def main():
    folder = pathlib.Path(sys.argv[1])
    here = "IP:127.0.0.1,DNS:localhost,DNS:behind.example"
    make_authority(folder, "ca")
    make_authority(folder, "stranger")
    make_store(folder, "ca")
    make_certificate(folder, "good", "ca", here)
    make_certificate(folder, "unknown", "stranger", here)
    make_certificate(folder, "other-host", "ca", "DNS:elsewhere.example")
    make_certificate(folder, "expired", "ca", here, "-1")
    ports = {}
    for name in ("good", "unknown", "other-host", "expired", "plain", "proxy", "refusing-proxy"):
        context = None
        if name not in ("plain", "proxy", "refusing-proxy"):
            context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
            context.load_cert_chain(folder / f"{name}.pem", folder / f"{name}.key")
        listener = socket.create_server(("127.0.0.1", 0))
        ports[name] = listener.getsockname()[1]
        proxies = {"proxy": (tunnel,), "refusing-proxy": (refuse_tunnel,)}
        service = proxies.get(name, (serve_one, context, ports))
        threading.Thread(target=serve, args=(listener, *service), daemon=True).start()
    print(json.dumps(ports), flush=True)
    sys.stdin.read()


if __name__ == "__main__":
    main()
