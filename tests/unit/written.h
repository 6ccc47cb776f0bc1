#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "common/bytes.h"
#include "json/reader.h"
#include "json/writer.h"

/// A message read and written as compact text; none if it cannot be read.
inline std::optional<std::string> compact(std::string_view message) {
  const auto document = json::read(message);
  if (!document) return std::nullopt;
  common::Bytes out;
  json::appendCompact(out, document->root());
  return std::string(out.view());
}

/// A message read and written as a string literal that contains its pretty text; none if it cannot
/// be read.
inline std::optional<std::string> prettyQuoted(std::string_view message) {
  const auto document = json::read(message);
  if (!document) return std::nullopt;
  common::Bytes out;
  json::appendPrettyQuoted(out, document->root());
  return std::string(out.view());
}

/// The text as a JSON string literal.
inline std::string stringLiteral(std::string_view text) {
  common::Bytes out;
  json::appendQuoted(out, text);
  return std::string(out.view());
}
