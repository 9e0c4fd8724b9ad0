// A client that sends nonsense between its requests still gets its answers.
import assert from 'node:assert/strict';
import {test} from 'node:test';

import {run, server, stage} from './stage.mjs';

const initialize = (id, version = '2024-11-05') => ({
  jsonrpc: '2.0',
  id,
  method: 'initialize',
  params: {protocolVersion: version, capabilities: {}, clientInfo: {name: 'garbage', version: '1'}},
});
const ping = (id) => ({jsonrpc: '2.0', id, method: 'ping'});

const nonsense = [
  'not JSON at all',
  '{"jsonrpc":"2.0","id":',
  '[]',
  '"text"',
  '42',
  '{}',
  '\u0000\u0001\u0002',
  '{"jsonrpc":"1.0","id":5,"method":"ping"}',
  '{"jsonrpc":"2.0","id":{},"method":"ping"}',
  '{"jsonrpc":"2.0","id":6,"method":7}',
  '{"jsonrpc":"2.0","id":8,"method":"tools/call","params":[]}',
  '{"jsonrpc":"2.0","id":9,"method":"tools/call","params":{"name":"grab","arguments":[]}}',
  '{"jsonrpc":"2.0","id":10,"result":{}}',
  '{"jsonrpc":"2.0","method":"notifications/unheard-of"}',
  '['.repeat(100_000),
  'x'.repeat(20_000_000),
  '',
  '   ',
];

test('answers between any nonsense, and ends well', async (t) => {
  const place = stage(t);
  const lines = [JSON.stringify(initialize('first'))];
  nonsense.forEach((line, at) => lines.push(line, JSON.stringify(ping(`ping ${at}`))));
  const {output} = await run(server, [], place.environment, lines.join('\n'));
  const answers = output.trimEnd().split('\n').map((line) => JSON.parse(line));
  assert.equal(answers[0].result.protocolVersion, '2024-11-05');
  nonsense.forEach((_, at) => {
    const mine = answers.filter((answer) => answer.id === `ping ${at}`);
    assert.deepEqual(mine, [{jsonrpc: '2.0', id: `ping ${at}`, result: {}}]);
  });
});

test('bytes that are not UTF-8 make one unreadable line', async (t) => {
  const place = stage(t);
  const input = Buffer.concat([
    Buffer.from([0x7b, 0x22, 0xff, 0xfe, 0x22, 0x7d, 0x0a]),
    Buffer.from(JSON.stringify(ping(2)) + '\n'),
  ]);
  const {output} = await run(server, [], place.environment, input);
  const [unreadable, answered] = output.trimEnd().split('\n').map((line) => JSON.parse(line));
  assert.deepEqual([unreadable.id, unreadable.error.code], [null, -32700]);
  assert.deepEqual(answered, {jsonrpc: '2.0', id: 2, result: {}});
});
