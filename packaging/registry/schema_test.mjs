import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { createServer } from "node:http";
import { test } from "node:test";
import { schemaAt, violations } from "./schema.mjs";

const schema = JSON.parse(readFileSync(new URL("server.schema.json", import.meta.url)));

const good = () => ({
  $schema: "https://schemas.example.invalid/schemas/2025-12-11/server.schema.json",
  name: "invalid.example/some-server",
  title: "Some",
  description: "A server",
  version: "1.2.3",
  packages: [{
    registryType: "mcpb",
    identifier: "https://example.invalid/some-mcp-1.2.3.mcpb",
    fileSha256: "0123456789abcdef".repeat(4),
    transport: { type: "stdio" },
  }],
});

test("a server with everything in place is fine", () => assert.deepEqual(violations(schema, good()), []));

const faults = {
  "no schema": (server) => delete server.$schema,
  "a name without a domain": (server) => (server.name = "some-server"),
  "a name with two slashes": (server) => (server.name = "invalid.example/some/server"),
  "no title": (server) => (server.title = ""),
  "a description of 101 characters": (server) => (server.description = "x".repeat(101)),
  "a version range": (server) => (server.version = "^1.2.3"),
  "the version latest": (server) => (server.version = "latest"),
  "an unknown member": (server) => (server.homepage = "x"),
  "no packages": (server) => delete server.packages,
  "an empty list of packages": (server) => (server.packages = []),
  "another kind of package": (server) => (server.packages[0].registryType = "zip"),
  "an address without encryption":
    (server) => (server.packages[0].identifier = "http://example.invalid/some-mcp.mcpb"),
  "no checksum": (server) => delete server.packages[0].fileSha256,
  "a checksum in upper case":
    (server) => (server.packages[0].fileSha256 = "0123456789ABCDEF".repeat(4)),
  "no transport": (server) => delete server.packages[0].transport,
  "a transport with an address": (server) => (server.packages[0].transport.url = "x"),
  "a version in the package": (server) => (server.packages[0].version = "1.2.3"),
};

for (const [fault, inflict] of Object.entries(faults)) {
  test(`${fault} is found, and nothing else`, () => {
    const server = good();
    inflict(server);
    assert.equal(violations(schema, server).length, 1);
  });
}

/// Runs `use` with an address on loopback where `answer` takes every request.
async function serving(answer, use) {
  const registry = createServer((request, response) => answer(response));
  await new Promise((resolve) => registry.listen(0, "127.0.0.1", resolve));
  try {
    return await use(`http://127.0.0.1:${registry.address().port}/server.schema.json`);
  } finally {
    registry.closeAllConnections();
    registry.close();
  }
}

test("the schema at an address is the one that stands there", async () => {
  const text = JSON.stringify({ properties: { title: { maxLength: 3, example: "x" } } });
  const found = await serving((response) => response.end(text), schemaAt);
  assert.deepEqual(violations(found.schema, good()),
    ["/title must NOT have more than 3 characters"]);
});

test("an address that has no schema is an error", async () => {
  await assert.rejects(serving((response) => response.writeHead(404).end("{}"), schemaAt), /404/);
  await assert.rejects(serving((response) => response.end("no JSON"), schemaAt), SyntaxError);
});

test("an address where nobody listens is said to be unreachable", async () => {
  const address = await serving(() => {}, async (closedSoon) => closedSoon);
  assert.deepEqual(await schemaAt(address), { unreachable: "ECONNREFUSED" });
});

test("an address that does not answer in time is said to be unreachable", async () => {
  const found = await serving(() => {}, (address) => schemaAt(address, 50));
  assert.match(found.unreachable, /timeout/);
});
