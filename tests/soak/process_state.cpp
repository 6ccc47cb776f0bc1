#include "tests/soak/process_state.h"

#include <stdexcept>

#ifdef __APPLE__

#include <libproc.h>

#include <array>

ProcessState stateOf(pid_t process) {
  proc_taskinfo task{};
  if (proc_pidinfo(process, PROC_PIDTASKINFO, 0, &task, sizeof task) <= 0) {
    throw std::runtime_error("the system does not report the state of the server");
  }
  std::array<proc_fdinfo, 4096> open{};
  const int bytes = proc_pidinfo(process, PROC_PIDLISTFDS, 0, open.data(), sizeof open);
  std::array<pid_t, 4096> children{};
  const int count = proc_listchildpids(process, children.data(), sizeof children);
  return {.residentBytes = static_cast<double>(task.pti_resident_size),
          .descriptors = static_cast<std::size_t>(bytes) / sizeof(proc_fdinfo),
          .threads = static_cast<std::size_t>(task.pti_threadnum),
          .children = static_cast<std::size_t>(count)};
}

#else

#include <cctype>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace {

namespace fs = std::filesystem;

std::string folderOf(pid_t process) {
  return "/proc/" + std::to_string(process);
}

std::size_t entriesOf(const std::string& folder) {
  return static_cast<std::size_t>(std::distance(fs::directory_iterator(folder), {}));
}

// The state and the parent follow the name, which can contain anything.
bool isChildOf(pid_t parent, const fs::path& folder) {
  std::ifstream file(folder / "stat");
  const std::string text{std::istreambuf_iterator<char>(file), {}};
  const std::size_t name = text.rfind(") ");
  if (name == std::string::npos) return false;
  return text.substr(name + 4).starts_with(std::to_string(parent) + " ");
}

std::size_t childrenOf(pid_t parent) {
  std::size_t count = 0;
  for (const auto& entry : fs::directory_iterator("/proc")) {
    const bool isProcess = std::isdigit(entry.path().filename().string()[0]) != 0;
    if (isProcess && isChildOf(parent, entry.path())) ++count;
  }
  return count;
}

}  // namespace

ProcessState stateOf(pid_t process) {
  constexpr double kibibyte = 1024;
  ProcessState state{.descriptors = entriesOf(folderOf(process) + "/fd"),
                     .threads = entriesOf(folderOf(process) + "/task"),
                     .children = childrenOf(process)};
  std::ifstream status(folderOf(process) + "/status");
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with("VmRSS:")) state.residentBytes = std::stod(line.substr(6)) * kibibyte;
  }
  if (state.residentBytes == 0) {
    throw std::runtime_error("the system does not report the state of the server");
  }
  return state;
}

#endif
