#include "benchmarks/driver/table.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace {

using Row = std::vector<std::string>;

std::string number(double value, const char* unit) {
  char text[64];
  const int decimals = value < 10 ? 2 : value < 100 ? 1 : 0;
  std::snprintf(text, sizeof text, "%.*f%s", decimals, value, unit);
  return text;
}

std::string format(double value, Unit unit) {
  if (value == 0) return "-";
  if (unit == Unit::time) {
    return value < 1e6 ? number(value / 1e3, " µs") : number(value / 1e6, " ms");
  }
  return value < 1048576 ? number(value / 1024, " KiB") : number(value / 1048576, " MiB");
}

// Bytes and letters are not the same; a cell is as wide as its letters.
std::size_t width(const std::string& cell) {
  return static_cast<std::size_t>(
      std::ranges::count_if(cell, [](char byte) { return (byte & 0xC0) != 0x80; }));
}

std::string layOut(const std::vector<Row>& rows) {
  std::vector<std::size_t> widths(rows.front().size());
  for (const Row& row : rows) {
    for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], width(row[i]));
  }
  std::string table;
  for (std::size_t line = 0; line < rows.size(); ++line) {
    for (std::size_t i = 0; i < widths.size(); ++i) {
      const std::string& cell = rows[line][i];
      const std::string padding(widths[i] - width(cell), ' ');
      table.append("| ").append(i == 0 ? cell + padding : padding + cell).append(" ");
    }
    table += "|\n";
    if (line > 0) continue;
    for (std::size_t i = 0; i < widths.size(); ++i) {
      const std::string dashes(widths[i] + 1, '-');
      table += i == 0 ? '|' + dashes + '-' : '|' + dashes + ':';
    }
    table += "|\n";
  }
  return table;
}

}  // namespace

std::string measureTable(const std::vector<Contestant>& contestants,
                         const std::vector<Measure>& measures) {
  const auto floor = std::ranges::find_if(contestants, &Contestant::isFloor);
  std::vector<Row> rows{{"median"}};
  for (const Contestant& contestant : contestants) rows[0].push_back(contestant.name);
  for (const Measure& measure : measures) {
    Row row{measure.what};
    for (std::size_t i = 0; i < contestants.size(); ++i) {
      std::string cell = format(measure.values[i], measure.unit);
      if (floor != contestants.end() && !contestants[i].isFloor() && measure.values[i] != 0) {
        const auto yardstick = static_cast<std::size_t>(floor - contestants.begin());
        cell += " (" + number(measure.values[i] / measure.values[yardstick], " x)");
      }
      row.push_back(std::move(cell));
    }
    rows.push_back(std::move(row));
  }
  return layOut(rows);
}

std::string growthTable(const std::vector<Contestant>& contestants,
                        const std::vector<Growth>& growths) {
  std::vector<Row> rows{{"per byte"}};
  for (const Contestant& contestant : contestants) rows[0].push_back(contestant.name);
  for (const Growth& growth : growths) {
    for (const GrowthPoint& point : growth.points) {
      Row row{std::to_string(std::lround(point.bytes / 1e6)) + " MB " + growth.what};
      for (std::size_t i = 0; i < contestants.size(); ++i) {
        row.push_back(number(point.nanosecondsPerByte[i], " ns, ") +
                      number(point.memoryPerByte[i], " B"));
      }
      rows.push_back(std::move(row));
    }
  }
  return layOut(rows);
}
