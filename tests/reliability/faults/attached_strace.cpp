#include "tests/reliability/faults/attached_strace.h"

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <system_error>
#include <thread>

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

/// True once the condition holds; false if it does not within 20 seconds.
template <typename Condition>
bool waitUntil(Condition condition) {
  const auto deadline = std::chrono::steady_clock::now() + 20s;
  while (!condition()) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(5ms);
  }
  return true;
}

/// Where a thread is in the kernel, such as "7 0x..." for poll(), or "running".
std::string callOf(const fs::path& task) {
  std::ifstream file(task / "syscall");
  std::string number;
  file >> number;
  return number;
}

}  // namespace

pid_t backgroundThreadOf(pid_t process) {
  const fs::path tasks = "/proc/" + std::to_string(process) + "/task";
  pid_t found = -1;
  const bool waits = waitUntil([&] {
    std::error_code gone;
    for (const auto& task : fs::directory_iterator(tasks, gone)) {
      const std::string name = task.path().filename();
      if (name == std::to_string(process)) continue;
      found = static_cast<pid_t>(std::stol(name));
      const std::string call = callOf(task);
      return !call.empty() && call != "running";
    }
    return false;
  });
  if (!waits) throw std::runtime_error("no background thread");
  return found;
}

AttachedStrace::AttachedStrace(pid_t thread, const std::vector<std::string>& options,
                               const fs::path& trace) {
  std::vector<std::string> words{straceProgram, "-qq", "-o", trace, "-p", std::to_string(thread)};
  words.insert(words.end(), options.begin(), options.end());
  std::vector<char*> arguments;
  arguments.reserve(words.size() + 1);
  for (std::string& word : words) arguments.push_back(word.data());
  arguments.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);
  const int error =
      posix_spawn(&strace_, straceProgram, &actions, nullptr, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (error != 0) throw std::system_error(error, std::generic_category(), straceProgram);
  // The trace begins with the call in which strace has found the thread.
  std::error_code missing;
  if (!waitUntil([&] { return fs::exists(trace) && fs::file_size(trace, missing) > 0; })) {
    throw std::runtime_error("strace does not attach; is ptrace allowed?");
  }
}

AttachedStrace::~AttachedStrace() {
  if (!waitUntil([&] { return waitpid(strace_, nullptr, WNOHANG) != 0; })) {
    kill(strace_, SIGKILL);
    waitpid(strace_, nullptr, 0);
  }
}
