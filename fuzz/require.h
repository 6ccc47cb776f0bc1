#pragma once

#include <cstdlib>
#include <iostream>
#include <string_view>

/// Aborts if the condition is false, so that the fuzzer keeps the input. Prints the requirement and
/// the details.
inline void require(bool condition, std::string_view requirement, std::string_view details = "") {
  if (condition) return;
  std::cerr << "\nREQUIRED: " << requirement << '\n' << details << '\n';
  std::abort();
}
