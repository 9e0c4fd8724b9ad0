"""A memory server on loopback that speaks MCP over HTTP, with a quillstead-mcp behind it."""

import http.server
import json
import subprocess
import sys
import threading


def line(number, method, **params):
    return json.dumps({"jsonrpc": "2.0", "id": number, "method": method, "params": params}) + "\n"


#: What the hook writes to a memory server for a prompt.
REQUESTS = line(1, "initialize", protocolVersion="2024-11-05", capabilities={},
                clientInfo={"name": "codex", "version": "1"}) + \
    line(2, "tools/call", name="memory_get_relevant", arguments={"prompt": "the heron?"})


class Listener(http.server.ThreadingHTTPServer):
    daemon_threads = True

    def handle_error(self, *where):
        if not isinstance(sys.exc_info()[1], ConnectionError):  # a caller does not wait for its last response
            super().handle_error(*where)


class MemoryOverHTTP:
    """Serves until `close`. `stream`: responses come as events. `token`: what callers have to send.
    `failing`: every request gets status 500."""

    def __init__(self, program, environment, stream=False, token="", failing=False):
        self.stream, self.token, self.failing = stream, token, failing
        self.lock = threading.Lock()
        self.asked, self.ended, self.sessions = [], 0, {}
        self.memory = subprocess.Popen([program], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                       env=environment)
        self.server = Listener(("127.0.0.1", 0), self.handler())
        self.url = f"http://127.0.0.1:{self.server.server_address[1]}/mcp?team=1"
        threading.Thread(target=self.server.serve_forever, daemon=True).start()

    def close(self):
        self.server.shutdown()
        self.server.server_close()
        self.memory.stdin.close()
        self.memory.stdout.close()
        self.memory.wait()

    def response_to(self, body):
        """What the program behind answers; absent for a notification."""
        request = json.loads(body)
        with self.lock:
            self.asked.append(request["method"])
            if "id" not in request:
                return None
            self.memory.stdin.write(json.dumps(request).encode() + b"\n")
            self.memory.stdin.flush()
            return self.memory.stdout.readline().strip()

    def flaw_of(self, headers, begins):
        """The status for what a caller did wrong; absent when it did nothing wrong."""
        if self.failing:
            return 500
        if self.token and headers.get("Authorization") != "Bearer " + self.token:
            return 401
        if "text/event-stream" not in headers.get("Accept", ""):
            return 406
        if begins:
            return None
        known = headers.get("Mcp-Session-Id") in self.sessions
        return None if known and headers.get("MCP-Protocol-Version") else 400

    def handler(self):
        over = self

        class Handler(http.server.BaseHTTPRequestHandler):
            protocol_version = "HTTP/1.1"
            wbufsize = 65_536  # a response in one piece

            def do_POST(self):
                body = self.rfile.read(int(self.headers["Content-Length"]))
                begins = json.loads(body)["method"] == "initialize"
                flaw = over.flaw_of(self.headers, begins)
                if flaw or self.path != "/mcp?team=1":
                    return self.reply(flaw or 404, b"", {})
                session = {}
                if begins:
                    session = {"Mcp-Session-Id": f"s{len(over.sessions)}"}
                    over.sessions[session["Mcp-Session-Id"]] = True
                response = over.response_to(body)
                if response is None:
                    return self.reply(202, b"", session)
                if not over.stream:
                    return self.reply(200, response, {"Content-Type": "application/json", **session})
                note = b'{"jsonrpc":"2.0","method":"notifications/message","params":{}}'
                events = b"event: message\r\ndata: " + note + b"\r\n\r\nid: 7\ndata: " + response + b"\n\n"
                return self.reply(200, events, {"Content-Type": "text/event-stream", **session})

            def do_DELETE(self):
                over.ended += over.sessions.pop(self.headers.get("Mcp-Session-Id"), False)
                self.reply(200, b"", {})

            def reply(self, status, body, headers):
                self.send_response(status)
                for name, value in {**headers, "Content-Length": str(len(body))}.items():
                    self.send_header(name, value)
                self.end_headers()
                self.wfile.write(body)

            def log_message(self, *_):
                pass

        return Handler
