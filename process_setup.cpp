#include "process_setup.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>  // defines __GLIBC__ where that is the C library
#include <exception>

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace {

void openMissingStandardStreams() {
  for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
    // open() returns the lowest free number.
    if (fcntl(stream, F_GETFD) == -1) open("/dev/null", O_RDWR);
  }
}

/// Does nothing with other C libraries, whose allocators have no such settings.
void keepMemoryOfBigMessages() {
#ifdef __GLIBC__
  constexpr int mebibyte = 1 << 20;
  mallopt(M_MMAP_THRESHOLD, 32 * mebibyte);
  mallopt(M_TRIM_THRESHOLD, 32 * mebibyte);
#endif
}

}  // namespace

void setUpProcess() {
  openMissingStandardStreams();
  std::set_terminate(std::abort);
  keepMemoryOfBigMessages();
}
