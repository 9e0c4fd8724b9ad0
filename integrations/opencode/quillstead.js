// OpenCode plugin: the bridge to quillstead-hook. Copy it to ~/.config/opencode/plugins/ (or a
// project's .opencode/plugins/). It runs the hook that QUILLSTEAD_HOOK_BIN names, else
// "quillstead-hook" on PATH. Whatever fails, the message or the tool call goes on unchanged.
import { spawn } from "node:child_process";

const LONGEST_RUN = 5000; // milliseconds; the hook itself keeps well below
const TOOL_PREFIX = "quillstead_"; // OpenCode names an MCP tool <server>_<tool>
const HOOK_TOOL_PREFIX = "mcp__quillstead__";

/** Runs the hook on a payload. Gives its answer, or undefined when there is none to be had. */
function runHook(slotArguments, payload) {
  return new Promise((resolve) => {
    const executable = process.env.QUILLSTEAD_HOOK_BIN || "quillstead-hook";
    const hook = spawn(executable, ["--harness", "opencode", ...slotArguments], {
      stdio: ["pipe", "pipe", "ignore"],
      timeout: LONGEST_RUN,
      killSignal: "SIGKILL",
    });
    const chunks = [];
    hook.on("error", () => resolve(undefined));
    hook.stdin.on("error", () => {});
    hook.stdout.on("error", () => resolve(undefined));
    hook.stdout.on("data", (chunk) => chunks.push(chunk));
    hook.on("close", () => {
      try {
        resolve(JSON.parse(Buffer.concat(chunks).toString("utf8")));
      } catch {
        resolve(undefined);
      }
    });
    hook.stdin.end(JSON.stringify(payload));
  });
}

/** What the user typed: not what plugins or tools added to the message. */
function promptOf(parts) {
  return parts
    .filter((part) => part.type === "text" && !part.synthetic && typeof part.text === "string")
    .map((part) => part.text)
    .join("\n");
}

/** Adds the memory to a message as a part of its own, which the model sees and the screen does not. */
function addContext(parts, context) {
  const last = parts[parts.length - 1];
  parts.push({
    id: `${last.id}m`, // parts are replayed in the order of their ids: right behind the last
    sessionID: last.sessionID,
    messageID: last.messageID,
    type: "text",
    synthetic: true,
    text: context,
  });
}

export const QuillsteadPlugin = async ({ client, directory }) => {
  const parents = new Map(); // session id → whether a parent session started it

  async function isChildSession(sessionID) {
    if (!parents.has(sessionID)) {
      const session = await client.session.get({ path: { id: sessionID } });
      parents.set(sessionID, Boolean(session?.data?.parentID));
    }
    return parents.get(sessionID);
  }

  return {
    "chat.message": async (input, output) => {
      try {
        if (output.parts.length === 0) return;
        const prompt = promptOf(output.parts);
        const answer = await runHook([], { prompt, cwd: directory, sessionID: input.sessionID });
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
