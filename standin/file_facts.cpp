#include "standin/file_facts.h"

#include <sys/stat.h>

#include <array>
#include <chrono>
#include <ctime>

namespace standin {
namespace {

constexpr std::int64_t nanosecondsPerSecond = 1'000'000'000;

std::int64_t nanoseconds(const timespec& time) {
  return std::int64_t{time.tv_sec} * nanosecondsPerSecond + time.tv_nsec;
}

std::string_view kindOf(mode_t mode) {
  if (S_ISREG(mode)) return "file";
  if (S_ISDIR(mode)) return "folder";
  return S_ISLNK(mode) ? "link" : "other";
}

}  // namespace

std::optional<FileFacts> factsOf(const std::filesystem::path& file) {
  struct stat found{};
  if (::lstat(file.c_str(), &found) != 0) return std::nullopt;
#ifdef __APPLE__
  const timespec& modified = found.st_mtimespec;
  const timespec& accessed = found.st_atimespec;
#else
  const timespec& modified = found.st_mtim;
  const timespec& accessed = found.st_atim;
#endif
  return FileFacts{.kind = kindOf(found.st_mode),
                   .bytes = static_cast<std::uint64_t>(found.st_size),
                   .modified = nanoseconds(modified),
                   .accessed = nanoseconds(accessed)};
}

std::string dateText(std::int64_t nanoseconds) {
  const auto seconds = static_cast<std::time_t>(nanoseconds / nanosecondsPerSecond);
  std::tm parts{};
  gmtime_r(&seconds, &parts);
  std::array<char, 64> text{};
  const std::size_t length = std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%SZ", &parts);
  return {text.data(), length};
}

std::int64_t now() {
  const auto sinceEpoch = std::chrono::system_clock::now().time_since_epoch();
  return std::chrono::duration_cast<std::chrono::nanoseconds>(sinceEpoch).count();
}

}  // namespace standin
