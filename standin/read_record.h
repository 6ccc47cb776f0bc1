#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <mutex>
#include <string_view>

namespace standin {

/// What each file of a drive held when an agent last read or wrote it, so that a change made
/// by somebody else since then is noticed. Safe to use from any thread.
class ReadRecord {
 public:
  void remember(const std::filesystem::path& file, std::string_view content);
  void forget(const std::filesystem::path& file);

  /// True if the file was read before and no longer holds what it held then. A file that was
  /// never read has not changed.
  bool hasChanged(const std::filesystem::path& file) const;

 private:
  struct Mark {
    std::uint64_t bytes;
    std::size_t hash;
    bool operator==(const Mark&) const = default;
  };
  static Mark markOf(std::string_view content);

  mutable std::mutex mutex_;
  std::map<std::filesystem::path, Mark> marks_;
};

}  // namespace standin
