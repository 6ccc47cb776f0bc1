// Lets each system call of a server fail, one at a time and then in pairs, and checks from outside
// that nothing comes of it but what may. Needs strace.
//
//   quillmark_faults SERVER short|full [SESSION [CALL]]

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <stdexcept>
#include <string_view>
#include <vector>

#include "tests/reliability/faults/campaign.h"

namespace {

bool holds(const std::vector<std::string_view>& words) {
  if (words.size() < 2) throw std::runtime_error("which server, sample or full?");
  const bool isFull = words[1] == "full";
  Choice choice;
  if (words.size() > 2) choice.session = words[2];
  if (words.size() > 3) choice.call = words[3];
  const Campaign campaign(std::string{words[0]}, choice);
  const bool singles =
      campaign.run("single faults", isFull ? campaign.singles() : campaign.sample());
  if (!choice.call.empty()) return singles;  // pairs are of different calls
  return campaign.run("pairs of faults", campaign.pairs(isFull ? 1000 : 100)) && singles;
}

}  // namespace

int main(int count, char** words) {
  std::signal(SIGPIPE, SIG_IGN);
  try {
    return holds({words + 1, words + count}) ? EXIT_SUCCESS : EXIT_FAILURE;
  } catch (const std::exception& failed) {
    std::fprintf(stderr, "quillmark_faults: %s\n", failed.what());
    return EXIT_FAILURE;
  }
}
