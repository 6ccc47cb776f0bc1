// Holds a server.json against the documented requirements.
//
//   node check.mjs server.json

import { readFileSync } from "node:fs";
import { unmet } from "./requirements.mjs";

const file = process.argv[2];
const text = readFileSync(file, "utf8");
const problems = unmet(JSON.parse(text));
for (const problem of problems) console.error(`${file}: does not hold: ${problem}`);
if (problems.length > 0) process.exit(1);
console.log(`${file}: meets the documented requirements (the registry's own schema was not asked)`);
if (/invalid\.example|example\.invalid/.test(text)) {
  console.log(`${file}: not fit for publishing: it names no real publisher`);
}
