// Replaces the system's `open` in tests. It records how it was started, then does what the test has
// written into a script. Both files are next to the home folder that it inherits.

#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>

#include <nlohmann/json.hpp>

#include "bridge/home_directory.h"
#include "tests/support/file_identity.h"

namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using Milliseconds = std::chrono::milliseconds;

json openDescriptors() {
  json found = json::object();
  const std::string own = "/proc/" + std::to_string(::getpid()) + "/fd";
  for (const fs::directory_entry& entry : fs::directory_iterator(own)) {
    std::error_code notOpen;
    const std::string target = fs::read_symlink(entry.path(), notOpen).string();
    if (notOpen || target == own) continue;
    found[entry.path().filename().string()] = fileIdentity(entry.path());
  }
  return found;
}

std::string statusField(const std::string& name) {
  std::ifstream status("/proc/self/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with(name + ":\t")) return line.substr(name.size() + 2);
  }
  return "missing";
}

json recordOf(char** arguments, char** environment, long long startedAt) {
  json record{{"descriptors", openDescriptors()},
              {"directory", fs::current_path().string()},
              {"blockedSignals", statusField("SigBlk")},
              {"ignoredSignals", statusField("SigIgn")},
              {"pid", ::getpid()},
              {"startedAt", startedAt},
              {"arguments", json::array()},
              {"environment", json::array()}};
  for (; *arguments != nullptr; ++arguments) record["arguments"].push_back(*arguments);
  for (; *environment != nullptr; ++environment) record["environment"].push_back(*environment);
  return record;
}

void writeAtomically(const fs::path& file, const std::string& bytes) {
  const fs::path fresh = file.string() + ".of-" + std::to_string(::getpid());
  std::ofstream(fresh) << bytes;
  fs::rename(fresh, file);
}

void writeRecord(const fs::path& folder, const json& record) {
  int number = 0;
  while (fs::exists(folder / std::to_string(number))) ++number;
  writeAtomically(folder / std::to_string(number), record.dump());
}

}  // namespace

int main(int, char** arguments, char** environment) {
  const auto startedAt = std::chrono::steady_clock::now().time_since_epoch().count();
  const char* home = std::getenv(bridge::homeVariable);
  if (home == nullptr) return 3;
  const fs::path folder = fs::path(home).parent_path();
  writeRecord(folder / "launches", recordOf(arguments, environment, startedAt));

  std::ifstream in(folder / "open-script.json");
  const json script = json::parse(in);
  std::this_thread::sleep_for(Milliseconds(script["waitFirst"].get<int>()));
  if (const auto text = script["publish"].get<std::string>(); !text.empty()) {
    writeAtomically(fs::path(home) / "Library/Application Support/Quillmark/agent.json", text);
  }
  for (int left = script["stay"].get<int>(); left > 0 && fs::exists(folder); left -= 100) {
    std::this_thread::sleep_for(Milliseconds(100));
  }
  return script["exitCode"].get<int>();
}
