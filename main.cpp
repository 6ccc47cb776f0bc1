#include <unistd.h>

#include "process_setup.h"
#include "server/server.h"
#include "server/stdio_loop.h"

int main() {
  setUpProcess();
  const server::HandleDependencies dependencies;
  const auto handle = [&](json::Value request) { server::handle(request, dependencies); };
  server::StdioLoop(STDIN_FILENO, handle).run();
  return 0;
}
