#pragma once

#include <cstddef>
#include <string>

/// So many servers call an application that accepts connections and never answers, and as many one
/// whose port refuses them. Prints what it measures. False if a call is not answered in time, takes
/// too much of the processor, or launches the application more or less than once.
bool deadApplicationCostsLittle(const std::string& server, std::size_t count);
