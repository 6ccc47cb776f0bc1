// Measures what servers cost that wait: for a host that has forgotten them, or for an application
// that is dead.
//
//   quillmark_idle SERVER forgotten SERVERS SECONDS
//   quillmark_idle SERVER dead-app SERVERS

#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/reliability/idle/dead_app.h"
#include "tests/reliability/idle/forgotten.h"

namespace {

bool holds(const std::vector<std::string>& words) {
  if (words.size() == 4 && words[1] == "forgotten") {
    const std::chrono::seconds time(std::stol(words[3]));
    return forgottenServersCostNothing(words[0], std::stoul(words[2]), time);
  }
  if (words.size() == 3 && words[1] == "dead-app") {
    return deadApplicationCostsLittle(words[0], std::stoul(words[2]));
  }
  throw std::runtime_error("SERVER forgotten SERVERS SECONDS, or SERVER dead-app SERVERS?");
}

}  // namespace

int main(int count, char** words) {
  std::signal(SIGPIPE, SIG_IGN);
  try {
    return holds({words + 1, words + count}) ? EXIT_SUCCESS : EXIT_FAILURE;
  } catch (const std::exception& failed) {
    std::fprintf(stderr, "quillmark_idle: %s\n", failed.what());
    return EXIT_FAILURE;
  }
}
