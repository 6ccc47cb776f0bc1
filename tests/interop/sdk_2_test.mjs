import { Client } from '@modelcontextprotocol/client';
import { StdioClientTransport } from '@modelcontextprotocol/client/stdio';

import { testClient } from './conversation.mjs';
import { connector, testSdk } from './sdk.mjs';

const callTool = (client, call, how) => client.callTool(call, how);
const sdk = { Client, StdioClientTransport, callTool };

testSdk('SDK 2.x', sdk);

// When it looks for a later revision, it asks one server, closes that server's input and stops it at
// the same moment, and then starts another.
const probing = { versionNegotiation: { mode: 'auto' } };
const endings = [/^(status 0|signal SIGTERM)$/, /^status 0$/];
testClient('SDK 2.x, probing', connector(sdk, probing, endings));
