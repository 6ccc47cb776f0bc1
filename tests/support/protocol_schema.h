#pragma once

#include <string>
#include <string_view>

/// Why a line is not a reply by the protocol's published schema, revision 2024-11-05; empty if it
/// is one. The id is not checked: a host can send any, and gets it back.
std::string schemaViolation(std::string_view line);
