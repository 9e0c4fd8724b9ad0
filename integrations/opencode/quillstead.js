// OpenCode plugin: the bridge to quillstead-hook. Copy it to ~/.config/opencode/plugins/ (or a
// project's .opencode/plugins/). It runs the hook that QUILLSTEAD_HOOK_BIN names, else
// "quillstead-hook" on PATH. Whatever fails, the message or the tool call goes on unchanged.
import { spawn } from "node:child_process";

const LONGEST_RUN = 5000; // milliseconds; the hook itself keeps well below
const LONGEST_LOOKUP = 1000; // milliseconds; OpenCode has the session in its own memory
const LONGEST_ANSWER = 16 * 1024 * 1024; // bytes; far more than a model takes
const TOOL_PREFIX = "quillstead_"; // OpenCode names an MCP tool <server>_<tool>
const HOOK_TOOL_PREFIX = "mcp__quillstead__";
const MEMORY = { quillstead: "memory" }; // marks the parts that hold memory

/** The payload as the hook reads it. JSON has no lone surrogates, and JavaScript's strings may. */
function written(payload) {
  return JSON.stringify(payload, (key, value) =>
    typeof value === "string" ? value.replace(/\p{Surrogate}/gu, "\uFFFD") : value,
  );
}

function answerIn(chunks) {
  try {
    return JSON.parse(Buffer.concat(chunks).toString("utf8"));
  } catch {
    return undefined;
  }
}

/**
 * Runs the hook on a payload. Gives its answer, or undefined when there is none to be had: the hook
 * did not start, took too long, or wrote without an end. Waits for LONGEST_RUN at most, also when a
 * process that the hook left behind keeps its output open.
 */
function runHook(slotArguments, payload) {
  return new Promise((resolve) => {
    const executable = process.env.QUILLSTEAD_HOOK_BIN || "quillstead-hook";
    const hook = spawn(executable, ["--harness", "opencode", ...slotArguments], {
      stdio: ["pipe", "pipe", "ignore"],
    });
    const chunks = [];
    let size = 0;
    const settle = (answer) => {
      clearTimeout(leash);
      hook.kill("SIGKILL"); // nothing happens to a hook that has ended
      hook.stdin?.destroy();
      hook.stdout?.destroy();
      resolve(answer);
    };
    const leash = setTimeout(() => settle(hook.exitCode === 0 ? answerIn(chunks) : undefined), LONGEST_RUN);
    hook.on("error", () => settle(undefined));
    hook.on("close", () => settle(answerIn(chunks)));
    hook.stdin.on("error", () => {});
    hook.stdout.on("error", () => settle(undefined));
    hook.stdout.on("data", (chunk) => {
      size += chunk.length;
      if (size > LONGEST_ANSWER) settle(undefined);
      else chunks.push(chunk);
    });
    hook.stdin.end(written(payload));
  });
}

/** What `promise` gives; fails when that takes longer than `milliseconds`. */
function within(milliseconds, promise) {
  let timer;
  const expiry = new Promise((_, reject) => {
    timer = setTimeout(() => reject(new Error("took too long")), milliseconds);
  });
  return Promise.race([promise, expiry]).finally(() => clearTimeout(timer));
}

/** What the user typed: not what plugins or tools added to the message. */
function promptOf(parts) {
  return parts
    .filter((part) => part.type === "text" && !part.synthetic && typeof part.text === "string")
    .map((part) => part.text)
    .join("\n");
}

/**
 * Adds the memory to a message as a part of its own, which the screen does not show. It is stored as
 * one that no model gets, so that a title is made of the user's words alone; `shown` hands it on where
 * the conversation's own request is made.
 */
function addContext(parts, context) {
  const last = parts[parts.length - 1];
  parts.push({
    id: `${last.id}m`, // parts are replayed in the order of their ids: right behind the last
    sessionID: last.sessionID,
    messageID: last.messageID,
    type: "text",
    synthetic: true,
    ignored: true,
    metadata: MEMORY,
    text: context,
  });
}

function isMemory(part) {
  return part.metadata?.quillstead === MEMORY.quillstead;
}

/** The same message with its memory for the model to see. */
function shown(message) {
  if (!message.parts.some(isMemory)) return message;
  return {
    ...message,
    parts: message.parts.map((part) => (isMemory(part) ? { ...part, ignored: false } : part)),
  };
}

export const QuillsteadPlugin = async ({ client, directory }) => {
  const parents = new Map(); // session id → whether a parent session started it
  const compactions = new Map(); // session id → how often it was compacted

  async function isChildSession(sessionID) {
    if (!parents.has(sessionID)) {
      const session = await within(LONGEST_LOOKUP, client.session.get({ path: { id: sessionID } }));
      parents.set(sessionID, Boolean(session?.data?.parentID));
    }
    return parents.get(sessionID);
  }

  /** How often the session was compacted before this process ran. */
  async function earlierCompactions(sessionID) {
    try {
      const listing = client.session.messages({ path: { id: sessionID } });
      const messages = (await within(LONGEST_LOOKUP, listing)).data;
      const parts = messages.flatMap((message) => message.parts);
      return parts.filter((part) => part.type === "compaction").length;
    } catch {
      return 0;
    }
  }

  /** A compacted session has forgotten what it was told: to the memory service it is a new one. */
  async function memorySession(sessionID) {
    if (!compactions.has(sessionID)) compactions.set(sessionID, await earlierCompactions(sessionID));
    const count = compactions.get(sessionID);
    return count === 0 ? sessionID : `${sessionID}/${count}`;
  }

  return {
    event: async ({ event }) => {
      if (event?.type !== "session.compacted") return;
      // What is not known yet is counted when it is asked for, this compaction included.
      const sessionID = event.properties?.sessionID;
      if (compactions.has(sessionID)) compactions.set(sessionID, compactions.get(sessionID) + 1);
    },

    "experimental.chat.messages.transform": async (input, output) => {
      // The list belongs to the request; the messages in it may be read for the title at this moment.
      output.messages.forEach((message, at) => (output.messages[at] = shown(message)));
    },

    "chat.message": async (input, output) => {
      try {
        // The plugin may be there twice, for the user and for the project: the first one does it.
        if (output.parts.length === 0 || output.parts.some(isMemory)) return;
        const prompt = promptOf(output.parts);
        const sessionID = await memorySession(input.sessionID);
        const answer = await runHook([], { prompt, cwd: directory, sessionID });
        if (typeof answer?.context === "string") addContext(output.parts, answer.context);
      } catch {
        // The message goes on without memory.
      }
    },

    "tool.execute.before": async (input, output) => {
      try {
        if (!input.tool.startsWith(TOOL_PREFIX) || !(await isChildSession(input.sessionID))) return;
        const answer = await runHook(["--slot", "pretool"], {
          tool_name: HOOK_TOOL_PREFIX + input.tool.slice(TOOL_PREFIX.length),
          tool_input: output.args,
          agent_id: input.sessionID,
        });
        const stamped = answer?.hookSpecificOutput?.updatedInput;
        // OpenCode runs the tool with the object it passed in, so that one has to change.
        if (stamped && typeof stamped === "object") Object.assign(output.args, stamped);
      } catch {
        // The call goes on without a stamp.
      }
    },
  };
};
