#pragma once

#include <deque>
#include <filesystem>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace standin {

/// A folder of this computer, served as a drive.
struct Drive {
  std::string name;
  std::filesystem::path root;  ///< with every link followed
  bool writable;
};

/// A place on a drive, where there may be nothing.
struct Place {
  const Drive* drive;
  std::string path;  ///< within the drive, no slash at either end; empty for the top level

  std::filesystem::path file() const { return drive->root / path; }
  /// For sentences: `"a/b.txt" on the drive "Docs"`.
  std::string description() const;
};

/// The connected drives, in the order in which they were added. After that, any thread may use
/// them.
class Drives {
 public:
  /// Adds a drive named after the folder; if the name is taken, it gets a number. Throws Refusal
  /// if the folder can't be opened or is inside another drive, or another drive inside it.
  void add(const std::filesystem::path& folder, bool writable);

  const std::deque<Drive>& all() const { return drives_; }

  /// The drive of exactly this name; throws Refusal if there is none.
  const Drive& named(std::string_view name) const;
  /// The drive of this name, or all drives if the name is empty.
  std::vector<const Drive*> chosen(std::string_view name) const;

  /// The place that an agent names. Links are followed. Throws Refusal if the place is outside of
  /// the drive or hidden.
  Place place(std::string_view drive, const std::string& path) const;
  /// The same for a regular file that exists.
  Place existingFile(std::string_view drive, const std::string& path) const;

  /// Locked by a tool while it works with the content of files.
  std::mutex contentMutex;
  /// The size and hash that each file had when an agent last read or wrote it. Guarded by the
  /// mutex.
  std::map<std::filesystem::path, std::pair<std::size_t, std::size_t>> lastSeen;

 private:
  std::deque<Drive> drives_;
};

}  // namespace standin
