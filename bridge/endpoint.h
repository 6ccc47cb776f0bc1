#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace bridge {

/// How to reach the desktop application, as it publishes it in its endpoint file.
struct Endpoint {
  std::int64_t version;  ///< sent back to the application unchanged
  std::int64_t port;     ///< on the IPv4 loopback address; checked when a connection is made
  std::string token;     ///< part of every request, shown to nobody else

  /// Reads the user's endpoint file, anew on each call. None unless it is a file of at most 16 MiB
  /// that holds a JSON object with the integers "version" and "port" and the string "token".
  static std::optional<Endpoint> load();
};

}  // namespace bridge
