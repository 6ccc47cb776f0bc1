#include "standin/drive.h"

#include <algorithm>

#include "standin/file_facts.h"
#include "standin/hidden_names.h"

namespace fs = std::filesystem;

namespace standin {

Outcome<Place> Drive::place(std::string_view path) const {
  if (path.contains('\0')) return refuse("A path can't contain a null character.");
  if (path.starts_with('/')) {
    return refuse("The path " + inQuotes(path) +
                  " is absolute; give it relative to the drive's top level.");
  }
  Place found{.path = "", .file = root_};
  for (const fs::path& part : fs::path(path)) {
    if (part.empty() || part == ".") continue;
    if (part == "..") return refuse("The path " + inQuotes(path) + " must not contain \"..\".");
    if (isHidden(part.native())) {
      return refuse(inQuotes(path) + " belongs to Quillmark itself and can't be used.");
    }
    auto next = follow(found.file / part, path);
    if (!next) return std::unexpected(next.error());
    found.file = std::move(*next);
    found.path += (found.path.empty() ? "" : "/") + part.native();
  }
  return found;
}

Outcome<fs::path> Drive::follow(const fs::path& entry, std::string_view path) const {
  std::error_code failure;
  const fs::file_type type = fs::symlink_status(entry, failure).type();
  if (type == fs::file_type::none) return refuse(path, "looked up", failure);
  if (type != fs::file_type::symlink) return entry;
  fs::path target = fs::canonical(entry, failure);
  if (failure) return refuse(inQuotes(path) + " passes through a link that leads nowhere.");
  if (!reaches(target)) {
    return refuse(inQuotes(path) + " passes through a link that leads out of the drive " +
                  inQuotes(name_) + ".");
  }
  return target;
}

bool Drive::reaches(const fs::path& file) const {
  const bool within = std::ranges::mismatch(root_, file).in1 == root_.end();
  return within && std::ranges::none_of(file.lexically_relative(root_), [](const fs::path& part) {
           return isHidden(part.native());
         });
}

Outcome<Place> Drive::existingFile(std::string_view path) const {
  auto found = place(path);
  if (!found) return found;
  const auto facts = factsOf(found->file);
  if (!facts) {
    return refuse("There is no file " + inQuotes(path) + " on the drive " + inQuotes(name_) + ".");
  }
  if (facts->kind == FileKind::Folder) {
    return refuse(inQuotes(path) + " on the drive " + inQuotes(name_) +
                  " is a folder, not a file.");
  }
  if (facts->kind != FileKind::File) return refuse(inQuotes(path) + " is not an ordinary file.");
  return found;
}

}  // namespace standin
