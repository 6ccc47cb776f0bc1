#include "server/standard_streams.h"

#include <fcntl.h>
#include <unistd.h>

namespace server {

void occupyStandardStreams() {
  for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
    // The lowest free number is the one that is given out.
    if (fcntl(stream, F_GETFD) == -1) open("/dev/null", O_RDWR);
  }
}

}  // namespace server
