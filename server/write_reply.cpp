#include <poll.h>
#include <unistd.h>

#include <cerrno>

#include "server/server.h"

namespace server {
namespace {

bool mayBeTriedAgain(int error) {
  return error == EINTR || error == EAGAIN || error == EWOULDBLOCK;
}

/// Some hosts hand over pipes that refuse to block.
void waitUntilWritable(int descriptor) {
  pollfd wait{.fd = descriptor, .events = POLLOUT, .revents = 0};
  poll(&wait, 1, -1);
}

/// False if the other end is gone: then nobody is left to be answered.
bool writeAll(int descriptor, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t written = write(descriptor, bytes.data(), bytes.size());
    if (written >= 0) {
      bytes.remove_prefix(static_cast<std::size_t>(written));
    } else if (!mayBeTriedAgain(errno)) {
      return false;
    } else if (errno != EINTR) {
      waitUntilWritable(descriptor);
    }
  }
  return true;
}

}  // namespace

void writeReply(std::string_view reply) {
  if (writeAll(STDOUT_FILENO, reply)) writeAll(STDOUT_FILENO, "\n");
}

}  // namespace server
