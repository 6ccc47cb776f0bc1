// Prints the bill of materials of a package, in CycloneDX's format, and checks it against that
// format's schema. SOURCE_DATE_EPOCH is its date.
//
//   node bill.mjs PACKAGE VERSION SOURCES [BUILD]
//
// BUILD is the folder where the program in the package was built with ninja; a package without it
// contains the project's own files alone.

import { createHash } from "node:crypto";
import { readFileSync } from "node:fs";
import { createRequire } from "node:module";
import path from "node:path";
import { Enums, Models, Serialize, Spec, Validation } from "@cyclonedx/cyclonedx-library";
import { PackageURL } from "packageurl-js";
import { componentsOf } from "./origins.mjs";

const [file, version, sources, build] = process.argv.slice(2);

function checksum() {
  return createHash("sha256").update(readFileSync(file)).digest("hex");
}

function subject() {
  const kind = build ? Enums.ComponentType.Application : Enums.ComponentType.File;
  return new Models.Component(kind, "quillmark-mcp", {
    version,
    bomRef: "quillmark-mcp",
    description: path.basename(file),
    hashes: new Models.HashDictionary([[Enums.HashAlgorithm["SHA-256"], checksum()]]),
  });
}

function contained({ name, version, license, purl, description }) {
  return new Models.Component(Enums.ComponentType.Library, name, {
    version,
    bomRef: `${name}@${version}`,
    description,
    purl: PackageURL.fromString(purl),
    licenses: new Models.LicenseRepository([new Models.LicenseExpression(license)]),
  });
}

function bill() {
  const made = new Models.Bom();
  const library = createRequire(import.meta.url)("@cyclonedx/cyclonedx-library/package.json");
  made.metadata.timestamp = new Date(Number(process.env.SOURCE_DATE_EPOCH) * 1000);
  made.metadata.tools.tools.add(new Models.Tool({ name: library.name, version: library.version }));
  made.metadata.component = subject();
  for (const component of build ? componentsOf(build, sources).map(contained) : []) {
    made.components.add(component);
    made.metadata.component.dependencies.add(component.bomRef);
  }
  return made;
}

const format = new Serialize.JSON.Normalize.Factory(Spec.Spec1dot6);
const text = new Serialize.JsonSerializer(format).serialize(bill(), { sortLists: true, space: 2 });
const fault = await new Validation.JsonStrictValidator(Spec.Version.v1dot6).validate(text);
if (fault) throw new Error(`${path.basename(file)}: ${JSON.stringify(fault)}`);
console.log(text);
