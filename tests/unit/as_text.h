#pragma once

#include <string_view>

#include "json/text.h"

/// A text of these characters.
inline json::Text asText(std::string_view characters) {
  json::Text text;
  text.append(characters);
  return text;
}
