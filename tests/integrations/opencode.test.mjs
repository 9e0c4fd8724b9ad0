// The OpenCode plugin against the real hook and a server of a few lines. Run by ctest, which sets
// QUILLSTEAD_HOOK_BIN; by hand: QUILLSTEAD_HOOK_BIN=build/debug/bin/quillstead-hook node --test tests/integrations/opencode.test.mjs
import assert from "node:assert/strict";
import { chmodSync, copyFileSync, existsSync, mkdirSync, mkdtempSync, readFileSync, rmSync, writeFileSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { after, before, test } from "node:test";
import { pathToFileURL } from "node:url";

import { QuillsteadPlugin } from "../../integrations/opencode/quillstead.js";

const hook = process.env.QUILLSTEAD_HOOK_BIN;
const folder = mkdtempSync(join(tmpdir(), "quillstead-opencode-"));
const memory = "<quillstead-memory>\n\n\nTea, not coffee.\n</quillstead-memory>";

function reply(meta, text) {
  return JSON.stringify({ jsonrpc: "2.0", id: 2, result: { content: [{ type: "text", text }], _meta: meta } });
}

before(() => {
  assert.ok(hook, "QUILLSTEAD_HOOK_BIN names the hook under test");
  writeFileSync(join(folder, "rules"), reply({ "quillstead/replyKind": "empty" }, ""));
  writeFileSync(join(folder, "cards"), reply({ "quillstead/replyKind": "cards", "quillstead/cardCount": 1 }, memory));
  const server = join(folder, "server");
  writeFileSync(
    server,
    `#!/bin/sh\ncat > "${folder}/requests"\n` +
      `if grep -q rules_get "${folder}/requests"; then cat "${folder}/rules"; else cp "${folder}/requests" "${folder}/asked"; cat "${folder}/cards"; fi\n`,
  );
  chmodSync(server, 0o755);
  process.env.QUILLSTEAD_MCP_BIN = server;
  process.env.QUILLSTEAD_HOOK_LOG = "";
});

after(() => rmSync(folder, { recursive: true }));

function sessions(parentOf, history) {
  return {
    session: {
      get: async ({ path }) => ({ data: { id: path.id, parentID: parentOf[path.id] } }),
      messages: async () => ({ data: history }),
    },
  };
}

function plugin(parentOf = {}, history = []) {
  return QuillsteadPlugin({ client: sessions(parentOf, history), directory: "/" });
}

function message(text) {
  return { message: {}, parts: [{ id: "prt_1", sessionID: "s1", messageID: "m1", type: "text", text }] };
}

async function withHook(executable, run) {
  process.env.QUILLSTEAD_HOOK_BIN = executable;
  try {
    await run();
  } finally {
    process.env.QUILLSTEAD_HOOK_BIN = hook;
  }
}

test("a message gets the memory as a hidden part behind its own", async () => {
  const output = message("what do I drink?");
  await (await plugin())["chat.message"]({ sessionID: "s1" }, output);
  assert.deepEqual(output.parts[1], {
    id: "prt_1m", sessionID: "s1", messageID: "m1", type: "text", synthetic: true, ignored: true,
    metadata: { quillstead: "memory" }, text: memory,
  });
  assert.ok(output.parts[0].id < output.parts[1].id);
});

test("a message that has its memory already, from the plugin at another level, gets it once", async () => {
  const output = message("what do I drink?");
  await (await plugin())["chat.message"]({ sessionID: "s1" }, output);
  await (await plugin())["chat.message"]({ sessionID: "s1" }, output);
  assert.equal(output.parts.length, 2);
});

test("only the conversation's own request shows the memory, and the stored message stays as it is", async () => {
  const stored = message("what do I drink?");
  const ours = await plugin();
  await ours["chat.message"]({ sessionID: "s1" }, stored);
  const other = { parts: [{ type: "text", ignored: true, metadata: { other: 1 }, text: "for no model" }] };
  const request = { messages: [stored, other] };
  await ours["experimental.chat.messages.transform"]({}, request);
  assert.deepEqual(request.messages[0].parts.map((part) => Boolean(part.ignored)), [false, false]);
  assert.equal(request.messages[0].parts[1].text, memory);
  assert.deepEqual(stored.parts.map((part) => Boolean(part.ignored)), [false, true]);
  assert.equal(request.messages[1], other);
});

/** The session that the server is told of for the next message of `ours`. */
async function sessionTold(ours) {
  await ours["chat.message"]({ sessionID: "s1" }, message("tea?"));
  return JSON.parse(readFileSync(join(folder, "asked"), "utf8").split("\n")[1]).params.arguments.session_id;
}

test("a compacted session is a new one to the server, also when another process compacted it", async () => {
  const compacted = { event: { type: "session.compacted", properties: { sessionID: "s1" } } };
  const ours = await plugin();
  assert.equal(await sessionTold(ours), "s1");
  await ours.event({ event: { type: "session.idle", properties: { sessionID: "s1" } } });
  assert.equal(await sessionTold(ours), "s1");
  await ours.event(compacted);
  assert.equal(await sessionTold(ours), "s1/1");
  await ours.event(compacted);
  assert.equal(await sessionTold(ours), "s1/2");

  const resumed = await plugin({}, [{ parts: [{ type: "text" }] }, { parts: [{ type: "compaction" }] }]);
  assert.equal(await sessionTold(resumed), "s1/1");
  await resumed.event(compacted);
  assert.equal(await sessionTold(resumed), "s1/2");
});

test("a session whose messages cannot be listed keeps its own name", async () => {
  const client = { session: { get: async () => ({}), messages: async () => { throw new Error("gone"); } } };
  assert.equal(await sessionTold(await QuillsteadPlugin({ client, directory: "/" })), "s1");
});

test("the server is asked with the prompt, the directory and the session", async () => {
  await (await plugin())["chat.message"]({ sessionID: "s1" }, message("what do I drink?"));
  const call = JSON.parse(readFileSync(join(folder, "asked"), "utf8").split("\n")[1]);
  assert.deepEqual(call.params.arguments, { prompt: "what do I drink?", cwd: "/", session_id: "s1" });
});

test("what plugins added to a message is not taken for the prompt", async () => {
  const output = message("tea?");
  output.parts.push({ id: "prt_2", sessionID: "s1", messageID: "m1", type: "text", synthetic: true, text: "noise" });
  await (await plugin())["chat.message"]({ sessionID: "s1" }, output);
  const call = JSON.parse(readFileSync(join(folder, "asked"), "utf8").split("\n")[1]);
  assert.equal(call.params.arguments.prompt, "tea?");
});

test("a memory tool called in a child session is stamped in place", async () => {
  const args = { text: "x", list: [1, { a: null }] };
  await (await plugin({ child: "s1" }))["tool.execute.before"]({ tool: "quillstead_memory_add", sessionID: "child" }, { args });
  assert.deepEqual(args, { text: "x", list: [1, { a: null }], _quillstead_subagent: "child" });
});

test("a forged stamp is replaced", async () => {
  const args = { _quillstead_subagent: "somebody else" };
  await (await plugin({ child: "s1" }))["tool.execute.before"]({ tool: "quillstead_grab", sessionID: "child" }, { args });
  assert.deepEqual(args, { _quillstead_subagent: "child" });
});

test("the main session's calls and other tools are left alone", async () => {
  for (const input of [{ tool: "quillstead_grab", sessionID: "s1" }, { tool: "bash", sessionID: "child" }]) {
    const args = { a: 1 };
    await (await plugin({ child: "s1" }))["tool.execute.before"](input, { args });
    assert.deepEqual(args, { a: 1 });
  }
});

test("nothing happens when the hook is missing, fails or babbles", async () => {
  for (const executable of ["/nowhere/quillstead-hook", "false", script("mumbler", "echo not json")]) {
    await withHook(executable, async () => {
      const output = message("hello");
      await (await plugin())["chat.message"]({ sessionID: "s1" }, output);
      assert.equal(output.parts.length, 1);
      const args = { a: 1 };
      await (await plugin({ child: "s1" }))["tool.execute.before"]({ tool: "quillstead_grab", sessionID: "child" }, { args });
      assert.deepEqual(args, { a: 1 });
    });
  }
});

test("a session that cannot be looked up is let through", async () => {
  const client = { session: { get: async () => { throw new Error("gone"); } } };
  const args = { a: 1 };
  await (await QuillsteadPlugin({ client, directory: "/" }))["tool.execute.before"]({ tool: "quillstead_grab", sessionID: "s1" }, { args });
  assert.deepEqual(args, { a: 1 });
});

/** A program in place of the hook: a shell script. */
function script(name, text) {
  const path = join(folder, name);
  writeFileSync(path, `#!/bin/sh\n${text}\n`);
  chmodSync(path, 0o755);
  return path;
}

/** What a message has become with `executable` as the hook, and how many seconds that took. */
async function messageWith(executable, text = "hello") {
  const output = message(text);
  const start = process.hrtime.bigint();
  await withHook(executable, async () => (await plugin())["chat.message"]({ sessionID: "s1" }, output));
  return { parts: output.parts, seconds: Number(process.hrtime.bigint() - start) / 1e9 };
}

test("a hook that hangs is stopped after five seconds", async () => {
  const { parts, seconds } = await messageWith(script("sleeper", "exec sleep 60"));
  assert.equal(parts.length, 1);
  assert.ok(seconds >= 4.9 && seconds < 30, `took ${seconds} s`);
});

test("five seconds hold when a process that the hook left behind keeps its output open", async () => {
  const hung = await messageWith(script("parent", "sleep 15 &\nsleep 15"));
  assert.equal(hung.parts.length, 1);
  assert.ok(hung.seconds >= 4.9 && hung.seconds < 30, `took ${hung.seconds} s`);
});

test("the answer of a hook that ended counts, whoever keeps its output open", async () => {
  const { parts, seconds } = await messageWith(script("answerer", `echo '{"context":"tea"}'\nsleep 15 &`));
  assert.equal(parts[1]?.text, "tea");
  assert.ok(seconds < 30, `took ${seconds} s`);
});

test("a hook that writes without an end is stopped before its time is up", async () => {
  const { parts, seconds } = await messageWith(script("babbler", "exec yes '{\"context\":\"tea\"}'"));
  assert.equal(parts.length, 1);
  assert.ok(seconds < 4.9, `took ${seconds} s`);
});

test("an answer of a megabyte comes through", async () => {
  const { parts } = await messageWith(
    script("writer", `printf '{"context":"'; head -c 1000000 /dev/zero | tr '\\0' x; printf '"}'`),
  );
  assert.equal(parts[1]?.text, "x".repeat(1000000));
});

test("lone surrogates are replaced and pairs are kept, in prompts and in tools' arguments", async () => {
  await (await plugin())["chat.message"]({ sessionID: "s1" }, message("a\uD800b\uDC00c\u{1F375}"));
  const call = JSON.parse(readFileSync(join(folder, "asked"), "utf8").split("\n")[1]);
  assert.equal(call.params.arguments.prompt, "a\uFFFDb\uFFFDc\u{1F375}");

  const args = { text: "\uDFFF!", _quillstead_subagent: "somebody else" };
  await (await plugin({ child: "s1" }))["tool.execute.before"]({ tool: "quillstead_memory_add", sessionID: "child" }, { args });
  assert.deepEqual(args, { text: "\uFFFD!", _quillstead_subagent: "child" });
});

test("a session whose look-up never ends is let through", async () => {
  const client = { session: { get: () => new Promise(() => {}) } };
  const args = { a: 1 };
  const start = process.hrtime.bigint();
  await (await QuillsteadPlugin({ client, directory: "/" }))["tool.execute.before"]({ tool: "quillstead_grab", sessionID: "s1" }, { args });
  const seconds = Number(process.hrtime.bigint() - start) / 1e9;
  assert.deepEqual(args, { a: 1 });
  assert.ok(seconds >= 0.9 && seconds < 30, `took ${seconds} s`);
});

test("the one file that users copy is enough, and all it exports is one function", async () => {
  const plugins = join(folder, "plugins");
  mkdirSync(plugins);
  copyFileSync(new URL("../../integrations/opencode/quillstead.js", import.meta.url), join(plugins, "quillstead.js"));
  // OpenCode and newer versions of Node see from the text that it is a module.
  const [major, minor] = process.versions.node.split(".").map(Number);
  const sees = major > 22 || (major === 22 && minor >= 7) || (major === 20 && minor >= 19);
  if (!sees) writeFileSync(join(plugins, "package.json"), '{"type":"module"}');
  assert.notEqual(existsSync(join(plugins, "package.json")), sees);
  const module = await import(pathToFileURL(join(plugins, "quillstead.js")));
  assert.deepEqual(Object.values(module).map((each) => typeof each), ["function"]);
});
