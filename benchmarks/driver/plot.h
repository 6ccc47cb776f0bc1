#pragma once

#include <string>
#include <vector>

#include "benchmarks/driver/growth.h"

/// Draws the cost per byte against the size as an SVG picture: time in the upper row, memory in
/// the lower, a panel for each kind of message, a line for each contestant. Level lines mean that
/// the cost grows in proportion to the size.
std::string growthPlot(const std::vector<Contestant>& contestants,
                       const std::vector<Growth>& growths);
