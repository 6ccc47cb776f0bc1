import { createMCPClient } from '@ai-sdk/mcp';
import { Experimental_StdioMCPTransport as StdioMCPTransport } from '@ai-sdk/mcp/mcp-stdio';

import { testClient } from './conversation.mjs';

testClient('AI SDK', async (server) => {
  const client = await createMCPClient({ transport: new StdioMCPTransport(server) });
  const tools = await client.tools();
  return {
    endings: [/^signal SIGTERM$/], // its way to close: it leaves the server's input open
    listTools: async () => (await client.listTools()).tools,
    call: (name, args) => tools[name].execute(args, { toolCallId: name, messages: [] }),
    close: () => client.close(),
  };
});
