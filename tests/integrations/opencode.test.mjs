// The OpenCode plugin against the real hook and a server of a few lines. Run by ctest, which sets
// QUILLSTEAD_HOOK_BIN; by hand: QUILLSTEAD_HOOK_BIN=build/debug/bin/quillstead-hook node --test tests/integrations
import assert from "node:assert/strict";
import { chmodSync, mkdtempSync, readFileSync, rmSync, writeFileSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { after, before, test } from "node:test";

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

function sessions(parentOf) {
  return { session: { get: async ({ path }) => ({ data: { id: path.id, parentID: parentOf[path.id] } }) } };
}

function plugin(parentOf = {}) {
  return QuillsteadPlugin({ client: sessions(parentOf), directory: "/" });
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
    id: "prt_1m", sessionID: "s1", messageID: "m1", type: "text", synthetic: true, text: memory,
  });
  assert.ok(output.parts[0].id < output.parts[1].id);
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
  const babbler = join(folder, "babbler");
  writeFileSync(babbler, "#!/bin/sh\necho not json\n");
  chmodSync(babbler, 0o755);
  for (const executable of ["/nowhere/quillstead-hook", "false", babbler]) {
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

test("a hook that hangs is stopped after five seconds", async () => {
  const sleeper = join(folder, "sleeper");
  writeFileSync(sleeper, "#!/bin/sh\nexec sleep 60\n");
  chmodSync(sleeper, 0o755);
  await withHook(sleeper, async () => {
    const output = message("hello");
    const start = process.hrtime.bigint();
    await (await plugin())["chat.message"]({ sessionID: "s1" }, output);
    const seconds = Number(process.hrtime.bigint() - start) / 1e9;
    assert.equal(output.parts.length, 1);
    assert.ok(seconds >= 4.9 && seconds < 30, `took ${seconds} s`);
  });
});
