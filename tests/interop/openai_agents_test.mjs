import { MCPServerStdio } from '@openai/agents';

import { testClient } from './conversation.mjs';

testClient('OpenAI Agents', async (server) => {
  const client = new MCPServerStdio(server);
  await client.connect();
  return {
    // It asks one server for a later revision, stops it, and starts another.
    endings: [/^(status 0|signal SIGTERM)$/, /^status 0$/],
    listTools: () => client.listTools(),
    call: (name, args) => client.callToolResult(name, args),
    close: () => client.close(),
  };
});
