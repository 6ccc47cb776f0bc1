#include "benchmarks/driver/contestant.h"

#include <sys/wait.h>

#include <array>
#include <filesystem>
#include <sstream>
#include <stdexcept>

#include "benchmarks/driver/start_child.h"
#include "tests/support/temporary_home.h"

Contestant parseContestant(std::string_view text) {
  const std::size_t equals = text.find('=');
  Contestant contestant{.name = std::string(text.substr(0, equals)), .command = {}};
  if (equals != std::string_view::npos) {
    std::istringstream words{std::string(text.substr(equals + 1))};
    for (std::string word; words >> word;) contestant.command.push_back(word);
  }
  if (contestant.name.empty() || contestant.command.empty()) {
    throw std::invalid_argument("expected NAME=COMMAND, not: " + std::string(text));
  }
  return contestant;
}

double strippedSize(const Contestant& contestant) {
  const TemporaryHome scratch;
  const std::string stripped = scratch.folder() / "stripped";
  const pid_t strip = startChild({"strip", "-o", stripped, contestant.command.front()},
                                 scratch.home(), {.input = 0, .output = 1, .quiet = true});
  int status = 0;
  ::waitpid(strip, &status, 0);
  std::error_code error;
  const std::uintmax_t size = std::filesystem::file_size(stripped, error);
  return error || status != 0 ? 0 : static_cast<double>(size);
}
