// Reads what a check needs to know about a macOS executable, universal or for one processor.

const universal = 0xcafebabe;
const executable64 = 0xfeedfacf;
const processors = new Map([[0x0100000c, "arm64"], [0x01000007, "x86_64"]]);
const command = {
  symbols: 0x2, library: 0xc, weakLibrary: 0x80000018, reexportedLibrary: 0x8000001f,
  signature: 0x1d, buildVersion: 0x32,
};

/// The parts of an executable, one for each processor, as slices of `file`.
function slices(file) {
  if (file.readUInt32BE(0) !== universal) return [file];
  return Array.from({ length: file.readUInt32BE(4) }, (_, i) => {
    const entry = 8 + 20 * i;
    const offset = file.readUInt32BE(entry + 8);
    return file.subarray(offset, offset + file.readUInt32BE(entry + 12));
  });
}

function text(bytes, start) {
  return bytes.toString("latin1", start, bytes.indexOf(0, start));
}

function* loadCommands(bytes) {
  let at = 32;
  for (let left = bytes.readUInt32LE(16); left > 0; --left) {
    const size = bytes.readUInt32LE(at + 4);
    yield [bytes.readUInt32LE(at), bytes.subarray(at, at + size)];
    at += size;
  }
}

/// The undefined symbols, each with the library that it comes from, counted from 1; above 250 it is
/// none in particular.
function readImports(bytes, symbols) {
  const [table, count, names] = [8, 12, 16].map((offset) => symbols.readUInt32LE(offset));
  const entries = Array.from({ length: count }, (_, i) => bytes.subarray(table + 16 * i));
  return entries
    .filter((entry) => (entry[4] & 0xef) === 1)  // undefined and external, weak or not
    .map((entry) => ({ name: text(bytes, names + entry.readUInt32LE(0)), library: entry[7] }));
}

function version(number) {
  return `${number >>> 16}.${(number >>> 8) & 0xff}`;
}

function readPart(bytes, offset) {
  if (bytes.readUInt32LE(0) !== executable64) throw new Error("no executable for 64-bit Macs");
  const part = {
    bytes,
    offset,
    processor: processors.get(bytes.readUInt32LE(4)) ?? "unknown",
    isProgram: bytes.readUInt32LE(12) === 2,
    isPositionIndependent: (bytes.readUInt32LE(24) & 0x200000) !== 0,
    libraries: [],
    imports: [],
  };
  for (const [kind, content] of loadCommands(bytes)) {
    if ([command.library, command.weakLibrary, command.reexportedLibrary].includes(kind)) {
      part.libraries.push(text(content, content.readUInt32LE(8)));
    } else if (kind === command.buildVersion) {
      part.isForMacos = content.readUInt32LE(8) === 1;
      part.oldestSystem = version(content.readUInt32LE(12));
    } else if (kind === command.symbols) {
      part.imports = readImports(bytes, content);
    } else if (kind === command.signature) {
      const offset = content.readUInt32LE(8);
      part.signature = { offset, bytes: bytes.subarray(offset, offset + content.readUInt32LE(12)) };
    }
  }
  return part;
}

export function readExecutable(file) {
  return slices(file).map((bytes) => readPart(bytes, bytes.byteOffset - file.byteOffset));
}
