#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "standin/drives.h"
#include "standin/file_facts.h"

namespace standin {

/// A file, folder, link or other thing found on a drive.
struct Entry {
  const Drive* drive;
  /// Within the drive, without a slash at either end.
  std::string path;
  FileFacts facts;

  std::string_view name() const;
};

/// What is directly in a folder, sorted by name, hidden files left out. What can't be looked
/// at is left out too.
std::vector<Entry> entriesOf(const Drive& drive, const Place& folder);

/// Visits everything on the drive, the shallowest first, until the visitor returns false.
/// Links are visited but not followed.
void walk(const Drive& drive, const std::function<bool(const Entry&)>& visitor);

/// All files of at least that size on these drives.
std::vector<Entry> filesOn(const std::vector<const Drive*>& drives, std::uint64_t minimumBytes);

}  // namespace standin
