#pragma once

#include <string_view>

#include "json/text.h"
#include "json/value.h"

namespace json {

/// Appends a value as JSON text on one line, without blanks. Members keep the order they were
/// given in.
void appendCompact(Text& out, Value value);

/// Appends a string literal that holds the value as pretty JSON text: two blanks a level, a
/// blank on each side of the colon, one member or element a line, the members of every object
/// sorted by the bytes of their names. It is written in one go, quoted as it is laid out.
void appendPrettyQuoted(Text& out, Value value);

/// Appends characters as a JSON string literal. They are UTF-8, in which the three bytes of a
/// surrogate stand for the escape of an unpaired one, as in Value::string().
void appendQuoted(Text& out, std::string_view characters);

// All three spell alike: `/` as `\/`, control characters as escapes, everything outside ASCII
// as UTF-8, an unpaired surrogate as the escape that it came as, numbers as they were written.
// Of a name that an object has twice, the last member counts and the others are left out.

}  // namespace json
