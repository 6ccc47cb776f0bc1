// quillmark-benchmark: measures servers side by side.
//
//   quillmark-benchmark [OPTION...] NAME=COMMAND...

#include <csignal>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

#include "benchmarks/driver/growth.h"
#include "benchmarks/driver/measures.h"
#include "benchmarks/driver/plot.h"
#include "benchmarks/driver/setting.h"
#include "benchmarks/driver/table.h"

namespace {

constexpr std::string_view usage =
    "usage: quillmark-benchmark [OPTION...] NAME=COMMAND...\n"
    "\n"
    "Drives each server in turn over pipes, against an application of its own, and prints the\n"
    "median of each measure, with its ratio to the contestant named floor if there is one.\n"
    "\n"
    "  --rounds N       samples of the slow measures (20); the quick ones take more\n"
    "  --only WORDS     takes just the measures whose names hold these words\n"
    "  --plot FILE.svg  draws the cost per byte against the size\n"
    "  --check          checks the answers only, and times nothing\n";

struct Options {
  int rounds = 20;
  std::string only;
  bool checkOnly = false;
  std::string plot;
  std::vector<Contestant> contestants;
};

// Throws std::logic_error (of one kind or another) when the words make no sense.
Options parseOptions(const std::vector<std::string>& words) {
  Options options;
  for (std::size_t i = 0; i < words.size(); ++i) {
    if (words[i] == "--rounds") {
      options.rounds = std::stoi(words.at(++i));
    } else if (words[i] == "--only") {
      options.only = words.at(++i);
    } else if (words[i] == "--plot") {
      options.plot = words.at(++i);
    } else if (words[i] == "--check") {
      options.checkOnly = true;
    } else {
      options.contestants.push_back(parseContestant(words[i]));
    }
  }
  if (options.contestants.empty()) throw std::invalid_argument("no contestant is named");
  if (options.rounds < 1) throw std::invalid_argument("--rounds takes a number from 1 up");
  return options;
}

void run(const Options& options) {
  Setting setting(options.contestants, options.rounds);
  if (options.checkOnly) {
    checkAnswers(setting);
    std::cout << "All answers are right.\n";
    return;
  }
  std::cout << measureTable(setting.contestants, takeMeasures(setting, options.only)) << '\n'
            << std::flush;
  if (!options.only.empty()) return;
  const std::vector<Growth> growths = measureGrowth(setting);
  std::cout << growthTable(setting.contestants, growths);
  if (options.plot.empty()) return;
  std::ofstream file(options.plot);
  file << growthPlot(setting.contestants, growths);
  if (!file.flush()) throw std::runtime_error("cannot write " + options.plot);
}

}  // namespace

int main(int count, char** words) {
  std::signal(SIGPIPE, SIG_IGN);  // a contestant that goes away is reported, not fatal
  try {
    run(parseOptions({words + 1, words + count}));
    return 0;
  } catch (const std::logic_error& error) {
    std::cerr << "quillmark-benchmark: " << error.what() << "\n\n" << usage;
    return 2;
  } catch (const std::exception& error) {
    std::cerr << "quillmark-benchmark: " << error.what() << '\n';
    return 1;
  }
}
