#include "standin/undo_folder.h"

#include <strings.h>

#include "standin/file_content.h"
#include "standin/file_facts.h"
#include "standin/refusal.h"

namespace fs = std::filesystem;

namespace standin {

bool isHidden(const std::string& name) {
  return ::strncasecmp(name.c_str(), hiddenPrefix.data(), hiddenPrefix.size()) == 0;
}

std::string keepForUndo(const Place& place) {
  const fs::path undo = place.drive->root / hiddenPrefix;
  fs::create_directory(undo);
  // If somebody put a link there, the copy could leave the drive.
  if (!fs::is_directory(fs::symlink_status(undo))) {
    throw Refusal("The undo folder of the drive " + inQuotes(place.drive->name) +
                  " can't be used, so nothing was replaced.");
  }
  const fs::path name = undo / dateText(now());
  fs::path copy = name / place.path;
  for (int number = 2; fs::exists(copy); ++number) {
    copy = (name.native() + "-" + std::to_string(number)) / fs::path(place.path);
  }
  fs::create_directories(copy.parent_path());
  copyFile(place.file(), copy);
  return copy.lexically_relative(place.drive->root).native();
}

}  // namespace standin
