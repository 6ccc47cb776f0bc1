// Runs the server for a client and records how the server ends, which no client reports:
// node watched_server.mjs SERVER ENDINGS. The server gets the client's own pipes and signals.
import { spawn } from 'node:child_process';
import { appendFileSync } from 'node:fs';

const [program, endings] = process.argv.slice(2);
const server = spawn(program, { stdio: 'inherit' });
process.on('SIGTERM', () => server.kill('SIGTERM'));
server.on('exit', (status, signal) => {
  appendFileSync(endings, signal ? `signal ${signal}\n` : `status ${status}\n`);
});
