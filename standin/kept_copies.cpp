#include "standin/kept_copies.h"

#include "standin/file_content.h"
#include "standin/file_facts.h"
#include "standin/hidden_names.h"
#include "standin/random_hex.h"

namespace fs = std::filesystem;

namespace standin {

Outcome<std::string> keepCopy(const Drive& drive, const fs::path& file) {
  std::error_code failure;
  const fs::path undo = drive.root() / hiddenPrefix;
  fs::create_directory(undo, failure);
  // A link planted under that name could lead the copy out of the drive.
  if (!fs::is_directory(fs::symlink_status(undo, failure))) {
    return refuse("The undo folder of the drive " + inQuotes(drive.name()) +
                  " can't be used, so nothing was replaced.");
  }
  const fs::path inDrive = file.lexically_relative(drive.root());
  const fs::path copy = undo / (dateText(now()) + "-" + randomHex(4)) / inDrive;
  fs::create_directories(copy.parent_path(), failure);
  if (!failure) failure = copyFile(file, copy);
  if (failure) return refuse(inDrive.native(), "kept for undo, so it was not replaced", failure);
  return copy.lexically_relative(drive.root()).native();
}

}  // namespace standin
