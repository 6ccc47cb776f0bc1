#pragma once

namespace server {

enum class Until : unsigned char { readable, writable };

/// Waits until reading from or writing to a descriptor makes progress or fails. For the standard
/// streams: the number must be below FD_SETSIZE.
void wait(int descriptor, Until until);

}  // namespace server
