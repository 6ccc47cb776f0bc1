// The official SDK's client. Its two release lines differ little.
import assert from 'node:assert/strict';

import { hold, testClient, testWithDesktop } from './conversation.mjs';

/** A connector, for conversation.mjs, of one line: { Client, StdioClientTransport, callTool }. */
export function connector(sdk, options = {}, endings = [/^status 0$/]) {
  return async (server) => {
    const client = new sdk.Client({ name: 'interop', version: '1' }, options);
    const transport = new sdk.StdioClientTransport(server);
    await client.connect(transport);
    return {
      transport,
      endings,
      listTools: async () => (await client.listTools()).tools,
      call: (name, args, how) => sdk.callTool(client, { name, arguments: args }, how),
      close: () => client.close(),
    };
  };
}

// Calls `seen` with each message after it was sent to the server.
function watchSending(transport, seen) {
  const send = transport.send.bind(transport);
  transport.send = (message, ...rest) => {
    const sent = send(message, ...rest);
    seen(message.method);
    return sent;
  };
}

async function cancelThenCall({ transport, call }) {
  const sent = [];
  const user = new AbortController();
  watchSending(transport, (method) => {
    sent.push(method);
    user.abort(new Error('stopped by the user'));
  });
  await assert.rejects(call('drive_status', {}, { signal: user.signal }), /stopped by the user/);
  const result = await call('search_drives', { query: 'harbour' });
  assert.match(result.content[0].text, /Harbour plan/);
  assert.deepEqual(sent, ['tools/call', 'notifications/cancelled', 'tools/call']);
}

/** Declares the tests of one line of the SDK. */
export function testSdk(name, sdk) {
  testClient(name, connector(sdk));

  testWithDesktop(`${name}: a cancelled call leaves the next unharmed`, {}, async (desktop) => {
    await desktop.startApplication();
    await hold(desktop, connector(sdk), cancelThenCall);
  });
}
