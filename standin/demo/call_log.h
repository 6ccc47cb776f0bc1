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

  /// Takes a request and its reply. The server sends drive_status before each call, to find out
  /// whether the application is running. Such a probe looks like a call of that tool, so the first
  /// drive_status is not printed, the request after it is, and so on.
  void add(std::string_view request, std::string_view reply);

 private:
  void print(std::string_view indent, std::string_view text);

  std::ostream& out_;
  Terminal terminal_;
  std::mutex mutex_;
  bool probed_ = false;
};

}  // namespace demo
