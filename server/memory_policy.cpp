#include "server/memory_policy.h"

#include <cstdlib>  // defines __GLIBC__ where that is the C library

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace server {

void keepRoomForBigMessages() {
#ifdef __GLIBC__
  constexpr int mebibyte = 1 << 20;
  mallopt(M_MMAP_THRESHOLD, 32 * mebibyte);
  mallopt(M_TRIM_THRESHOLD, 32 * mebibyte);
#endif
  // Other allocators, macOS's among them, keep big blocks by themselves.
}

}  // namespace server
