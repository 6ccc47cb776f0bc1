#pragma once

#include <algorithm>
#include <string_view>

#include "bridge/exchange.h"

/// A reply of the application that came in as these bytes, at once.
inline bridge::Reply replyOf(std::string_view bytes) {
  bridge::Reply reply;
  std::ranges::copy(bytes, reply.room(bytes.size()));
  reply.received(bytes.size());
  return reply;
}

/// The outcome of an exchange that brought these bytes.
inline bridge::Outcome answered(std::string_view bytes) {
  return {.ended = true, .reply = replyOf(bytes)};
}
