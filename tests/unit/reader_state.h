#pragma once

#include <string_view>

#include "json/reader.h"

namespace json {

/// What a reader makes of a text that comes in one piece.
inline Reader::State state(std::string_view text) {
  Reader reader;
  return reader.read(text);
}

}  // namespace json
