import { Client } from '@modelcontextprotocol/sdk/client/index.js';
import { StdioClientTransport } from '@modelcontextprotocol/sdk/client/stdio.js';

import { testSdk } from './sdk.mjs';

const callTool = (client, call, how) => client.callTool(call, undefined, how);

testSdk('SDK 1.x', { Client, StdioClientTransport, callTool });
