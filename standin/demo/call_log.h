#pragma once

#include <iosfwd>
#include <mutex>
#include <string_view>

#include "standin/demo/terminal.h"

namespace demo {

/// Prints each call and how it ended, for a person who watches the stand-in. Any number of threads
/// may use it.
class CallLog {
 public:
  CallLog(std::ostream& out, const Terminal& terminal) : out_(out), terminal_(terminal) {}

  /// Takes a request and its reply. Before each call the server sends drive_status as a probe, to
  /// find out whether the application is running. A call of that tool looks the same. So a
  /// drive_status counts as a probe, which is not printed, unless it follows a probe.
  void add(std::string_view request, std::string_view reply);

 private:
  void print(std::string_view indent, std::string_view text);

  std::ostream& out_;
  Terminal terminal_;
  std::mutex mutex_;
  bool probed_ = false;
};

}  // namespace demo
