#pragma once

#include <chrono>
#include <cstdint>
#include <optional>

#include "bridge/reply.h"
#include "common/bytes.h"

namespace bridge {

/// What the caller of an exchange knows when it stops waiting.
struct Outcome {
  bool ended = false;          ///< false: nothing was received within the time limit
  std::optional<Reply> reply;  ///< none if the exchange ended without reply bytes
};

/// Sends one request to 127.0.0.1:`port` and waits up to `limit` for the reply.
///
/// At the limit it delivers whatever has been received. If nothing has, the outcome is "not ended":
/// a request that never connected is dropped, and a connection without a reply stays open. A
/// background thread then closes it when the late reply or the connection's end arrives.
///
/// A port outside 0 to 65535 ends the process at once, by design. Blocks the calling thread.
Outcome exchange(std::int64_t port, common::Bytes request, std::chrono::seconds limit);

}  // namespace bridge
