#pragma once

#include <filesystem>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "standin/drive.h"

namespace standin {

/// Every connected drive, in the order in which the folders were given. The set itself never
/// changes, so it may be read from any thread.
class Drives {
 public:
  /// Each folder becomes a drive named after its last path component; a name already taken
  /// gets a number. Refuses a folder that can't be opened or overlaps another one.
  static Outcome<std::unique_ptr<Drives>> open(const std::vector<std::filesystem::path>& folders,
                                               bool writable);

  const std::vector<std::unique_ptr<Drive>>& all() const { return drives_; }

  /// The drive of exactly that name, or null. It lives as long as this set.
  Drive* find(std::string_view name) const;
  /// As find(), for a name already known to be there; throws std::out_of_range if it is not.
  Drive& named(std::string_view name) const;
  /// The drive of that name alone, or all drives when the name is empty.
  std::vector<const Drive*> chosen(std::string_view name) const;
  /// The names in quotation marks, with commas between.
  std::string names() const;

  /// Held by whoever changes files, from looking at what is there to the change itself.
  std::mutex& writing() { return writing_; }

 private:
  Outcome<void> add(const std::filesystem::path& folder, bool writable);
  std::string freeName(const std::filesystem::path& root) const;

  std::vector<std::unique_ptr<Drive>> drives_;
  std::mutex writing_;
};

}  // namespace standin
