#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace bridge {

/// How to reach the desktop application, as it publishes it in its endpoint file.
struct Endpoint {
  std::int64_t version;  ///< sent back to the application unchanged
  std::int64_t port;     ///< on the IPv4 loopback address; checked when a connection is made
  std::string token;     ///< sent in every request and nowhere else

  /// Reads the user's endpoint file on each call. None unless it is a file of at most 16 MiB
  /// that holds a JSON object with the integers "version" and "port" and the string "token".
  static std::optional<Endpoint> load();
};

}  // namespace bridge
