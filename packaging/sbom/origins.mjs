// Finds what a built program contains besides the project's own code, from the files that the
// compiler read.

import { execFileSync } from "node:child_process";
import { readFileSync, realpathSync } from "node:fs";
import path from "node:path";

const gccLicense = "GPL-3.0-or-later WITH GCC-exception-3.1";
const llvmLicense = "Apache-2.0 WITH LLVM-exception";
const utf8cpp = { name: "utf8cpp", license: "BSL-1.0", description: "Headers, compiled in" };

function run(command, ...words) {
  return execFileSync(command, words, { encoding: "utf8", maxBuffer: 1 << 26 });
}

/// Every file that the compiler read for the build in this folder.
function filesRead(build) {
  const lines = run("ninja", "-C", build, "-t", "deps").split("\n");
  const files = lines.filter((line) => line.startsWith("    "));
  return [...new Set(files.map((line) => realpathSync(path.resolve(build, line.trim()))))];
}

// What Debian's packages put into the program; null if only declarations.
const debian = [
  [/^libutfcpp-dev$/, utf8cpp],
  [/^libstdc\+\+-\d+-dev$/,
    { name: "libstdc++", license: gccLicense, description: "The C++ library, linked statically" }],
  [/^libgcc-\d+-dev$/,
    { name: "libgcc", license: gccLicense, description: "The compiler's library, linked statically" }],
  [/^(libc6-dev|linux-libc-dev)$/, null],
];

function fromDebian(files) {
  const [, system] = /^ID=(\w+)$/m.exec(readFileSync("/etc/os-release", "utf8"));
  const owners = run("dpkg-query", "-S", ...files).trim().split("\n");
  const packages = [...new Set(owners.map((line) => line.split(":")[0]))];
  return packages.flatMap((name) => {
    const [, component] = debian.find(([pattern]) => pattern.test(name)) ?? [];
    if (component === undefined) throw new Error(`unknown origin of headers: package ${name}`);
    if (component === null) return [];
    const version = run("dpkg-query", "-W", "-f", "${Version}\n", name).split("\n")[0];
    return [{ ...component, version, purl: `pkg:deb/${system}/${encodeURIComponent(name)}@${version}` }];
  });
}

/// The toolchain that links for Macs on Linux contains LLVM's libraries as sources.
function fromMacToolchain(files) {
  if (!files.some((file) => file.includes("/lib/libcxx/"))) return [];
  const folder = files[0].replace(/\/lib\/.*/, "");
  const { name, version: release } = JSON.parse(readFileSync(`${folder}/package.json`, "utf8"));
  const [, version] = /clang version (\S+)/.exec(run(`${folder}/zig`, "c++", "--version"));
  return ["libc++", "libc++abi"].map((library) => ({
    name: library,
    version,
    purl: `pkg:generic/${encodeURIComponent(library)}@${version}`,
    license: llvmLicense,
    description: `LLVM's, from the npm package ${name} ${release}, linked statically`,
  }));
}

function fromHomebrew(files) {
  const [, version] = /\/Cellar\/utf8cpp\/([^/]+)\//.exec(files[0]);
  return [{ ...utf8cpp, version, purl: `pkg:generic/utf8cpp@${version}` }];
}

// In this order: the first pattern that fits a path decides. Xcode's files declare what is part of
// the system.
const origins = [
  [/\/@oven\/zig-linux-/, fromMacToolchain],
  [/^\/usr\//, fromDebian],
  [/\/Cellar\/utf8cpp\//, fromHomebrew],
  [/^\/(Applications\/Xcode|Library\/Developer\/CommandLineTools)/, () => []],
];

/// The components of the program that was built in this folder, from sources in `sources`.
export function componentsOf(build, sources) {
  const own = realpathSync(sources) + path.sep;
  const toolchains = /\/node_modules\//;
  const files = filesRead(build).filter((file) => !file.startsWith(own) || toolchains.test(file));
  const found = new Map(origins.map(([, components]) => [components, []]));
  for (const file of files) {
    const [, components] = origins.find(([pattern]) => pattern.test(file)) ?? [];
    if (!components) throw new Error(`unknown origin: ${file}`);
    found.get(components).push(file);
  }
  return [...found].flatMap(([components, ofIt]) => (ofIt.length > 0 ? components(ofIt) : []));
}
