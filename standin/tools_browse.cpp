// search_drives, list_directory, get_file_info and recent_changes: finding one's way without
// opening any file.
#include <algorithm>

#include "standin/folded.h"
#include "standin/tools.h"
#include "standin/walk.h"

using nlohmann::json;

namespace standin {
namespace {

json described(const Entry& entry) {
  json object{{"drive", entry.drive->name()},
              {"path", entry.path},
              {"kind", kindName(entry.facts.kind)},
              {"modified", dateText(entry.facts.modified)}};
  if (entry.facts.kind == FileKind::File) object["bytes"] = entry.facts.bytes;
  return object;
}

}  // namespace

Outcome<json> searchDrives(Drives& drives, const Arguments& call) {
  const std::u32string wanted = folded(call.text("query"));
  if (wanted.empty()) return refuse("The argument \"query\" must not be empty.");
  const std::uint64_t limit = call.number("limit");
  json results = json::array();
  bool more = false;
  for (const auto& drive : drives.all()) {
    walk(*drive, [&](const Entry& entry) {
      if (!folded(entry.name()).contains(wanted)) return true;
      more = results.size() >= limit;
      if (!more) results.push_back(described(entry));
      return !more;
    });
    if (more) break;
  }
  return json{{"results", std::move(results)}, {"more", more}};
}

Outcome<json> listDirectory(Drives& drives, const Arguments& call) {
  const Drive& drive = drives.named(call.text("drive"));
  const auto folder = drive.place(call.text("path"));
  if (!folder) return std::unexpected(folder.error());
  const auto facts = factsOf(folder->file);
  const std::string where = inQuotes(folder->path) + " on the drive " + inQuotes(drive.name());
  if (!facts) return refuse("There is no folder " + where + ".");
  if (facts->kind != FileKind::Folder) return refuse(where + " is not a folder.");
  json entries = json::array();
  for (const Entry& entry : entriesOf(drive, *folder)) {
    json line{{"name", entry.name()},
              {"kind", kindName(entry.facts.kind)},
              {"modified", dateText(entry.facts.modified)}};
    if (entry.facts.kind == FileKind::File) line["bytes"] = entry.facts.bytes;
    entries.push_back(std::move(line));
  }
  return json{{"drive", drive.name()}, {"path", folder->path}, {"entries", std::move(entries)}};
}

Outcome<json> getFileInfo(Drives& drives, const Arguments& call) {
  const Drive& drive = drives.named(call.text("drive"));
  const auto place = drive.place(call.text("path"));
  if (!place) return std::unexpected(place.error());
  const auto facts = factsOf(place->file);
  if (!facts) {
    return refuse("There is nothing at " + inQuotes(place->path) + " on the drive " +
                  inQuotes(drive.name()) + ".");
  }
  json info = described({.drive = &drive, .path = place->path, .facts = *facts});
  info["accessed"] = dateText(facts->accessed);
  info["downloaded"] = true;  // the stand-in serves folders of this computer only
  return info;
}

Outcome<json> recentChanges(Drives& drives, const Arguments& call) {
  std::vector<Entry> files = filesOn(drives.chosen(call.text("drive")), 0);
  const auto shown = std::min<std::uint64_t>(call.number("limit"), files.size());
  const auto lastShown = files.begin() + static_cast<std::ptrdiff_t>(shown);
  std::ranges::partial_sort(files, lastShown, std::greater(),
                            [](const Entry& file) { return file.facts.modified; });
  json changes = json::array();
  std::for_each(files.begin(), lastShown,
                [&](const Entry& file) { changes.push_back(described(file)); });
  return json{{"changes", std::move(changes)}, {"more", files.size() > shown}};
}

}  // namespace standin
