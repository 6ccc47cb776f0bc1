#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "json/layout.h"
#include "json/reader.h"

/// What is made of a message when it is read and laid out again; none if it can't be read.
inline std::optional<std::string> compact(std::string_view message) {
  const auto document = json::read(message);
  if (!document) return std::nullopt;
  json::Text text;
  json::appendCompact(text, document->root());
  return std::string(text.view());
}

/// The same, as a string literal that holds it as pretty text.
inline std::optional<std::string> prettyQuoted(std::string_view message) {
  const auto document = json::read(message);
  if (!document) return std::nullopt;
  json::Text text;
  json::appendPrettyQuoted(text, document->root());
  return std::string(text.view());
}

/// These characters as a string literal.
inline std::string literalOf(std::string_view characters) {
  json::Text text;
  json::appendQuoted(text, characters);
  return std::string(text.view());
}
