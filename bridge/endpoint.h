#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace bridge {

/// Where and how to reach the desktop application, as it publishes it in its endpoint file.
struct Endpoint {
  std::int64_t version;  ///< passed back to the application as it is
  std::int64_t port;     ///< on the IPv4 loopback address; any integer until a connection is made
  std::string token;     ///< what every request must carry; never shown to anyone else

  /// Reads the endpoint file of the user, afresh at every call. None if it is missing, can't
  /// be read, or is anything but an object with the integers "version" and "port" and the
  /// string "token", further members aside.
  static std::optional<Endpoint> load();
};

}  // namespace bridge
