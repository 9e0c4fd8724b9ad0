"""A stand-in for a language model: the three APIs that the harnesses speak, on loopback.

It understands nothing. A script says what it "calls" when the newest prompt holds a certain word:

    Model({"NOTE-IT": [("memory_add", {"text": "tea"})]})

Each answer makes the next call of that list; after the last one it says "Done.". A call's name is the
end of an offered tool's name, so "memory_add" finds "mcp__quillstead__memory_add". Arguments may be a
function of the last tool's result. Every request is kept in `Model.requests`. `Model.slow` holds words
whose first request is answered only after some seconds. To a prompt with the word FILL-UP it says that
its context is full.
"""

import http.server
import json
import threading
import time


class Request:
    """One request for an answer: what the harness sent, in the same form for every API."""

    def __init__(self, path, body):
        self.path = path
        self.body = body
        self.time = time.monotonic()
        self.raw = json.dumps(body, ensure_ascii=False)

    @property
    def turns(self):
        """(role, text) of each message, tool results as ("tool", text)."""
        turns = []
        for message in self.body.get("messages") or self.body.get("input") or []:
            if isinstance(message, str):
                turns.append(("user", message))
            else:
                turns.extend(_turns_of(message))
        return turns

    @property
    def newest(self):
        """The user's last prompt: what harnesses and hooks put behind it begins with a tag."""
        prompts = [text for role, text in self.turns if role == "user" and not text.startswith("<")]
        return prompts[-1] if prompts else ""

    @property
    def tokens(self):
        """How many the request is said to have had."""
        return 100_000 if self.tools and "FILL-UP" in self.newest else 10

    @property
    def tools(self):
        """The names of the tools that are offered."""
        return [name for tool in self.body.get("tools") or [] for name in _names_of(tool)]

    def count(self, text):
        """How often `text` stands in the messages and the instructions."""
        shown = "\n".join(text for _, text in self.turns) + json.dumps(
            [self.body.get("system"), self.body.get("instructions")], ensure_ascii=False)
        return shown.count(text)

    def says(self, text):
        return self.count(text) > 0


def _names_of(tool):
    if tool.get("type") == "namespace":
        return [tool["name"] + inner["name"] for inner in tool.get("tools", [])]
    return [tool.get("name") or tool.get("function", {}).get("name") or tool.get("type", "")]


def _text_of(content):
    if isinstance(content, str):
        return content
    if isinstance(content, list):
        return "\n".join(_text_of(part) for part in content)
    if isinstance(content, dict):
        return _text_of(content.get("text") or content.get("content") or "")
    return ""


def _turns_of(message):
    kind = message.get("type")
    if kind in ("function_call_output", "custom_tool_call_output", "mcp_tool_call_output"):
        return [("tool", _text_of(message.get("output")) or json.dumps(message.get("output")))]
    if kind in ("function_call", "reasoning"):
        return [("assistant", "")]
    role = message.get("role", "")
    if role == "tool":
        return [("tool", _text_of(message.get("content")))]
    content = message.get("content")
    if not isinstance(content, list):
        return [(role, _text_of(content))]
    return [("tool" if part.get("type") == "tool_result" else role, _text_of(part))
            for part in content if isinstance(part, dict)]


def next_call(request, script):
    """The call to make now: (name, arguments); None when there is none left."""
    calls, done, result = [], 0, ""
    for role, text in request.turns:
        if role == "tool":
            done += 1
            result = text
        elif role == "user" and (word := next((word for word in script if word in text), None)):
            calls, done = script[word], 0
    if done >= len(calls) or not request.tools:
        return None
    name, arguments = calls[done]
    if callable(arguments):
        arguments = arguments(result)
    offered = [tool for tool in request.tools if tool.endswith(name)]
    return (offered[0] if offered else name, arguments)


# --- The three APIs


def _messages(request, call):
    """Anthropic's messages API."""
    if call:
        block = {"type": "tool_use", "id": f"toolu_{time.monotonic_ns()}", "name": call[0], "input": {}}
        delta = {"type": "input_json_delta", "partial_json": json.dumps(call[1])}
    else:
        block, delta = {"type": "text", "text": ""}, {"type": "text_delta", "text": "Done."}
    message = {"id": f"msg_{time.monotonic_ns()}", "type": "message", "role": "assistant", "content": [],
               "model": request.body.get("model", "stand-in"), "stop_reason": None, "stop_sequence": None,
               "usage": {"input_tokens": request.tokens, "output_tokens": 1}}
    if not request.body.get("stream"):
        content = dict(block, input=call[1]) if call else {"type": "text", "text": "Done."}
        return dict(message, content=[content], stop_reason="tool_use" if call else "end_turn")
    return [("message_start", {"type": "message_start", "message": message}),
            ("content_block_start", {"type": "content_block_start", "index": 0, "content_block": block}),
            ("content_block_delta", {"type": "content_block_delta", "index": 0, "delta": delta}),
            ("content_block_stop", {"type": "content_block_stop", "index": 0}),
            ("message_delta", {"type": "message_delta", "usage": {"output_tokens": 2},
                               "delta": {"stop_reason": "tool_use" if call else "end_turn",
                                         "stop_sequence": None}}),
            ("message_stop", {"type": "message_stop"})]


