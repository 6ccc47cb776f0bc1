#include "benchmarks/driver/table.h"

#include <algorithm>
#include <cstdio>

namespace {

double median(const std::vector<Cost>& costs, double Cost::* member) {
  std::vector<double> values(costs.size());
  std::ranges::transform(costs, values.begin(), member);
  std::ranges::sort(values);
  const std::size_t middle = values.size() / 2;
  return values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

std::string number(double value, const char* unit) {
  char text[64];
  const int decimals = value < 10 ? 2 : value < 100 ? 1 : 0;
  std::snprintf(text, sizeof text, "%.*f %s", decimals, value, unit);
  return text;
}

std::string perByteCell(const std::vector<Cost>& costs, double bytes) {
  const double grown = median(costs, &Cost::peakMemory) - median(costs, &Cost::idleMemory);
  return number(median(costs, &Cost::call) / bytes, "ns") + ", " + number(grown / bytes, "B");
}

std::string valueCell(const Measure& measure, double value) {
  const bool isTime = measure.value == &Cost::start || measure.value == &Cost::call;
  if (!isTime) return number(value / (1 << 20), "MiB");
  return value < 1e6 ? number(value / 1e3, "us") : number(value / 1e6, "ms");
}

std::string cell(const Measure& measure, std::size_t column) {
  if (measure.megabytes > 0) return perByteCell(measure.costs[column], 1e6 * measure.megabytes);
  const double value = median(measure.costs[column], measure.value);
  std::string text = valueCell(measure, value);
  if (column == 0) return text;
  const double ratio = value / median(measure.costs.front(), measure.value);
  return text + " (" + number(ratio, "x") + ")";
}

}  // namespace

void printTable(const std::vector<Competitor>& competitors, const std::vector<Measure>& measures) {
  std::printf("| %-44s |", "median");
  for (const Competitor& competitor : competitors) std::printf(" %17s |", competitor.name.c_str());
  std::printf("\n|%s|", std::string(46, '-').c_str());
  for (std::size_t i = 0; i < competitors.size(); ++i) std::printf("------------------:|");
  for (const Measure& measure : measures) {
    std::printf("\n| %-44s |", measure.name.c_str());
    for (std::size_t i = 0; i < competitors.size(); ++i) {
      std::printf(" %17s |", cell(measure, i).c_str());
    }
  }
  std::printf("\n");
}
