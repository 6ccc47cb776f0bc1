#include "standin/drives.h"

#include <algorithm>

#include "standin/file_facts.h"
#include "standin/refusal.h"
#include "standin/undo_folder.h"

namespace fs = std::filesystem;

namespace standin {
namespace {

bool isWithin(const fs::path& inner, const fs::path& outer) {
  return std::ranges::mismatch(outer, inner).in1 == outer.end();
}

void checkWording(const std::string& path) {
  if (path.contains('\0')) throw Refusal("A path can't contain a null character.");
  if (path.starts_with('/')) {
    throw Refusal("The path " + inQuotes(path) +
                  " is absolute; write it relative to the drive's top level.");
  }
  std::string unescaped = path;
  for (std::size_t at = 0; (at = unescaped.find("\\/", at)) != std::string::npos;) {
    unescaped.erase(at, 1);
  }
  if (unescaped != path) {
    throw Refusal("The path " + inQuotes(path) + " is written as in JSON text; write " +
                  inQuotes(unescaped) + " instead.");
  }
}

}  // namespace

std::string Place::description() const {
  if (path.empty()) return "The top level of the drive " + inQuotes(drive->name);
  return inQuotes(path) + " on the drive " + inQuotes(drive->name);
}

void Drives::add(const fs::path& folder, bool writable) {
  std::error_code failure;
  const fs::path root = fs::canonical(folder, failure);
  if (failure || !fs::is_directory(root))
    throw Refusal(inQuotes(folder.native()) + " is not a folder.");
  for (const Drive& other : drives_) {
    if (isWithin(root, other.root) || isWithin(other.root, root)) {
      throw Refusal(inQuotes(folder.native()) + " overlaps the drive " + inQuotes(other.name) +
                    "; serve only one of them.");
    }
  }
  const std::string wanted = root.has_filename() ? root.filename().native() : "Computer";
  std::string name = wanted;
  for (int number = 2; std::ranges::count(drives_, name, &Drive::name) > 0; ++number) {
    name = wanted + " " + std::to_string(number);
  }
  drives_.push_back({.name = name, .root = root, .writable = writable});
}

const Drive& Drives::named(std::string_view name) const {
  const auto found = std::ranges::find(drives_, name, &Drive::name);
  if (found != drives_.end()) return *found;
  throw Refusal("There is no drive " + inQuotes(name) + "; connected are " +
                listInQuotes(drives_, &Drive::name) + ".");
}

std::vector<const Drive*> Drives::chosen(std::string_view name) const {
  if (!name.empty()) return {&named(name)};
  std::vector<const Drive*> all;
  all.reserve(drives_.size());
  for (const Drive& drive : drives_) all.push_back(&drive);
  return all;
}

Place Drives::place(std::string_view drive, const std::string& path) const {
  checkWording(path);
  const Drive& found = named(drive);
  const fs::path within = fs::weakly_canonical(found.root / path).lexically_relative(found.root);
  if (*within.begin() == "..") {
    throw Refusal(inQuotes(path) + " leads out of the drive " + inQuotes(drive) + ".");
  }
  if (std::ranges::any_of(within, [](const fs::path& part) { return isHidden(part.native()); })) {
    throw Refusal(inQuotes(path) + " belongs to Quillmark itself and can't be used.");
  }
  std::string normal = within == "." ? "" : within.native();
  if (normal.ends_with('/')) normal.pop_back();
  return {.drive = &found, .path = std::move(normal)};
}

Place Drives::existingFile(std::string_view drive, const std::string& path) const {
  Place found = place(drive, path);
  const auto facts = factsOf(found.file());
  if (!facts) throw Refusal("There is no file " + found.description() + ".");
  if (!facts->isFile()) throw Refusal(found.description() + " is not a file.");
  return found;
}

}  // namespace standin
