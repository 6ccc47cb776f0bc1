#pragma once

#include <cstddef>

namespace standin {

/// The longest reply that the server takes; a longer one would reach it cut short.
inline constexpr std::size_t mostReplyBytes = 4194304;

}  // namespace standin
