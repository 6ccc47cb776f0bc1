// The Inspector's command line: every command starts a server of its own.
import { execFile } from 'node:child_process';
import path from 'node:path';
import { fileURLToPath } from 'node:url';
import { promisify } from 'node:util';

import { testClient } from './conversation.mjs';

// The folder from which the program finds its own package.json. From any other, it runs only as a
// part of the whole Inspector.
const folder = fileURLToPath(
  new URL('node_modules/@modelcontextprotocol/inspector-cli/build/', import.meta.url),
);

async function inspect({ command, args, env }, ...request) {
  const settings = Object.entries(env).flatMap(([name, value]) => ['-e', `${name}=${value}`]);
  const words = [path.join(folder, 'cli.js'), '--cli', ...settings, command, ...args];
  const { stdout } = await promisify(execFile)(process.execPath, [...words, ...request], {
    cwd: folder,
  });
  return JSON.parse(stdout);
}

function pairs(args) {
  const words = Object.entries(args).map(([name, value]) => `${name}=${value}`);
  return words.length > 0 ? ['--tool-arg', ...words] : [];
}

testClient('Inspector', (server) => {
  const endings = [];
  const run = (...request) => {
    endings.push(/^status 0$/);
    return inspect(server, ...request);
  };
  return {
    endings,
    listTools: async () => (await run('--method', 'tools/list')).tools,
    call: (name, args) => run('--method', 'tools/call', '--tool-name', name, ...pairs(args)),
    close: () => {},
  };
});
