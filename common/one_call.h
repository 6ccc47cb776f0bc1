#pragma once

#include <cstddef>
#include <string_view>

namespace common {

/// As many of the first bytes as one call of write() or send() accepts: macOS refuses more than
/// INT_MAX.
inline std::string_view forOneCall(std::string_view bytes) {
  constexpr std::size_t most = std::size_t{1} << 30U;
  return bytes.substr(0, most);
}

}  // namespace common
