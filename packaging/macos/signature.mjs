// Recomputes the hashes of a code signature. The kernel of a Mac with an ARM processor ends
// a program at once when a page does not have the hash that its signature names.

import { createHash } from "node:crypto";

const superBlob = 0xfade0cc0;
const codeDirectory = 0xfade0c02;
const hashes = new Map([[1, ["sha1", 20]], [2, ["sha256", 32]]]);
const adHoc = 0x2;

function* codeDirectories(signature) {
  if (signature.readUInt32BE(0) !== superBlob) throw new Error("the signature has another format");
  for (let i = 0; i < signature.readUInt32BE(8); ++i) {
    const blob = signature.subarray(signature.readUInt32BE(12 + 8 * i + 4));
    if (blob.readUInt32BE(0) === codeDirectory) yield blob.subarray(0, blob.readUInt32BE(4));
  }
}

function directoryFaults(part, directory) {
  const [hashOffset, , , pages, limit] = [16, 20, 24, 28, 32].map((at) => directory.readUInt32BE(at));
  const [algorithm, length] = hashes.get(directory[37]) ?? [];
  if (!algorithm) return [`unknown hash ${directory[37]}`];
  const pageSize = 1 << directory[39];
  const faults = [];
  if (limit !== part.signature.offset) faults.push("the signature does not cover the whole file");
  if (pages !== Math.ceil(limit / pageSize)) faults.push("the signature lacks pages");
  for (let page = 0; page < pages; ++page) {
    const end = Math.min(limit, (page + 1) * pageSize);
    const hash = createHash(algorithm).update(part.bytes.subarray(page * pageSize, end)).digest();
    const start = hashOffset + page * length;
    if (!hash.equals(directory.subarray(start, start + length))) faults.push(`page ${page} changed`);
  }
  return faults;
}

/// Whether the signature of a part names no signer.
export function isSignedAdHoc(part) {
  return [...codeDirectories(part.signature.bytes)].every(
    (directory) => (directory.readUInt32BE(12) & adHoc) !== 0);
}

/// What is wrong with the signature of a part that readExecutable() returned, a line each.
export function signatureFaults(part) {
  if (!part.signature) return ["there is no signature"];
  const directories = [...codeDirectories(part.signature.bytes)];
  if (directories.length === 0) return ["the signature has no code directory"];
  return directories.flatMap((directory) => directoryFaults(part, directory));
}
