#pragma once

#include <string>
#include <vector>

#include "benchmarks/driver/growth.h"
#include "benchmarks/driver/measures.h"

/// Tables in Markdown, with columns lined up to be read as they stand. A ratio is to the floor's
/// value; where there is no floor there are no ratios.
std::string measureTable(const std::vector<Contestant>& contestants,
                         const std::vector<Measure>& measures);

/// A row for each size: nanoseconds and bytes of memory per byte of the message.
std::string growthTable(const std::vector<Contestant>& contestants,
                        const std::vector<Growth>& growths);
