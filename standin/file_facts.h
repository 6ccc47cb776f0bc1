#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace standin {

/// What the file system knows about an entry without opening it.
struct FileFacts {
  std::string_view kind;  ///< "file", "folder", "link" or "other"
  std::uint64_t bytes;
  std::int64_t modified;  ///< in nanoseconds since 1970, as all times here
  std::int64_t accessed;

  bool isFile() const { return kind == "file"; }
  bool isFolder() const { return kind == "folder"; }
};

/// The facts of the entry itself: a link is not followed. None if there is no such entry or the
/// system denies access to it.
std::optional<FileFacts> factsOf(const std::filesystem::path& file);

/// A time as agents see it, such as "2024-05-06T07:08:09Z".
std::string dateText(std::int64_t nanoseconds);

/// The current time.
std::int64_t now();

}  // namespace standin
