import assert from "node:assert/strict";
import { test } from "node:test";
import { unmet } from "./requirements.mjs";

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

test("a server with everything in place is fine", () => assert.deepEqual(unmet(good()), []));

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
    assert.equal(unmet(server).length, 1);
  });
}
