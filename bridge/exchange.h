#pragma once

#include <chrono>
#include <cstdint>
#include <optional>

#include "bridge/reply.h"
#include "json/text.h"

namespace bridge {

/// What a caller knows of its exchange when it stops waiting.
struct Outcome {
  bool ended = false;          ///< false: nothing was heard within the time limit
  std::optional<Reply> reply;  ///< none if the exchange ended without reply bytes
};

/// Sends one request to 127.0.0.1:`port` and waits up to `limit` for the reply; what has come
/// of it by then is delivered as it is. An exchange that is connected but not answered by then is
/// left open: it closes when the late reply, or the connection's end, comes. Blocks; to be called
/// from the main thread only.
///
/// A port outside 0 to 65535 ends the process at once, by design.
Outcome exchange(std::int64_t port, json::Text request, std::chrono::seconds limit);

}  // namespace bridge
