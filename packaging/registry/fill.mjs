// Prints server.json: the template, and the checksum of the bundle that it offers.
//
//   node fill.mjs TEMPLATE BUNDLE >server.json

import { createHash } from "node:crypto";
import { readFileSync } from "node:fs";

const [template, bundle] = process.argv.slice(2);
const server = JSON.parse(readFileSync(template, "utf8"));
server.packages[0].fileSha256 = createHash("sha256").update(readFileSync(bundle)).digest("hex");
console.log(JSON.stringify(server, null, 2));
