import Ajv from "ajv";
import addFormats from "ajv-formats";

/// How this value breaks that JSON schema, a line each; none if it keeps it.
export function violations(schema, value) {
  // Strict, the library would refuse schemas for words that mean nothing to it, such as example.
  const ajv = new Ajv({ allErrors: true, strict: false });
  addFormats(ajv);
  if (ajv.validate(schema, value)) return [];
  return ajv.errors.map((error) => `${error.instancePath || "/"} ${error.message}`);
}

/// The schema at that address, or why it can't be had. An address that answers, but has no
/// schema, is an error.
export async function schemaAt(address, withinMs = 10000) {
  let response;
  try {
    response = await fetch(address, { signal: AbortSignal.timeout(withinMs) });
  } catch (error) {
    return { unreachable: error.cause?.code ?? error.message };
  }
  if (!response.ok) throw new Error(`${address} answers with status ${response.status}`);
  return { schema: await response.json() };
}
