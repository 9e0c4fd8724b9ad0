// Rules and memory for a prompt from an MCP server, as a user would script it with the official SDK:
// one server and one connection for both tools. Usage: node recall.mjs <server>
import { readFileSync } from "node:fs";
import { Client } from "@modelcontextprotocol/sdk/client/index.js";
import { StdioClientTransport } from "@modelcontextprotocol/sdk/client/stdio.js";

const { prompt, cwd, session_id, transcript_path } = JSON.parse(readFileSync(0, "utf8"));
const place = { cwd, session_id, transcript_path };
const client = new Client({ name: "script", version: "1" });
await client.connect(new StdioClientTransport({ command: process.argv[2] }));

async function call(name, parameters) {
  const result = await client.callTool({ name, arguments: parameters });
  return result.content[0].text;
}

const rules = await call("rules_get", { ...place, card: true, card_head_ceiling: 10000 });
const memory = await call("memory_get_relevant", { prompt, ...place });
await client.close();
const additionalContext = `${rules}\n\n${memory}`;
process.stdout.write(
  JSON.stringify({ hookSpecificOutput: { hookEventName: "UserPromptSubmit", additionalContext } }) + "\n",
);
