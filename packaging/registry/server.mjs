// Prints server.json, which offers a bundle in the MCP registry: the template, and the bundle's
// checksum. Checks it against what the registry documents of such a file.
//
//   node server.mjs TEMPLATE BUNDLE

import { createHash } from "node:crypto";
import { readFileSync } from "node:fs";
import Ajv from "ajv";
import addFormats from "ajv-formats";

const line = { type: "string", minLength: 1, maxLength: 100 };
const object = (properties) =>
  ({ type: "object", properties, required: Object.keys(properties), additionalProperties: false });

const rules = object({
  $schema: { type: "string", pattern: "^https://\\S+/\\d{4}-\\d{2}-\\d{2}/server\\.schema\\.json$" },
  // The publisher's domain, reversed, then the name.
  name: { type: "string", maxLength: 200, pattern: "^[a-zA-Z0-9.-]+/[a-zA-Z0-9._-]+$" },
  title: line,
  description: line,
  // One version: no range, and not "latest".
  version: { type: "string", pattern: "^\\d+\\.\\d+\\.\\d+([-+][\\w.+-]+)?$" },
  packages: {
    type: "array",
    minItems: 1,
    items: object({
      registryType: { const: "mcpb" },
      identifier: { type: "string", format: "uri", pattern: "^https://\\S*mcp\\S*\\.mcpb$" },
      fileSha256: { type: "string", pattern: "^[a-f0-9]{64}$" },
      transport: object({ type: { const: "stdio" } }),
    }),
  },
});

const [template, bundle] = process.argv.slice(2);
const server = JSON.parse(readFileSync(template, "utf8"));
server.packages[0].fileSha256 = createHash("sha256").update(readFileSync(bundle)).digest("hex");

const ajv = new Ajv({ allErrors: true });
addFormats(ajv);
if (!ajv.validate(rules, server)) {
  for (const { instancePath, message } of ajv.errors) console.error(`${instancePath} ${message}`);
  process.exit(1);
}
if (JSON.stringify(server).includes("example.invalid")) {
  console.error("server.json is not fit for publishing: it names no real publisher");
}
console.log(JSON.stringify(server, null, 2));
