#pragma once

#include <string_view>

#include "common/bytes.h"

/// The text as bytes that an exchange can send.
inline common::Bytes asBytes(std::string_view text) {
  common::Bytes bytes;
  bytes.append(text);
  return bytes;
}
