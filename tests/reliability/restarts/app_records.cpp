#include "tests/reliability/restarts/app_records.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <fstream>
#include <sstream>
#include <system_error>

namespace {

namespace fs = std::filesystem;

/// In one write, so that a line is whole or missing.
void appendLine(const fs::path& path, const std::string& line) {
  const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
  const std::string text = line + "\n";
  const bool written = file >= 0 && ::write(file, text.data(), text.size()) >= 0;
  const std::error_code reason(errno, std::generic_category());
  if (file >= 0) ::close(file);
  if (!written) throw std::system_error(reason, path.string());
}

}  // namespace

fs::path AppRecords::endpointFile() const {
  return home_ / "Library/Application Support/Quillmark/agent.json";
}

void AppRecords::publish(std::string_view endpoint, pid_t process, std::string_view token) const {
  fs::path fresh = endpointFile();
  fresh += "." + std::to_string(process);
  std::ofstream(fresh) << endpoint;
  fs::rename(fresh, endpointFile());
  const auto now = Clock::now().time_since_epoch().count();
  std::ostringstream line;
  line << process << ' ' << token << ' ' << now;
  appendLine(home_ / "published", line.str());
}

void AppRecords::carriedOut(std::size_t number, std::string_view token) const {
  appendLine(home_ / "carried-out", std::to_string(number) + " " + std::string(token));
}

std::vector<Publication> AppRecords::publications() const {
  std::vector<Publication> all;
  std::ifstream file(home_ / "published");
  Publication next;
  Clock::rep time = 0;
  while (file >> next.process >> next.token >> time) {
    next.at = Clock::time_point(Clock::duration(time));
    all.push_back(next);
  }
  return all;
}

std::vector<CarriedOut> AppRecords::carriedOut() const {
  std::vector<CarriedOut> all;
  std::ifstream file(home_ / "carried-out");
  CarriedOut next;
  while (file >> next.number >> next.token) all.push_back(next);
  return all;
}

void AppRecords::removeEndpointFile() const {
  fs::remove(endpointFile());
}
