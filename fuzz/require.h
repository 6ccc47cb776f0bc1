#pragma once

#include <cstdlib>
#include <iostream>
#include <string_view>

/// Ends the process unless something holds that must, so that the fuzzer keeps the input. Says
/// what must hold and shows what was there instead.
inline void require(bool holds, std::string_view what, std::string_view shown = "") {
  if (holds) return;
  std::cerr << "\nMUST HOLD: " << what << '\n' << shown << '\n';
  std::abort();
}
