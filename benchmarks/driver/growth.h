#pragma once

#include <string>
#include <vector>

#include "benchmarks/driver/setting.h"

/// The cost of a message of one size, for each contestant in the setting's order.
struct GrowthPoint {
  double bytes = 0;
  std::vector<double> nanosecondsPerByte;
  std::vector<double> memoryPerByte;  // peak beyond idle, in bytes
};

/// How the cost of a message grows with its size: the same cost per byte at every size means that
/// it grows in proportion.
struct Growth {
  std::string what;
  std::vector<GrowthPoint> points;
};

/// Replies of 1, 2 and 4 MB, and arguments of 1, 4, 16 and 64 MB. Throws as takeMeasures() does.
std::vector<Growth> measureGrowth(Setting& setting);
