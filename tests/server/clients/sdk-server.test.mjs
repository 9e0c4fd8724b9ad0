// The hook, served by a server that was written with the official SDK.
import assert from 'node:assert/strict';
import {chmodSync, readFileSync} from 'node:fs';
import {join} from 'node:path';
import {test} from 'node:test';
import {fileURLToPath} from 'node:url';

import {hook, run, stage} from './stage.mjs';

function withServer(test) {
  const place = stage(test);
  const source = fileURLToPath(new URL('sdk-server.mjs', import.meta.url));
  place.write('bin/sdk-mcp', `#!/bin/sh\nexec "${process.execPath}" "${source}"\n`);
  place.environment.QUILLSTEAD_MCP_BIN = join(place.root, 'bin/sdk-mcp');
  chmodSync(place.environment.QUILLSTEAD_MCP_BIN, 0o755);
  return place;
}

async function answered(place, slot) {
  const payload = JSON.stringify({prompt: 'wo ist der Schlüssel?', cwd: place.project});
  const {output, complaint} = await run(
    hook,
    ['--harness', 'opencode', ...(slot ? ['--slot', slot] : [])],
    place.environment,
    payload,
    place.project,
  );
  assert.equal(complaint, '');
  return JSON.parse(output).context;
}

test('rules, index and cards arrive', async (t) => {
  const place = withServer(t);
  const rules = `- Rules for ${place.project}.`;
  const memory =
    '<quillstead-memory>\nOne card\n\nYou asked: wo ist der Schlüssel?\n</quillstead-memory>';
  assert.equal(await answered(place, 'rules'), `<user-rules>\n${rules}\n</user-rules>`);
  assert.equal(await answered(place, 'index'), '<user-rules>\nIndex: one card\n</user-rules>');
  assert.equal(await answered(place, 'recall'), memory);
  assert.equal(
    await answered(place),
    `<user-rules>\n${rules}\nIndex: one card\n</user-rules>\n\n${memory}`,
  );
  assert.match(readFileSync(place.environment.QUILLSTEAD_HOOK_LOG, 'utf8'), /rules=1 cards=1 \|/);
});
