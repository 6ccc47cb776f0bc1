// Prints the bundle's manifest: the template, and the tools as the program itself announces them.
//
//   node manifest.mjs TEMPLATE PROGRAM >manifest.json

import { spawnSync } from "node:child_process";
import { readFileSync } from "node:fs";

/// The results of these methods, asked of the program one after the other.
function ask(program, methods) {
  const lines = methods.map((method, id) => JSON.stringify({ jsonrpc: "2.0", id, method }) + "\n");
  const run = spawnSync(program, { input: lines.join(""), encoding: "utf8", timeout: 10_000 });
  if (run.error || run.status !== 0) {
    throw new Error(`${program} can't be run here: ${run.error ?? `status ${run.status}`}`);
  }
  const replies = run.stdout.trim().split("\n").map((line) => JSON.parse(line));
  return methods.map((_, id) => replies.find((reply) => reply.id === id).result);
}

const [template, program] = process.argv.slice(2);
const manifest = JSON.parse(readFileSync(template, "utf8"));
const [{ serverInfo }, { tools }] = ask(program, ["initialize", "tools/list"]);
if (serverInfo.version !== manifest.version) {
  throw new Error(`${program} is version ${serverInfo.version}, not ${manifest.version}`);
}
manifest.tools = tools.map(({ name, description }) => ({ name, description }));
console.log(JSON.stringify(manifest, null, 2));
