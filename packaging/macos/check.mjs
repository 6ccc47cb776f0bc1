// Checks the universal executable for Macs, and prints what it found.
//
//   node check.mjs [--system] EXECUTABLE [PATH...]
//
// None of the paths may occur in it. --system is for one that a Mac's own compiler has made: its C++
// library is the system's, so imports are not compared.

import { readFileSync } from "node:fs";
import { readExecutable } from "./executable.mjs";
import { isSignedAdHoc, signatureFaults } from "./signature.mjs";

const mostBytes = 1.2 * 1024 * 1024;
const pageSizes = { arm64: 16384, x86_64: 4096 };
const cLibrary = "/usr/lib/libSystem.B.dylib";
const cppLibrary = "/usr/lib/libc++.1.dylib";

const words = process.argv.slice(2);
const systemCompiler = words[0] === "--system";
if (systemCompiler) words.shift();
const [name, ...paths] = words;
const file = readFileSync(name);
const parts = readExecutable(file);
const faults = [];

function expect(holds, fault) {
  if (!holds) faults.push(fault);
}

function checkPart(part) {
  const libraries = systemCompiler ? [cLibrary, cppLibrary] : [cLibrary];
  const fail = (holds, fault) => expect(holds, `${part.processor}: ${fault}`);
  fail(part.isProgram, "not a program");
  fail(part.isPositionIndependent, "not position-independent");
  fail(part.offset % pageSizes[part.processor] === 0, "not at the start of a page");
  fail(part.isForMacos && part.oldestSystem === "13.0", `made for system ${part.oldestSystem}`);
  for (const library of part.libraries) fail(libraries.includes(library), `uses ${library}`);
  for (const { name, library } of part.imports) {
    fail(library >= 1 && library <= part.libraries.length, `imports ${name} from no known library`);
  }
  if (part.processor === "arm64" || part.signature) {
    for (const fault of signatureFaults(part)) fail(false, fault);
    if (part.signature && !systemCompiler) fail(isSignedAdHoc(part), "not signed ad hoc");
  }
}

/// Every import is in imports.txt, and every line there is imported by one of the parts.
function checkImports() {
  const list = readFileSync(new URL("imports.txt", import.meta.url), "utf8");
  const known = new Set(list.split("\n").filter((line) => line && !line.startsWith("#")));
  const used = new Set(parts.flatMap((part) => part.imports.map(({ name }) => name)));
  for (const name of used) expect(known.has(name), `imports ${name}, which imports.txt lacks`);
  for (const name of known) expect(used.has(name), `imports.txt lists ${name}, which is not used`);
}

const processors = parts.map((part) => part.processor).sort().join(" ");
expect(processors === "arm64 x86_64", `is for ${processors}`);
expect(file.length <= mostBytes, `has ${file.length} bytes`);
for (const path of paths) expect(!file.includes(path), `contains ${path}`);
parts.forEach(checkPart);
if (!systemCompiler) checkImports();

for (const fault of faults) console.error(`${name}: ${fault}`);
if (faults.length > 0) process.exit(1);
for (const { processor, bytes, imports, signature } of parts) {
  const signed = signature ? "signed" : "unsigned";
  console.log(`${processor}: ${bytes.length} bytes, ${imports.length} imports, ${signed}`);
}
console.log(`${name}: ${file.length} bytes, as it should be`);
