import { Client } from '@modelcontextprotocol/client';
import { StdioClientTransport } from '@modelcontextprotocol/client/stdio';

import { testClient } from './conversation.mjs';
import { connector, testSdk } from './sdk.mjs';

const callTool = (client, call, how) => client.callTool(call, how);
const sdk = { Client, StdioClientTransport, callTool };

testSdk('SDK 2.x', sdk);

// Told to look for a later revision, it asks a first server for it, ends that one's input and
// stops it in the same moment, and starts a second.
const probing = { versionNegotiation: { mode: 'auto' } };
const endings = [/^(status 0|signal SIGTERM)$/, /^status 0$/];
testClient('SDK 2.x, probing', connector(sdk, probing, endings));
