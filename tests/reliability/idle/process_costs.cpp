#include "tests/reliability/idle/process_costs.h"

#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <stdexcept>
#include <string>
#include <string_view>

namespace {

namespace fs = std::filesystem;

/// The sum of the numbers in the lines of a file that start with one of these names.
std::size_t sumIn(const fs::path& path, std::initializer_list<std::string_view> names) {
  std::ifstream file(path);
  std::size_t sum = 0;
  std::size_t found = 0;
  for (std::string line; std::getline(file, line);) {
    for (const std::string_view name : names) {
      if (!line.starts_with(name)) continue;
      sum += std::stoul(line.substr(name.size()));
      ++found;
    }
  }
  if (found != names.size()) throw std::runtime_error("not everything is in " + path.string());
  return sum;
}

}  // namespace

ProcessCosts costsOf(pid_t process) {
  const fs::path folder = "/proc/" + std::to_string(process);
  ProcessCosts costs{.privateKibibytes =
                         sumIn(folder / "smaps_rollup", {"Private_Clean:", "Private_Dirty:"})};
  for (const auto& task : fs::directory_iterator(folder / "task")) {
    costs.wakeUps +=
        sumIn(task.path() / "status", {"voluntary_ctxt_switches:", "nonvoluntary_ctxt_switches:"});
  }
  return costs;
}
