#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "standin/outcome.h"
#include "standin/read_record.h"

namespace standin {

/// Somewhere on a drive, whether anything is there or not.
struct Place {
  /// Within the drive, as the agent is shown it: no slash at either end, empty for the top.
  std::string path;
  /// Where that is on this computer, with every link followed.
  std::filesystem::path file;
};

/// One folder served as a drive. Nothing outside the folder can be reached through it.
class Drive {
 public:
  /// `root` must be the canonical path of an existing folder.
  Drive(std::string name, std::filesystem::path root, bool writable)
      : name_(std::move(name)), root_(std::move(root)), writable_(writable) {}

  const std::string& name() const { return name_; }
  const std::filesystem::path& root() const { return root_; }
  bool writable() const { return writable_; }
  ReadRecord& reads() { return reads_; }

  /// Finds the place an agent's path names. Refuses absolute paths, "..", links that lead
  /// nowhere or out of the drive, and the stand-in's own hidden files.
  Outcome<Place> place(std::string_view path) const;

  /// As place(), for a regular file that is there.
  Outcome<Place> existingFile(std::string_view path) const;

 private:
  Outcome<std::filesystem::path> follow(const std::filesystem::path& entry,
                                        std::string_view path) const;
  bool reaches(const std::filesystem::path& file) const;

  std::string name_;
  std::filesystem::path root_;
  bool writable_;
  ReadRecord reads_;
};

}  // namespace standin
