#include <unistd.h>

#include <cerrno>
#include <cstddef>

#include "common/one_call.h"
#include "server/descriptor_wait.h"
#include "server/server.h"

namespace server {
namespace {

enum class Written : unsigned char { all, some, nothing };

/// Writes everything, also to a non-blocking pipe, unless a write fails.
Written write(std::string_view bytes) {
  std::size_t written = 0;
  while (written < bytes.size()) {
    const std::string_view piece = common::forOneCall(bytes.substr(written));
    const ssize_t count = ::write(STDOUT_FILENO, piece.data(), piece.size());
    if (count >= 0) {
      written += static_cast<std::size_t>(count);
    } else if (errno == EAGAIN) {
      wait(STDOUT_FILENO, Until::writable);
    } else if (errno != EINTR) {
      return written > 0 ? Written::some : Written::nothing;
    }
  }
  return Written::all;
}

/// The state of the output after the last reply.
enum class Line : unsigned char {
  ended,         ///< the next reply starts a line
  lacksItsFeed,  ///< the last reply is whole, but its line feed is missing
  cutOff         ///< part of a reply was written: nothing after it could be understood
};
Line line = Line::ended;

void endLine() {
  line = write("\n") == Written::all ? Line::ended : Line::lacksItsFeed;
}

}  // namespace

void writeReply(std::string_view reply) {
  if (line == Line::lacksItsFeed) endLine();
  if (line != Line::ended) return;
  const Written written = write(reply);
  if (written == Written::all) endLine();
  if (written == Written::some) line = Line::cutOff;
}

}  // namespace server
