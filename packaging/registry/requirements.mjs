// What the MCP registry documents of a server.json that offers one bundle. This is a reading of
// those documents and no substitute for the registry's JSON schema, which can't be had offline.

const isText = (value, longest) =>
  typeof value === "string" && value.length >= 1 && value.length <= longest;

const requirements = [
  ["$schema names a dated revision of the registry's schema",
    (server) => /^https:\/\/\S+\/schemas\/\d{4}-\d\d-\d\d\/server\.schema\.json$/.test(server.$schema)],
  ["name is a reversed domain, one slash and a name, of 3 to 200 characters",
    ({ name }) => isText(name, 200) && /^[a-zA-Z0-9.-]+\/[a-zA-Z0-9._-]+$/.test(name)],
  ["title has 1 to 100 characters", ({ title }) => isText(title, 100)],
  ["description has 1 to 100 characters", ({ description }) => isText(description, 100)],
  ["version is one version, no range and not latest",
    ({ version }) => isText(version, 255) && /^\d+\.\d+\.\d+([-+][\w.+-]+)?$/.test(version)],
  ["there is nothing but these members and packages",
    (server) => onlyHas(server, ["$schema", "name", "title", "description", "version", "packages"])],
  ["packages is a list of one", ({ packages }) => Array.isArray(packages) && packages.length === 1],
];

// The address and the checksum say which bundle it is; the registry wants no version beside them.
const packageRequirements = [
  ["registryType is mcpb", ({ registryType }) => registryType === "mcpb"],
  ["identifier is an https address with mcp in it that ends in .mcpb",
    ({ identifier }) => /^https:\/\/\S*mcp\S*\.mcpb$/.test(identifier)],
  ["fileSha256 is 64 lower-case hexadecimal digits",
    ({ fileSha256 }) => /^[a-f0-9]{64}$/.test(fileSha256)],
  ["transport is stdio and nothing else",
    ({ transport }) => transport?.type === "stdio" && onlyHas(transport, ["type"])],
  ["there is nothing but these members",
    (offer) => onlyHas(offer, ["registryType", "identifier", "fileSha256", "transport"])],
];

function onlyHas(object, names) {
  return Object.keys(object).every((name) => names.includes(name));
}

const broken = (all, object) => all.filter(([, holds]) => !holds(object)).map(([what]) => what);

/// The requirements that this object does not meet, in words; none when it is fine.
export function unmet(server) {
  const own = broken(requirements, server);
  if (!Array.isArray(server.packages)) return own;
  return own.concat(server.packages.flatMap((offer, index) =>
    broken(packageRequirements, offer).map((what) => `packages[${index}]: ${what}`)));
}
