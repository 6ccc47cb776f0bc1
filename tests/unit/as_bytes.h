#pragma once

#include <string_view>

#include "common/bytes.h"

/// The text as the request of an exchange.
inline common::Bytes asBytes(std::string_view text) {
  common::Bytes bytes;
  bytes.append(text);
  return bytes;
}
