// The server, kept open by the official SDK's client as a harness does.
import assert from 'node:assert/strict';
import {readFileSync} from 'node:fs';
import {join} from 'node:path';
import {test} from 'node:test';

import {Client} from '@modelcontextprotocol/sdk/client/index.js';
import {StdioClientTransport} from '@modelcontextprotocol/sdk/client/stdio.js';

import {server, stage} from './stage.mjs';

async function connected(test, place) {
  const client = new Client({name: 'sdk-client', version: '1'});
  const transport = new StdioClientTransport({
    command: server,
    env: place.environment,
    cwd: place.project,
  });
  await client.connect(transport);
  test.after(() => client.close());
  return client;
}

const textOf = (result) => result.content[0].text;

test('lists every tool with a schema of its arguments', async (t) => {
  const client = await connected(t, stage(t));
  const {tools} = await client.listTools();
  assert.deepEqual(
    tools.map((tool) => tool.name),
    ['rules_get', 'memory_get_relevant', 'memory_add', 'grab'],
  );
  for (const tool of tools) {
    assert.equal(tool.inputSchema.type, 'object', tool.name);
    assert.ok(tool.description.length > 20, tool.name);
  }
});

test('calls every tool over one connection', async (t) => {
  const place = stage(t);
  place.write('personal/rules.md', '- Be brief.\n');
  place.write('project/.quillstead/rules.md', '- Prices are cents.\n');
  const client = await connected(t, place);

  const added = await client.callTool({
    name: 'memory_add',
    arguments: {
      text: 'The key is under the flowerpot – nächtlich.',
      title: 'Büroschlüssel',
      tags: ['office', 'key'],
      _quillstead_session: 'session 7',
    },
  });
  assert.equal(added.isError, undefined);
  assert.match(textOf(added), /büroschlüssel-[0-9a-z]{6}\.md/);
  const name = added._meta['quillstead/file'];
  const file = readFileSync(join(place.project, '.quillstead/memory', name), 'utf8');
  assert.match(file, /^session: session 7$/m);

  const relevant = await client.callTool({
    name: 'memory_get_relevant',
    arguments: {prompt: 'where is the flowerpot key?'},
  });
  assert.match(textOf(relevant), /^<quillstead-memory>\n/);
  assert.match(textOf(relevant), /The key is under the flowerpot – nächtlich\./);
  assert.equal(relevant._meta['quillstead/replyKind'], 'cards');

  const grabbed = await client.callTool({name: 'grab', arguments: {name: 'Büroschlüssel'}});
  assert.ok(textOf(grabbed).includes(file.trimEnd()));

  const rules = await client.callTool({name: 'rules_get'});
  assert.match(textOf(rules), /- Be brief\.\n\n[^\n]*this project's files:\n\n- Prices are cents\./);
  assert.match(textOf(rules), /- Büroschlüssel\n<\/user-rules>$/);
});

test('answers pings and goes on after refusals', async (t) => {
  const client = await connected(t, stage(t));
  await client.ping();
  await assert.rejects(client.callTool({name: 'no_such_tool'}), {code: -32602});
  const wrong = await client.callTool({name: 'memory_add', arguments: {text: 5}});
  assert.equal(wrong.isError, true);
  assert.match(wrong.content[0].text, /^Wrong arguments: text must be a string/);
  const refused = await client.callTool({name: 'grab', arguments: {name: '../../etc/passwd'}});
  assert.equal(refused.isError, true);
  await assert.rejects(client.request({method: 'no/such/method'}, {parse: (value) => value}));
  await client.ping();
});

test('many calls at once are all answered', async (t) => {
  const client = await connected(t, stage(t));
  const numbers = Array.from({length: 100}, (_, number) => number);
  await Promise.all(
    numbers.map((number) =>
      client.callTool({name: 'memory_add', arguments: {text: `Fact number${number} of many.`}}),
    ),
  );
  for (const number of [0, 57, 99]) {
    const found = await client.callTool({
      name: 'memory_get_relevant',
      arguments: {prompt: `number${number}`},
    });
    assert.match(textOf(found), new RegExp(`Fact number${number} of many`));
  }
});
