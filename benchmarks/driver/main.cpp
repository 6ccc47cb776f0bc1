// Measures servers side by side and prints the medians as a Markdown table.
//
//   quillmark-benchmark ROUNDS WORDS NAME=COMMAND...
//
// In each round, runs the measures whose names contain WORDS, and compares the servers with the
// first. A command is split at spaces.

#include <csignal>
#include <cstdlib>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "benchmarks/driver/measures.h"
#include "benchmarks/driver/placement.h"
#include "benchmarks/driver/table.h"
#include "tests/support/endpoint_file.h"
#include "tests/support/temporary_home.h"

namespace {

Competitor parseCompetitor(const std::string& text) {
  std::istringstream words(text);
  Competitor competitor;
  std::getline(words, competitor.name, '=');
  for (std::string word; words >> word;) competitor.command.push_back(word);
  if (competitor.command.empty()) throw std::invalid_argument("not NAME=COMMAND: " + text);
  return competitor;
}

Cost runServer(const Measure& measure, const Competitor& competitor) try {
  return measure.run(competitor);
} catch (const std::exception& error) {
  throw std::runtime_error(competitor.name + ", " + measure.name + ": " + error.what());
}

// The servers take turns with each measure, so that whatever slows the machine for a while slows
// all of them.
void runRound(std::vector<Measure>& measures, const std::vector<Competitor>& competitors) {
  for (Measure& measure : measures) {
    measure.costs.resize(competitors.size());
    for (int run = 0; run < measure.runs; ++run) {
      for (std::size_t i = 0; i < competitors.size(); ++i) {
        measure.costs[i].push_back(runServer(measure, competitors[i]));
      }
    }
  }
}

void run(const std::vector<std::string>& words) {
  if (words.size() < 3) throw std::invalid_argument("usage: ROUNDS WORDS NAME=COMMAND...");
  const int rounds = std::stoi(words[0]);
  std::vector<Competitor> competitors;
  for (std::size_t i = 2; i < words.size(); ++i) competitors.push_back(parseCompetitor(words[i]));

  const TemporaryHome home;
  Application application;
  ::setenv("HOME", home.home().c_str(), 1);
  EndpointFile(home).publish(application.port(), appToken);
  separateFrom(application.thread());

  std::vector<Measure> measures = allMeasures(application);
  std::erase_if(measures, [&](const Measure& m) { return !m.name.contains(words[1]); });
  for (int round = 0; round < rounds; ++round) runRound(measures, competitors);
  printTable(competitors, measures);
}

}  // namespace

int main(int count, char** words) {
  // Writing to a server that has ended then fails and is reported. Servers don't inherit a handler.
  std::signal(SIGPIPE, [](int) {});
  try {
    run({words + 1, words + count});
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "quillmark-benchmark: " << error.what() << '\n';
    return 1;
  }
}
