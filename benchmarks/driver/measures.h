#pragma once

#include <functional>
#include <string>
#include <vector>

#include "benchmarks/driver/call_meter.h"

/// A row of a table: what is measured, in the same way for every competitor.
struct Measure {
  std::string name;
  double Cost::* value;  // what is shown of the costs
  /// Runs a server. Throws when it writes something wrong.
  std::function<Cost(const Competitor&)> run;
  int runs = 1;                            // in each round
  int megabytes = 0;                       // of the message, if time and memory are shown per byte
  std::vector<std::vector<Cost>> costs{};  // of each competitor, as they were measured
};

/// All measures, in the order in which they are shown. The application must outlive them.
std::vector<Measure> allMeasures(Application& application);
