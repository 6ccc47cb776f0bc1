#include <unistd.h>

#include "server/server.h"
#include "server/stdio_loop.h"

int main() {
  const server::Surroundings surroundings;
  server::StdioLoop(STDIN_FILENO, [&](json::Value request) {
    server::handle(request, surroundings);
  }).run();
  return 0;
}
