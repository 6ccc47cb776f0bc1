// mcporter's command line: every command starts a server of its own.
import { execFile } from 'node:child_process';
import { fileURLToPath } from 'node:url';
import { promisify } from 'node:util';

import { testClient } from './conversation.mjs';

const program = fileURLToPath(new URL('node_modules/mcporter/dist/cli.js', import.meta.url));

async function run(command, server, ...words) {
  const start = ['--name', 'quillmark', '--stdio', server.command];
  for (const arg of server.args) start.push('--stdio-arg', arg);
  const { stdout } = await promisify(execFile)(
    process.execPath,
    [program, command, ...start, ...words],
    { env: { ...process.env, ...server.env }, cwd: server.env.HOME },
  );
  return stdout;
}

testClient('mcporter', (server) => {
  const endings = [];
  return {
    endings,
    listTools: async () => {
      endings.push(/^status 0$/);
      const { tools } = JSON.parse(await run('list', server, '--json'));
      return tools.map(({ name, description, inputSchema }) => ({ name, description, inputSchema }));
    },
    // It prints only the text of a successful result.
    call: async (name, args) => {
      endings.push(/^status 0$/);
      const words = [name, '--args', JSON.stringify(args), '--output', 'json'];
      const text = await run('call', server, ...words);
      const printed = JSON.parse(text);
      return printed.isError ? printed : { content: [{ type: 'text', text }] };
    },
    close: () => {},
  };
});
