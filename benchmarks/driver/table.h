#pragma once

#include <vector>

#include "benchmarks/driver/measures.h"

/// Prints a Markdown table with a row for each measure and a column for each competitor: the
/// medians of the costs, and their ratio to the first competitor's unless they are per byte.
void printTable(const std::vector<Competitor>& competitors, const std::vector<Measure>& measures);
