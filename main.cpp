#include <unistd.h>

#include <cstdlib>
#include <exception>

#include "server/memory_policy.h"
#include "server/server.h"
#include "server/standard_streams.h"
#include "server/stdio_loop.h"

int main() {
  server::occupyStandardStreams();
  std::set_terminate(std::abort);  // without a word: nobody reads standard error
  server::keepRoomForBigMessages();

  const server::Surroundings surroundings;
  const auto handle = [&](json::Value request) { server::handle(request, surroundings); };
  server::StdioLoop(STDIN_FILENO, handle).run();
  return 0;
}
