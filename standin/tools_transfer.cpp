// transfer_file: copying and moving a file from drive to drive.
#include "standin/file_content.h"
#include "standin/file_facts.h"
#include "standin/tools.h"

namespace fs = std::filesystem;
using nlohmann::json;

namespace standin {
namespace {

Outcome<void> checkPermission(const Drive& drive) {
  if (drive.writable()) return {};
  return refuse("The drive " + inQuotes(drive.name()) +
                " may only be read; nothing was transferred.");
}

// Where the file will be. What is there already is never replaced.
Outcome<Place> destination(const Drive& drive, const std::string& folderPath,
                           const fs::path& name) {
  const auto folder = drive.place(folderPath);
  if (!folder) return folder;
  const auto facts = factsOf(folder->file);
  if (facts && facts->kind != FileKind::Folder) {
    return refuse(inQuotes(folder->path) + " on the drive " + inQuotes(drive.name()) +
                  " is not a folder.");
  }
  Place place{.path = (folder->path.empty() ? "" : folder->path + "/") + name.native(),
              .file = folder->file / name};
  if (!factsOf(place.file)) return place;
  return refuse("There is already a " + inQuotes(place.path) + " on the drive " +
                inQuotes(drive.name()) + "; nothing was transferred.");
}

Outcome<void> transfer(Drive& source, const Place& from, const Place& to, bool move) {
  std::error_code failure;
  fs::create_directories(to.file.parent_path(), failure);
  if (!failure) failure = copyFile(from.file, to.file);
  if (failure) return refuse(from.path, "copied", failure);
  if (!move) return {};
  if (!fs::remove(from.file, failure)) {
    return refuse(from.path, "removed after copying, so it is now on both drives", failure);
  }
  source.reads().forget(from.file);
  return {};
}

}  // namespace

Outcome<json> transferFile(Drives& drives, const Arguments& call) {
  Drive& source = drives.named(call.text("from_drive"));
  const Drive& target = drives.named(call.text("to_drive"));
  const bool move = call.flag("move");
  if (auto allowed = checkPermission(target); !allowed) return std::unexpected(allowed.error());
  if (auto allowed = checkPermission(source); move && !allowed) {
    return std::unexpected(allowed.error());
  }
  const std::scoped_lock alone(drives.writing());
  const auto from = source.existingFile(call.text("path"));
  if (!from) return std::unexpected(from.error());
  const auto to = destination(target, call.text("to_folder"), fs::path(from->path).filename());
  if (!to) return std::unexpected(to.error());
  const auto facts = factsOf(from->file);
  json report{{"from_drive", source.name()},       {"from_path", from->path},
              {"to_drive", target.name()},         {"to_path", to->path},
              {"bytes", facts ? facts->bytes : 0}, {"action", move ? "move" : "copy"},
              {"dry_run", call.flag("dry_run")}};
  if (call.flag("dry_run")) return report;
  const auto done = transfer(source, *from, *to, move);
  if (!done) return std::unexpected(done.error());
  return report;
}

}  // namespace standin
