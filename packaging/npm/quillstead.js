#!/usr/bin/env node
// What npm puts on PATH as `quillstead`: runs the program of the package for this system. Harnesses never
// come by here: `quillstead install` writes the paths of the programs themselves into their settings.
'use strict';

const { spawn } = require('node:child_process');
const os = require('node:os');
const path = require('node:path');

const system = `${process.platform}-${process.arch}`;
const name = {
  'linux-x64': 'quillstead-linux-x64',
  'linux-arm64': 'quillstead-linux-arm64',
  'darwin-x64': 'quillstead-darwin',
  'darwin-arm64': 'quillstead-darwin',
}[system];

function giveUp(...lines) {
  for (const line of lines) console.error(`quillstead: ${line}`);
  process.exit(1);
}

function find() {
  if (!name) giveUp(`there are no programs for ${system}: quillstead runs on Linux and macOS, on x64 and arm64`);
  try {
    return path.join(path.dirname(require.resolve(`${name}/package.json`)), 'bin', 'quillstead');
  } catch {
    return giveUp(
      `the package ${name} is missing, which has the programs for this system`,
      'it is an optional dependency: the package manager was told to leave those out, or could not get it',
      'install quillstead again on this system, with optional dependencies',
    );
  }
}

function run(program) {
  for (const signal of ['SIGHUP', 'SIGINT', 'SIGQUIT', 'SIGTERM']) process.on(signal, () => child.kill(signal));
  const child = spawn(program, process.argv.slice(2), { stdio: 'inherit' });
  child.on('error', (error) => giveUp(`${program} cannot be started: ${error.code}`, `install ${name} again`));
  child.on('exit', (status, signal) => {
    if (signal === null) process.exit(status);
    process.exitCode = 128 + os.constants.signals[signal];
    process.removeAllListeners(signal);
    process.kill(process.pid, signal);
  });
}

run(find());
