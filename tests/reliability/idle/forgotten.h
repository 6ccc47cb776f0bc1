#pragma once

#include <chrono>
#include <cstddef>
#include <string>

/// Starts so many servers, lets each make one call, and watches them wait. Prints what it measures.
/// False if one of them has too much memory of its own or wakes up.
bool forgottenServersCostNothing(const std::string& server, std::size_t count,
                                 std::chrono::seconds time);
