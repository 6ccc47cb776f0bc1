// drive_status: which drives there are and what may be done with them.
#include <chrono>

#include "standin/tools.h"
#include "standin/walk.h"

using nlohmann::json;

namespace standin {
namespace {

using Clock = std::chrono::steady_clock;

// The same question serves to find out whether the application is there at all, so it must be
// answered soon however much the drives hold: counting then stops early, and says so.
constexpr auto longestCount = std::chrono::milliseconds(500);

json statusOf(const Drive& drive, Clock::time_point deadline) {
  std::uint64_t files = 0;
  std::uint64_t bytes = 0;
  bool complete = true;
  walk(drive, [&](const Entry& entry) {
    if (entry.facts.kind == FileKind::File) {
      ++files;
      bytes += entry.facts.bytes;
    }
    complete = Clock::now() < deadline;
    return complete;
  });
  const auto root = factsOf(drive.root());
  return {{"name", drive.name()},
          {"connected", true},
          {"healthy", root && root->kind == FileKind::Folder},
          {"files_on_this_mac", files},
          {"bytes_on_this_mac", bytes},
          {"counted_completely", complete},
          {"agent_may_read", true},
          {"agent_may_write", drive.writable()}};
}

}  // namespace

Outcome<json> driveStatus(Drives& drives, const Arguments& /*call*/) {
  const Clock::time_point deadline = Clock::now() + longestCount;
  json list = json::array();
  for (const auto& drive : drives.all()) list.push_back(statusOf(*drive, deadline));
  return json{{"drives", std::move(list)}};
}

}  // namespace standin
