// search_drives, list_directory, get_file_info and recent_changes: they look at entries without
// opening any file.
#include <string.h>

#include <algorithm>
#include <ranges>

#include "standin/refusal.h"
#include "standin/tools.h"
#include "standin/walk.h"

using nlohmann::json;

namespace standin {
namespace {

json description(const Entry& entry) {
  json object{{"drive", entry.drive->name},
              {"path", entry.path},
              {"kind", entry.facts.kind},
              {"modified", dateText(entry.facts.modified)}};
  if (entry.facts.isFile()) object["bytes"] = entry.facts.bytes;
  return object;
}

}  // namespace

json searchDrives(Drives& drives, const Arguments& call) {
  const std::string& wanted = call.text("query");
  json results = json::array();
  bool more = false;
  for (const Drive& drive : drives.all()) {
    walk(drive, [&](const Entry& entry) {
      if (::strcasestr(entry.name().c_str(), wanted.c_str()) == nullptr) return true;
      more = results.size() >= call.number("limit");
      if (!more) results.push_back(description(entry));
      return !more;
    });
    if (more) break;
  }
  return {{"results", std::move(results)}, {"more", more}};
}

json listDirectory(Drives& drives, const Arguments& call) {
  const Place folder = drives.place(call.text("drive"), call.text("path"));
  const auto facts = factsOf(folder.file());
  if (!facts) throw Refusal("There is no folder " + folder.description() + ".");
  if (!facts->isFolder()) throw Refusal(folder.description() + " is not a folder.");
  std::error_code failure;
  json entries = json::array();
  for (const Entry& entry : entriesOf(folder, failure)) {
    entries.push_back(description(entry));
  }
  if (failure) throw std::system_error(failure);
  return {{"drive", folder.drive->name}, {"path", folder.path}, {"entries", std::move(entries)}};
}

json getFileInfo(Drives& drives, const Arguments& call) {
  const Place place = drives.place(call.text("drive"), call.text("path"));
  const auto facts = factsOf(place.file());
  if (!facts) throw Refusal("There is nothing at " + place.description() + ".");
  json info = description({place, *facts});
  info["accessed"] = dateText(facts->accessed);
  info["downloaded"] = true;  // the files are on this computer
  return info;
}

json recentChanges(Drives& drives, const Arguments& call) {
  std::vector<Entry> files = filesOn(drives.chosen(call.text("drive")), 0);
  std::ranges::sort(files, std::greater(), [](const Entry& file) { return file.facts.modified; });
  json changes = json::array();
  for (const Entry& file : files) {
    if (changes.size() == call.number("limit")) break;
    changes.push_back(description(file));
  }
  return {{"more", changes.size() < files.size()}, {"changes", std::move(changes)}};
}

}  // namespace standin
