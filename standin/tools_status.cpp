// drive_status: which drives there are and what may be done with them.
#include <chrono>

#include "standin/tools.h"
#include "standin/walk.h"

using nlohmann::json;

namespace standin {
namespace {

using Clock = std::chrono::steady_clock;

json statusOf(const Drive& drive, Clock::time_point deadline) {
  std::uint64_t files = 0;
  std::uint64_t bytes = 0;
  bool complete = true;
  walk(drive, [&](const Entry& entry) {
    if (entry.facts.isFile()) {
      ++files;
      bytes += entry.facts.bytes;
    }
    complete = Clock::now() < deadline;
    return complete;
  });
  const auto root = factsOf(drive.root);
  json status{{"name", drive.name},
              {"connected", true},
              {"healthy", root && root->isFolder()},
              {"files_on_this_mac", files},
              {"bytes_on_this_mac", bytes},
              {"agent_may_read", true},
              {"agent_may_write", drive.writable}};
  if (!complete) status["counted_completely"] = false;
  return status;
}

}  // namespace

// The server asks for this before each call and gives up after three seconds, so counting stops
// early on large drives.
json driveStatus(Drives& drives, const Arguments& /*call*/) {
  const auto deadline = Clock::now() + std::chrono::milliseconds(500);
  json list = json::array();
  for (const Drive& drive : drives.all()) list.push_back(statusOf(drive, deadline));
  return {{"drives", std::move(list)}};
}

}  // namespace standin
