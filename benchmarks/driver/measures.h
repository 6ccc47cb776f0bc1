#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "benchmarks/driver/setting.h"

enum class Unit { time, memory };  // in nanoseconds, and in bytes

/// One thing measured: a value for each contestant, in the setting's order; 0 where there is none.
struct Measure {
  std::string what;
  Unit unit;
  std::vector<double> values;
};

/// Takes the measures whose names hold `words`, all of them if it is empty, in the order in which
/// they are shown. Throws std::runtime_error at the first wrong answer.
std::vector<Measure> takeMeasures(Setting& setting, std::string_view words);

/// Makes every kind of call once with every contestant and checks the answers, without timing
/// anything. Throws std::runtime_error at the first wrong one.
void checkAnswers(Setting& setting);
