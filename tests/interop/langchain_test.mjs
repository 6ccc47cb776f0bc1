import { MultiServerMCPClient } from '@langchain/mcp-adapters';

import { testClient } from './conversation.mjs';

// It throws if a tool's result is an error, and adds words of its own before the message.
async function call(tool, args) {
  try {
    const text = await tool.invoke(args);
    return { content: [{ type: 'text', text }] };
  } catch (error) {
    const text = error.message.replace(/^MCP tool '.*' on server '.*' returned an error: /, '');
    return { content: [{ type: 'text', text }], isError: true };
  }
}

testClient('LangChain', async (server) => {
  const client = new MultiServerMCPClient({ quillmark: { transport: 'stdio', ...server } });
  const tools = await client.getTools();
  return {
    endings: [/^status 0$/],
    listTools: () =>
      tools.map(({ name, description, schema }) => ({ name, description, inputSchema: schema })),
    call: (name, args) => call(tools.find((tool) => tool.name === name), args),
    close: () => client.close(),
  };
});
