// read_file, write_file and transfer_file: they work with the content of files, one at a time.
#include <utf8.h>

#include <algorithm>

#include "standin/dispatch.h"
#include "standin/file_content.h"
#include "standin/file_facts.h"
#include "standin/refusal.h"
#include "standin/tools.h"
#include "standin/undo_folder.h"

namespace fs = std::filesystem;
using nlohmann::json;

namespace standin {
namespace {

void requireWritable(const Drive& drive) {
  if (drive.writable) return;
  throw Refusal("The drive " + inQuotes(drive.name) + " may only be read; nothing was changed.");
}

// Refuses to write at a place whose path leads through something that is not a folder.
void requireFolderAbove(const Place& place) {
  fs::path above = place.file().parent_path();
  while (!factsOf(above)) above = above.parent_path();
  if (fs::is_directory(above)) return;
  throw Refusal(place.description() + " can't be written: " + inQuotes(above.filename().native()) +
                " is not a folder.");
}

using Seen = std::pair<std::size_t, std::size_t>;

Seen seen(const std::string& content) {
  return {content.size(), std::hash<std::string>()(content)};
}

// Whether somebody else has changed the file since an agent last read or wrote it.
bool hasChanged(const Drives& drives, const fs::path& file) {
  const auto last = drives.lastSeen.find(file);
  return last != drives.lastSeen.end() &&
         seen(readContent(file, last->second.first)) != last->second;
}

}  // namespace

json readFile(Drives& drives, const Arguments& call) {
  const Place place = drives.existingFile(call.text("drive"), call.text("path"));
  const auto limit = std::min<std::uint64_t>(call.number("max_bytes"), maxReplyBytes);
  const std::scoped_lock lock(drives.contentMutex);
  const std::string content = readContent(place.file(), limit);
  if (content.size() > limit) {
    throw Refusal(place.description() + " is longer than the " + std::to_string(limit) +
                  " bytes that this call may read.");
  }
  if (!utf8::is_valid(content.begin(), content.end())) {
    throw Refusal(place.description() + " is not UTF-8 text.");
  }
  drives.lastSeen[place.file()] = seen(content);
  return {{"drive", place.drive->name},
          {"path", place.path},
          {"bytes", content.size()},
          {"content", content}};
}

json writeFile(Drives& drives, const Arguments& call) {
  const Place place = drives.place(call.text("drive"), call.text("path"));
  const std::string& content = call.text("content");
  requireWritable(*place.drive);
  const std::scoped_lock lock(drives.contentMutex);
  const auto before = factsOf(place.file());
  if (before && !before->isFile()) throw Refusal(place.description() + " is not a file.");
  if (before && hasChanged(drives, place.file())) {
    throw Refusal(place.description() + " has changed since it was read; read it again first.");
  }
  requireFolderAbove(place);
  json report{{"drive", place.drive->name},
              {"path", place.path},
              {"bytes", content.size()},
              {"action", before ? "replace" : "create"},
              {"dry_run", call.flag("dry_run")}};
  if (before) report["replaced_bytes"] = before->bytes;
  if (call.flag("dry_run")) return report;
  if (before) report["kept_for_undo"] = keepForUndo(place);
  fs::create_directories(place.file().parent_path());
  writeContent(place.file(), content);
  drives.lastSeen[place.file()] = seen(content);
  return report;
}

json transferFile(Drives& drives, const Arguments& call) {
  const Place from = drives.existingFile(call.text("from_drive"), call.text("path"));
  Place to = drives.place(call.text("to_drive"), call.text("to_folder"));
  const bool move = call.flag("move");
  requireWritable(*to.drive);
  if (move) requireWritable(*from.drive);
  const std::scoped_lock lock(drives.contentMutex);
  to.path = fs::path(to.path) / fs::path(from.path).filename();
  if (factsOf(to.file())) {
    throw Refusal(to.description() + " exists already; nothing was transferred.");
  }
  requireFolderAbove(to);
  json report{{"from_drive", from.drive->name},      {"from_path", from.path},
              {"to_drive", to.drive->name},          {"to_path", to.path},
              {"bytes", fs::file_size(from.file())}, {"action", move ? "move" : "copy"},
              {"dry_run", call.flag("dry_run")}};
  if (call.flag("dry_run")) return report;
  fs::create_directories(to.file().parent_path());
  copyFile(from.file(), to.file());
  if (move) fs::remove(from.file());
  return report;
}

}  // namespace standin
