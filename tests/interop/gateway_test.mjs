// Gateways: programs that offer the server to clients over HTTP. The client is the official SDK's.
import assert from 'node:assert/strict';
import { spawn } from 'node:child_process';
import { once } from 'node:events';
import net from 'node:net';
import { setTimeout as wait } from 'node:timers/promises';
import { fileURLToPath } from 'node:url';

import { Client, StreamableHTTPClientTransport } from '@modelcontextprotocol/client';

import { hold, testClient, testWithDesktop } from './conversation.mjs';

async function freePort() {
  const listener = net.createServer().listen(0, '127.0.0.1');
  await once(listener, 'listening');
  const { port } = listener.address();
  await new Promise((resolve) => listener.close(resolve));
  return String(port);
}

// A gateway listens some time after its start.
async function connectTo(port, gateway) {
  const url = new URL(`http://127.0.0.1:${port}/mcp`);
  for (;;) {
    const client = new Client({ name: 'interop', version: '1' });
    try {
      await client.connect(new StreamableHTTPClientTransport(url));
      return client;
    } catch (error) {
      assert.equal(gateway.exitCode, null, 'the gateway has ended');
      if (error.cause?.code !== 'ECONNREFUSED') throw error;
      await wait(50);
    }
  }
}

async function stop(gateway) {
  if (gateway.exitCode !== null) return;
  gateway.kill();
  await once(gateway, 'exit');
}

// A connector, for conversation.mjs, through a gateway: the program and its arguments.
function connector(program, argumentsFor) {
  const path = fileURLToPath(new URL(`node_modules/${program}`, import.meta.url));
  return async ({ command, args, env }) => {
    const port = await freePort();
    const words = [path, ...argumentsFor(port, [command, ...args])];
    const gateway = spawn(process.execPath, words, {
      env: { ...process.env, ...env },
      stdio: 'ignore',
    });
    const client = await connectTo(port, gateway).catch(async (error) => {
      await stop(gateway);
      throw error;
    });
    return {
      client,
      endings: [/^signal SIGTERM$/],
      listTools: async () => (await client.listTools()).tools,
      call: (name, args) => client.callTool({ name, arguments: args }),
      close: async () => {
        await client.close();
        await stop(gateway);
      },
    };
  };
}

const mcpProxy = connector('mcp-proxy/dist/bin/mcp-proxy.mjs', (port, server) => {
  return ['--host', '127.0.0.1', '--port', port, '--', ...server];
});
const supergateway = connector('supergateway/dist/index.js', (port, server) => {
  const transport = ['--outputTransport', 'streamableHttp', '--stateful'];
  return ['--port', port, ...transport, '--stdio', server.join(' ')];
});

testClient('mcp-proxy', mcpProxy);
testClient('supergateway', supergateway);

testWithDesktop('mcp-proxy: announces a later revision, answers ping', {}, async (desktop) => {
  await hold(desktop, mcpProxy, async ({ client }) => {
    assert.equal(client.getNegotiatedProtocolVersion(), '2025-11-25');
    assert.deepEqual(await client.ping(), {});
  });
});
