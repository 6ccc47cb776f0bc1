#pragma once

#include <string_view>

#include "common/bytes.h"
#include "json/value.h"

namespace json {

// Every function writes strings in the same way: `/` as `\/`, control characters as escapes,
// everything else outside ASCII as UTF-8, an unpaired surrogate as an escape. Numbers are copied
// unchanged. Of members with the same name only the last is written.

/// Appends a value as JSON text without white space. Members keep their order.
void appendCompact(common::Bytes& out, Value value);

/// Appends a string literal whose content is the value as pretty-printed JSON text: two spaces a
/// level, a space on each side of the colon, one member or element a line, members sorted by the
/// bytes of their names. Pretty-printing and quoting are one pass.
void appendPrettyQuoted(common::Bytes& out, Value value);

/// Appends text as a JSON string literal. `text` is UTF-8 in which unpaired surrogates are encoded
/// as three bytes, as Value::string() returns it.
void appendQuoted(common::Bytes& out, std::string_view text);

}  // namespace json
