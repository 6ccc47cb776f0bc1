#pragma once

#include <cstddef>
#include <set>
#include <string>
#include <vector>

#include "tests/reliability/faults/fault.h"

/// Every fault that the table gives for the calls in a trace of a whole session, strace -f -y. The
/// loader's calls before main() are left out, and those of background threads. Throws
/// std::runtime_error for a call that is not in the table.
std::vector<Fault> faultsOf(const std::string& wholeTrace);

/// The same for a trace of a background thread alone.
std::vector<Fault> faultsOfBackgroundThread(const std::string& trace);

/// What a trace of the writes and of the injected calls says about the faults.
struct Injected {
  std::size_t count = 0;
  /// Which of the session's requests, from 0, were being handled.
  std::set<std::size_t> during{};
};

Injected injectedIn(const std::string& trace);
