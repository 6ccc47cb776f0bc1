#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <system_error>
#include <vector>

#include "standin/drives.h"
#include "standin/file_facts.h"

namespace standin {

/// A file, folder, link or anything else found on a drive.
struct Entry : Place {
  FileFacts facts;

  std::string name() const;
};

/// The entries of a folder, sorted by name, without hidden ones. Empty, and `failure` set, if the
/// system refuses to list them.
std::vector<Entry> entriesOf(const Place& folder, std::error_code& failure);

/// Visits every entry of the drive until the visitor returns false. Links are visited but not
/// followed; folders that can't be listed are skipped.
void walk(const Drive& drive, const std::function<bool(const Entry&)>& visitor);

/// Every file of at least this size on these drives.
std::vector<Entry> filesOn(const std::vector<const Drive*>& drives, std::uint64_t minimumBytes);

}  // namespace standin
