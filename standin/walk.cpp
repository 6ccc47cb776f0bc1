#include "standin/walk.h"

#include <algorithm>
#include <deque>

#include "standin/hidden_names.h"

namespace fs = std::filesystem;

namespace standin {

std::string_view Entry::name() const {
  const std::size_t slash = path.rfind('/');
  return std::string_view(path).substr(slash == std::string::npos ? 0 : slash + 1);
}

std::vector<Entry> entriesOf(const Drive& drive, const Place& folder) {
  std::vector<Entry> entries;
  std::error_code failure;
  fs::directory_iterator next(folder.file, failure);
  for (; !failure && next != fs::directory_iterator(); next.increment(failure)) {
    const std::string name = next->path().filename().native();
    const auto facts = factsOf(next->path());
    if (!facts || isHidden(name)) continue;
    const std::string above = folder.path.empty() ? "" : folder.path + "/";
    entries.push_back({.drive = &drive, .path = above + name, .facts = *facts});
  }
  std::ranges::sort(entries, {}, &Entry::path);
  return entries;
}

void walk(const Drive& drive, const std::function<bool(const Entry&)>& visitor) {
  std::deque<std::string> folders{""};
  for (; !folders.empty(); folders.pop_front()) {
    const Place folder{.path = folders.front(), .file = drive.root() / folders.front()};
    for (Entry& entry : entriesOf(drive, folder)) {
      if (!visitor(entry)) return;
      if (entry.facts.kind == FileKind::Folder) folders.push_back(std::move(entry.path));
    }
  }
}

std::vector<Entry> filesOn(const std::vector<const Drive*>& drives, std::uint64_t minimumBytes) {
  std::vector<Entry> files;
  for (const Drive* drive : drives) {
    walk(*drive, [&](const Entry& entry) {
      const bool wanted = entry.facts.kind == FileKind::File && entry.facts.bytes >= minimumBytes;
      if (wanted) files.push_back(entry);
      return true;
    });
  }
  return files;
}

}  // namespace standin
