// Holds a server.json against server.schema.json, and against the registry's own schema where
// that can be reached.
//
//   node check.mjs server.json

import { readFileSync } from "node:fs";
import { schemaAt, violations } from "./schema.mjs";

const file = process.argv[2];
const text = readFileSync(file, "utf8");
const server = JSON.parse(text);

function judge(schema, name) {
  const found = violations(schema, server);
  for (const violation of found) console.error(`${file}: against ${name}: ${violation}`);
  if (found.length > 0) process.exitCode = 1;
  else console.log(`${file}: keeps ${name}`);
}

judge(JSON.parse(readFileSync(new URL("server.schema.json", import.meta.url))),
  "server.schema.json");
const { schema, unreachable } = await schemaAt(server.$schema);
if (schema) judge(schema, server.$schema);
else console.log(`${file}: NOT held against ${server.$schema} (${unreachable})`);

if (/invalid\.example|example\.invalid/.test(text)) {
  console.log(`${file}: not fit for publishing: it names no real publisher`);
}
