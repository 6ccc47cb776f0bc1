#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace standin {

enum class FileKind { File, Folder, Link, Other };

/// What the file system knows of an entry without opening it.
struct FileFacts {
  FileKind kind = FileKind::Other;
  std::uint64_t bytes = 0;
  /// Nanoseconds since 1970, as are all times here.
  std::int64_t modified = 0;
  std::int64_t accessed = 0;
};

/// The facts of the entry itself (a link is not followed), or none when there is no such
/// entry or it can't be looked at.
std::optional<FileFacts> factsOf(const std::filesystem::path& file);

/// "file", "folder", "link" or "other".
std::string_view kindName(FileKind kind);

/// A time as the agent is shown it, such as "2024-05-06T07:08:09Z".
std::string dateText(std::int64_t nanoseconds);

/// The present time, in nanoseconds since 1970.
std::int64_t now();

}  // namespace standin
