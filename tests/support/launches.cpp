#include "tests/support/launches.h"

#include <fstream>
#include <stdexcept>
#include <thread>

namespace fs = std::filesystem;

Launches::Launches(const TemporaryHome& home)
    : recording_(home.folder() / "recording"),
      broken_(home.folder() / "broken"),
      records_(home.folder() / "launches"),
      script_(home.folder() / "open-script.json") {
  for (const fs::path& folder : {recording_, broken_, records_}) fs::create_directory(folder);
  fs::create_symlink(QUILLMARK_RECORDING_OPEN, recording_ / "open");
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

nlohmann::json Launches::record(std::size_t index) const {
  using Clock = std::chrono::steady_clock;
  const fs::path file = records_ / std::to_string(index);
  const auto deadline = Clock::now() + generous;
  while (!fs::exists(file)) {
    if (Clock::now() > deadline) throw std::runtime_error("open was not launched");
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  std::ifstream in(file);
  return nlohmann::json::parse(in);
}

std::chrono::steady_clock::time_point Launches::startOf(std::size_t index) const {
  using Clock = std::chrono::steady_clock;
  const auto started = record(index)["startedAt"].get<Clock::duration::rep>();
  return Clock::time_point(Clock::duration(started));
}
