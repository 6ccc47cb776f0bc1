#include "standin/walk.h"

#include <algorithm>
#include <deque>
#include <filesystem>

#include "standin/undo_folder.h"

namespace fs = std::filesystem;

namespace standin {

std::string Entry::name() const {
  return path.substr(path.rfind('/') + 1);
}

std::vector<Entry> entriesOf(const Place& folder, std::error_code& failure) {
  std::vector<Entry> entries;
  fs::directory_iterator next(folder.file(), failure);
  for (; !failure && next != fs::directory_iterator(); next.increment(failure)) {
    const std::string name = next->path().filename().native();
    const auto facts = factsOf(next->path());
    if (!facts || isHidden(name)) continue;
    std::string path = folder.path.empty() ? name : folder.path + "/" + name;
    entries.push_back({{folder.drive, std::move(path)}, *facts});
  }
  std::ranges::sort(entries, {}, &Entry::path);
  return entries;
}

void walk(const Drive& drive, const std::function<bool(const Entry&)>& visitor) {
  std::deque<Place> folders{{.drive = &drive, .path = ""}};
  for (; !folders.empty(); folders.pop_front()) {
    std::error_code ignored;
    for (const Entry& entry : entriesOf(folders.front(), ignored)) {
      if (!visitor(entry)) return;
      if (entry.facts.isFolder()) folders.push_back(entry);
    }
  }
}

std::vector<Entry> filesOn(const std::vector<const Drive*>& drives, std::uint64_t minimumBytes) {
  std::vector<Entry> files;
  for (const Drive* drive : drives) {
    walk(*drive, [&](const Entry& entry) {
      if (entry.facts.isFile() && entry.facts.bytes >= minimumBytes) files.push_back(entry);
      return true;
    });
  }
  return files;
}

}  // namespace standin
