#include "server/descriptor_wait.h"

#include <sys/select.h>

namespace server {

// select() rather than poll(), which on macOS does not work on terminals.
void wait(int descriptor, Until until) {
  fd_set set;
  FD_ZERO(&set);
  FD_SET(descriptor, &set);
  fd_set* const toRead = until == Until::readable ? &set : nullptr;
  fd_set* const toWrite = until == Until::writable ? &set : nullptr;
  select(descriptor + 1, toRead, toWrite, nullptr, nullptr);
}

}  // namespace server
