#include "tests/support/launches.h"

#include <fstream>
#include <stdexcept>
#include <thread>

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

Launches::Launches(const TemporaryHome& home)
    : recording_(home.folder() / "recording"),
      broken_(home.folder() / "broken"),
      records_(home.folder() / "launches"),
      script_(home.folder() / "open-script.json") {
  for (const fs::path& folder : {recording_, broken_, records_}) fs::create_directory(folder);
  fs::copy_file(QUILLMARK_RECORDING_OPEN, recording_ / "open");
  std::ofstream(broken_ / "open") << "not a program\n";
  script({});
}

void Launches::script(const OpenScript& script) const {
  std::ofstream(script_) << nlohmann::json{{"waitFirst", script.waitFirst.count()},
                                           {"publish", script.publish.value_or("")},
                                           {"stay", script.stay.count()},
                                           {"exitCode", script.exitCode}};
}

std::size_t Launches::count() const {
  std::size_t number = 0;
  while (fs::exists(records_ / std::to_string(number))) ++number;
  return number;
}

nlohmann::json Launches::record(std::size_t index, Duration within) const {
  const fs::path file = records_ / std::to_string(index);
  const auto deadline = Clock::now() + within;
  while (!fs::exists(file)) {
    if (Clock::now() > deadline) throw std::runtime_error("open was not launched in time");
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  std::ifstream in(file);
  return nlohmann::json::parse(in);
}

Clock::time_point Launches::startOf(std::size_t index, Duration within) const {
  const auto started = record(index, within)["startedAt"].get<Clock::duration::rep>();
  return Clock::time_point(Clock::duration(started));
}
