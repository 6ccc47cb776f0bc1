// One session with a server that an emulator runs. This script is both the host and the
// application.
//
//   node session.mjs COMMAND [ARGUMENT...]

import assert from 'node:assert/strict';
import { spawn } from 'node:child_process';
import { once } from 'node:events';
import fs from 'node:fs/promises';
import net from 'node:net';
import os from 'node:os';
import path from 'node:path';
import { createInterface } from 'node:readline';

const token = 'a "quoted" token';
const text = 'Grüße, 漢字 and \u{1F600}; "quotes", back\\slashes, a\ttab.\n'.repeat(20000);
const result = { names: ['b', 'a'], text, nested: { empty: {}, number: 12.5 } };
const requests = [];

/** Answers every request with the result, in pieces. */
function startApplication() {
  const application = net.createServer((connection) => {
    let received = '';
    connection.setEncoding('utf8').on('error', () => {}).on('data', (piece) => {
      received += piece;
      try {
        requests.push(JSON.parse(received));
      } catch {
        return;
      }
      const reply = JSON.stringify({ ok: true, result });
      connection.write(reply.slice(0, 100000));
      setTimeout(() => connection.end(reply.slice(100000)), 10);
    });
  });
  return new Promise((resolve) => application.listen(0, '127.0.0.1', () => resolve(application)));
}

async function publish(home, port) {
  const folder = path.join(home, 'Library/Application Support/Quillmark');
  await fs.mkdir(folder, { recursive: true });
  await fs.writeFile(path.join(folder, 'agent.json'), JSON.stringify({ version: 1, port, token }));
}

async function ask(server, replies, message) {
  server.stdin.write(`${JSON.stringify({ jsonrpc: '2.0', ...message })}\n`);
  const { value } = await replies.next();
  const reply = JSON.parse(value);
  assert.equal(reply.id, message.id);
  return reply.result;
}

async function session(home) {
  const [command, ...words] = process.argv.slice(2);
  const server = spawn(command, words, {
    env: { ...process.env, HOME: home }, stdio: ['pipe', 'pipe', 'inherit'],
  });
  const replies = createInterface({ input: server.stdout })[Symbol.asyncIterator]();
  const started = await ask(server, replies, { id: 1, method: 'initialize' });
  assert.equal(started.protocolVersion, '2024-11-05');
  const { tools } = await ask(server, replies, { id: 'é', method: 'tools/list' });
  assert.equal(tools.length, 11);
  const params = { name: 'search', arguments: { text, z: [1, -0.5], a: null } };
  const called = await ask(server, replies, { id: 3, method: 'tools/call', params });
  assert.equal(called.isError, undefined, called.content[0].text);
  assert.deepEqual(JSON.parse(called.content[0].text), result);
  assert.deepEqual(requests.at(-1).arguments, params.arguments);
  assert.equal(requests.at(-1).token, token);
  server.stdin.end();
  const [status] = await once(server, 'exit');
  assert.equal(status, 0);
}

const application = await startApplication();
const home = await fs.mkdtemp(path.join(os.tmpdir(), 'quillmark-session.'));
try {
  await publish(home, application.address().port);
  await session(home);
  console.log('one session: all as it should be');
} finally {
  application.close();
  await fs.rm(home, { recursive: true });
}
