#pragma once

#include <string_view>

#include "json/reader.h"

namespace json {

/// The state of a reader after it has read the whole text.
inline Reader::State state(std::string_view text) {
  Reader reader;
  return reader.read(text);
}

}  // namespace json
