// Places and programs for the tests: a store of one test's own, the server and the hook that were
// built.
import {spawn} from 'node:child_process';
import {mkdtempSync, mkdirSync, rmSync, writeFileSync} from 'node:fs';
import {tmpdir} from 'node:os';
import {dirname, join} from 'node:path';

function builtProgram(name) {
  const path = process.env[name];
  if (!path) throw new Error(`${name} must name a program`);
  return path;
}

export const server = builtProgram('QUILLSTEAD_MCP_UNDER_TEST');
export const hook = builtProgram('QUILLSTEAD_HOOK_UNDER_TEST');

/// A project in a directory that goes away with the test, and the environment that keeps to it.
export function stage(test) {
  const root = mkdtempSync(join(tmpdir(), 'quillstead-clients-'));
  test.after(() => rmSync(root, {recursive: true}));
  const project = join(root, 'project');
  mkdirSync(join(project, '.quillstead'), {recursive: true});
  const environment = {
    HOME: root,
    PATH: process.env.PATH,
    QUILLSTEAD_HOME: join(root, 'personal'),
    QUILLSTEAD_TRUST: project,
    XDG_CACHE_HOME: join(root, 'cache'),
    QUILLSTEAD_HOOK_LOG: join(root, 'hook.log'),
  };
  return {
    root,
    project,
    environment,
    write(name, text) {
      mkdirSync(dirname(join(root, name)), {recursive: true});
      writeFileSync(join(root, name), text);
    },
  };
}

/// Runs a program with `input` and gives its output when it has ended well.
export function run(program, programArguments, environment, input, directory) {
  return new Promise((resolve, reject) => {
    const child = spawn(program, programArguments, {env: environment, cwd: directory});
    const output = [];
    const errors = [];
    child.stdout.on('data', (bytes) => output.push(bytes));
    child.stderr.on('data', (bytes) => errors.push(bytes));
    child.on('error', reject);
    child.on('close', (status) => {
      const complaint = Buffer.concat(errors).toString();
      if (status === 0) resolve({output: Buffer.concat(output).toString(), complaint});
      else reject(new Error(`${program} ended with status ${status}: ${complaint}`));
    });
    child.stdin.end(input);
  });
}
