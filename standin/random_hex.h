#pragma once

#include <cstddef>
#include <string>

namespace standin {

/// Unguessable text of that many random bytes, two lower-case hexadecimal digits each.
std::string randomHex(std::size_t bytes);

}  // namespace standin
