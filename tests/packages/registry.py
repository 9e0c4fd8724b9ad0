"""A package registry on loopback, which offers the packages of a directory and nothing else."""

import base64
import contextlib
import hashlib
import http.server
import json
import pathlib
import tarfile
import threading
import urllib.parse


def _manifest(package):
    with tarfile.open(package) as archive:
        return json.load(archive.extractfile("package/package.json"))


class Registry:
    """Answers as a registry does until it is closed. `asked` has the names that were asked for."""

    def __init__(self, packages):
        self.files = {pathlib.Path(package).name: pathlib.Path(package) for package in packages}
        self.asked = []
        registry = self

        class Handler(http.server.BaseHTTPRequestHandler):
            protocol_version = "HTTP/1.1"

            def do_GET(self):
                registry.answer(self, urllib.parse.unquote(self.path.partition("?")[0]).strip("/"))

            def log_message(self, *_):
                pass

        self._server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler)
        self._server.daemon_threads = True
        self.address = f"http://127.0.0.1:{self._server.server_port}/"
        threading.Thread(target=self._server.serve_forever, daemon=True).start()

    def close(self):
        self._server.shutdown()
        self._server.server_close()

    def answer(self, request, name):
        self.asked.append(name)
        if name in self.files:
            self._send(request, 200, self.files[name].read_bytes(), "application/octet-stream")
            return
        told = self._told(name)
        content = json.dumps(told or {"error": "not found"}).encode()
        self._send(request, 200 if told else 404, content, "application/json")

    def _told(self, name):
        """All versions of the package of that name; None when there is none."""
        versions = {}
        for file in self.files.values():
            manifest = _manifest(file)
            if manifest["name"] == name:
                versions[manifest["version"]] = {**manifest, "dist": self._where(file)}
        if not versions:
            return None
        newest = max(versions, key=lambda version: [int(number) for number in version.split(".")])
        return {"name": name, "dist-tags": {"latest": newest}, "versions": versions,
                "time": dict.fromkeys(["created", "modified", *versions], "2020-01-01T00:00:00.000Z")}

    def _where(self, file):
        content = file.read_bytes()
        return {"tarball": self.address + file.name, "shasum": hashlib.sha1(content).hexdigest(),
                "integrity": "sha512-" + base64.b64encode(hashlib.sha512(content).digest()).decode()}

    @staticmethod
    def _send(request, status, content, kind):
        with contextlib.suppress(ConnectionError):  # a client that has all it wants
            Registry._write(request, status, content, kind)

    @staticmethod
    def _write(request, status, content, kind):
        request.send_response(status)
        request.send_header("Content-Type", kind)
        request.send_header("Content-Length", str(len(content)))
        request.end_headers()
        request.wfile.write(content)
