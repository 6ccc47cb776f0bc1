#include "standin/drives.h"

#include <algorithm>
#include <stdexcept>

namespace fs = std::filesystem;

namespace standin {
namespace {

bool isWithin(const fs::path& inner, const fs::path& outer) {
  return std::ranges::mismatch(outer, inner).in1 == outer.end();
}

}  // namespace

Outcome<std::unique_ptr<Drives>> Drives::open(const std::vector<fs::path>& folders, bool writable) {
  auto drives = std::make_unique<Drives>();
  for (const fs::path& folder : folders) {
    if (auto added = drives->add(folder, writable); !added) return std::unexpected(added.error());
  }
  return drives;
}

Outcome<void> Drives::add(const fs::path& folder, bool writable) {
  std::error_code failure;
  fs::path root = fs::canonical(folder, failure);
  if (failure) return refuse(folder.native(), "opened", failure);
  if (!fs::is_directory(root, failure)) return refuse(inQuotes(folder.native()) + " is no folder.");
  for (const auto& other : drives_) {
    if (isWithin(root, other->root()) || isWithin(other->root(), root)) {
      return refuse(inQuotes(folder.native()) + " overlaps the drive " + inQuotes(other->name()) +
                    "; serve only one of them.");
    }
  }
  std::string name = freeName(root);
  drives_.push_back(std::make_unique<Drive>(std::move(name), std::move(root), writable));
  return {};
}

std::string Drives::freeName(const fs::path& root) const {
  const std::string wanted = root.has_filename() ? root.filename().native() : "Computer";
  std::string name = wanted;
  for (int number = 2; find(name) != nullptr; ++number) {
    name = wanted + " " + std::to_string(number);
  }
  return name;
}

Drive* Drives::find(std::string_view name) const {
  const auto found = std::ranges::find(drives_, name, &Drive::name);
  return found == drives_.end() ? nullptr : found->get();
}

Drive& Drives::named(std::string_view name) const {
  Drive* const drive = find(name);
  if (drive == nullptr) throw std::out_of_range("no such drive");
  return *drive;
}

std::vector<const Drive*> Drives::chosen(std::string_view name) const {
  if (!name.empty()) return {&named(name)};
  std::vector<const Drive*> result;
  result.reserve(drives_.size());
  for (const auto& drive : drives_) result.push_back(drive.get());
  return result;
}

std::string Drives::names() const {
  std::string result;
  for (const auto& drive : drives_)
    result += (result.empty() ? "" : ", ") + inQuotes(drive->name());
  return result;
}

}  // namespace standin
