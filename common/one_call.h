#pragma once

#include <cstddef>
#include <string_view>

namespace common {

/// The beginning of `bytes` that one call of write() or send() may take. macOS refuses more than
/// INT_MAX bytes.
inline std::string_view forOneCall(std::string_view bytes) {
  constexpr std::size_t most = std::size_t{1} << 30U;
  return bytes.substr(0, most);
}

}  // namespace common
