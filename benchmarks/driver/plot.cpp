#include "benchmarks/driver/plot.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <string_view>

namespace {

constexpr double panelWidth = 330, panelHeight = 200;
constexpr double leftMargin = 64, topMargin = 70, gapAcross = 70, gapDown = 76;
constexpr std::array<std::string_view, 6> colours{"#0b7285", "#e8590c", "#5f3dc4",
                                                  "#2b8a3e", "#c2255c", "#495057"};

using Values = std::vector<double> GrowthPoint::*;

class Point {
 public:
  Point(double across, double down) : x(across), y(down) {}
  double x, y;
};

std::string_view colourOf(std::size_t contestant) {
  return colours[contestant % colours.size()];
}

// A step of a path: M moves to the point, L draws a line to it.
std::string step(char kind, Point to) {
  char written[48];
  std::snprintf(written, sizeof written, "%c%.1f,%.1f ", kind, to.x, to.y);
  return written;
}

std::string shortNumber(double value) {
  char written[32];
  std::snprintf(written, sizeof written, "%g", value);
  return written;
}

std::string text(Point at, std::string_view anchor, std::string_view words) {
  char place[64];
  std::snprintf(place, sizeof place, "<text x='%.1f' y='%.1f' text-anchor='", at.x, at.y);
  return std::string(place).append(anchor).append("'>").append(words).append("</text>\n");
}

std::string stroke(std::string_view path, std::string_view colour, std::string_view width) {
  return std::string("<path d='")
      .append(path)
      .append("' fill='none' stroke-linecap='round' stroke='")
      .append(colour)
      .append("' stroke-width='")
      .append(width)
      .append("'/>\n");
}

// A step of 1, 2 or 5 times a power of ten that divides the range into at most five.
double niceStep(double range) {
  const double power = std::pow(10, std::floor(std::log10(range / 5)));
  for (const double factor : {1, 2, 5}) {
    if (range / (factor * power) <= 5) return factor * power;
  }
  return 10 * power;
}

class Panel {
 public:
  Panel(Point corner, const Growth& growth, Values values)
      : corner_(corner), growth_(growth), values_(values) {
    double highest = 0;
    for (const GrowthPoint& point : growth.points) {
      highest = std::max(highest, std::ranges::max(point.*values));
    }
    step_ = niceStep(highest);
    steps_ = static_cast<int>(std::ceil(highest / step_));
  }

  std::string draw(const std::string& title, std::size_t contestants) const {
    std::string svg = text(Point(corner_.x, corner_.y - 10), "start", title);
    for (int i = 0; i <= steps_; ++i) {
      const double y = height(i * step_);
      svg += stroke(step('M', Point(corner_.x, y)) + step('L', Point(corner_.x + panelWidth, y)),
                    i == 0 ? "#868e96" : "#dee2e6", "1");
      svg += text(Point(corner_.x - 8, y + 4), "end", shortNumber(i * step_));
    }
    for (const GrowthPoint& point : growth_.points) {
      svg += text(Point(across(point.bytes), corner_.y + panelHeight + 18), "middle",
                  shortNumber(point.bytes / 1e6) + " MB");
    }
    for (std::size_t i = 0; i < contestants; ++i) svg += drawContestant(i);
    return svg;
  }

 private:
  // Sizes double or quadruple from point to point, so they stand on a logarithmic scale.
  double across(double bytes) const {
    const double first = growth_.points.front().bytes;
    const double span = std::log(growth_.points.back().bytes / first);
    return corner_.x + 24 + (panelWidth - 48) * std::log(bytes / first) / span;
  }
  double height(double value) const {
    return corner_.y + panelHeight * (1 - value / (steps_ * step_));
  }

  std::string drawContestant(std::size_t index) const {
    std::string path;
    std::string dots;
    for (const GrowthPoint& point : growth_.points) {
      const Point at(across(point.bytes), height((point.*values_)[index]));
      path += step(path.empty() ? 'M' : 'L', at);
      dots += step('M', at) + step('L', at);
    }
    return stroke(path, colourOf(index), "2") + stroke(dots, colourOf(index), "7");
  }

  Point corner_;
  const Growth& growth_;
  Values values_;
  double step_ = 1;
  int steps_ = 1;
};

std::string legend(const std::vector<Contestant>& contestants) {
  std::string svg;
  double x = leftMargin;
  for (std::size_t i = 0; i < contestants.size(); ++i) {
    svg += stroke(step('M', Point(x, 24)) + step('L', Point(x + 22, 24)), colourOf(i), "3");
    svg += text(Point(x + 28, 28), "start", contestants[i].name);
    x += 60 + 8 * static_cast<double>(contestants[i].name.size());
  }
  return svg;
}

}  // namespace

std::string growthPlot(const std::vector<Contestant>& contestants,
                       const std::vector<Growth>& growths) {
  const auto columns = static_cast<double>(growths.size());
  const double width = leftMargin + columns * (panelWidth + gapAcross);
  const double height = topMargin + 2 * (panelHeight + gapDown);
  std::string svg = "<svg xmlns='http://www.w3.org/2000/svg' viewBox='0 0 " + shortNumber(width) +
                    ' ' + shortNumber(height) + "' font-family='sans-serif' font-size='13'>\n" +
                    "<rect width='100%' height='100%' fill='white'/>\n" + legend(contestants);
  Point corner(leftMargin, topMargin);
  for (const Growth& growth : growths) {
    const Point below(corner.x, corner.y + panelHeight + gapDown);
    svg += Panel(corner, growth, &GrowthPoint::nanosecondsPerByte)
               .draw("ns per byte of " + growth.what, contestants.size());
    svg += Panel(below, growth, &GrowthPoint::memoryPerByte)
               .draw("peak memory per byte of " + growth.what, contestants.size());
    corner.x += panelWidth + gapAcross;
  }
  return svg + "</svg>\n";
}