def _responses(request, call):
    """OpenAI's responses API."""
    identifier = f"resp_{time.monotonic_ns()}"
    if call:
        item = {"type": "function_call", "id": f"fc_{time.monotonic_ns()}", "name": call[0],
                "call_id": f"call_{time.monotonic_ns()}", "arguments": json.dumps(call[1])}
        for tool in request.body.get("tools") or []:
            inner = call[0].removeprefix(tool.get("name", "")) if tool.get("type") == "namespace" else ""
            if inner and inner != call[0]:
                item.update(name=inner, namespace=tool["name"])
    else:
        item = {"type": "message", "id": f"msg_{time.monotonic_ns()}", "role": "assistant",
                "status": "completed", "content": [{"type": "output_text", "text": "Done.",
                                                    "annotations": []}]}
    usage = {"input_tokens": request.tokens, "output_tokens": 2, "total_tokens": request.tokens + 2,
             "input_tokens_details": {"cached_tokens": 0}, "output_tokens_details": {"reasoning_tokens": 0}}
    response = {"id": identifier, "object": "response", "status": "completed", "output": [item],
                "usage": usage}
    created = {"type": "response.created", "response": dict(response, status="in_progress", output=[])}
    return [("response.created", created),
            ("response.output_item.added", {"type": "response.output_item.added", "output_index": 0,
                                            "item": item}),
            ("response.output_item.done", {"type": "response.output_item.done", "output_index": 0,
                                           "item": item}),
            ("response.completed", {"type": "response.completed", "response": response})]


def _chat(request, call):
    """OpenAI's chat completions API."""
    if call:
        delta = {"role": "assistant", "tool_calls": [
            {"index": 0, "id": f"call_{time.monotonic_ns()}", "type": "function",
             "function": {"name": call[0], "arguments": json.dumps(call[1])}}]}
    else:
        delta = {"role": "assistant", "content": "Done."}
    ends = "tool_calls" if call else "stop"
    base = {"id": f"chatcmpl-{time.monotonic_ns()}", "created": 1, "model": "stand-in"}
    usage = {"prompt_tokens": request.tokens, "completion_tokens": 2, "total_tokens": request.tokens + 2}
    if not request.body.get("stream"):
        return dict(base, object="chat.completion", usage=usage,
                    choices=[{"index": 0, "message": delta, "finish_reason": ends}])
    chunk = dict(base, object="chat.completion.chunk")
    return [(None, dict(chunk, choices=[{"index": 0, "delta": delta, "finish_reason": None}])),
            (None, dict(chunk, choices=[{"index": 0, "delta": {}, "finish_reason": ends}], usage=usage)),
            (None, "[DONE]")]


_apis = {"/messages": _messages, "/responses": _responses, "/chat/completions": _chat}


class _Handler(http.server.BaseHTTPRequestHandler):
    protocol_version = "HTTP/1.1"

    def do_POST(self):
        body = self.rfile.read(int(self.headers.get("Content-Length") or 0))
        path = self.path.split("?")[0].rstrip("/")
        api = next((api for end, api in _apis.items() if path.endswith(end)), None)
        if not api:
            return self._send_json({"input_tokens": 10} if "count_tokens" in path else {})
        request = Request(path, json.loads(body))
        model = self.server.model
        model.requests.append(request)
        word = next((word for word in model.slow if request.tools and word in request.newest), None)
        time.sleep(model.slow.pop(word, 0))
        answer = api(request, next_call(request, model.script))
        return self._send_events(answer) if isinstance(answer, list) else self._send_json(answer)

    def do_GET(self):
        self._send_json({"data": [], "models": []})

    do_HEAD = do_GET

    def _send_json(self, value):
        data = json.dumps(value).encode()
        self.send_response(200)
        self.send_header("Content-Type", "application/json")
        self.send_header("Content-Length", str(len(data)))
        self.end_headers()
        if self.command != "HEAD":
            self.wfile.write(data)

    def _send_events(self, events):
        data = "".join((f"event: {name}\n" if name else "") +
                       f"data: {event if isinstance(event, str) else json.dumps(event)}\n\n"
                       for name, event in events).encode()
        self.send_response(200)
        self.send_header("Content-Type", "text/event-stream")
        self.send_header("Content-Length", str(len(data)))
        self.end_headers()
        self.wfile.write(data)

    def log_message(self, *_):
        pass


class Model:
    """The running stand-in; use it as a context manager."""

    def __init__(self, script=None):
        self.script = {} if script is None else script
        self.slow = {}
        self.requests = []
        self._server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), _Handler)
        self._server.model = self
        self._server.daemon_threads = True

    @property
    def port(self):
        return self._server.server_port

    def __enter__(self):
        threading.Thread(target=self._server.serve_forever, daemon=True).start()
        return self

    def __exit__(self, *_):
        self._server.shutdown()
        self._server.server_close()
