#pragma once

#include <algorithm>
#include <string_view>

#include "bridge/exchange.h"

/// A reply of the application that consists of these bytes.
inline bridge::Reply replyOf(std::string_view bytes) {
  bridge::Reply reply;
  std::ranges::copy(bytes, reply.room(bytes.size()));
  reply.received(bytes.size());
  return reply;
}

/// The outcome of an exchange with this reply.
inline bridge::Outcome outcomeWith(std::string_view reply) {
  return {.ended = true, .reply = replyOf(reply)};
}
