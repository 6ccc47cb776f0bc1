// read_file and write_file: text in and out, with what is replaced kept and with changes by
// others noticed.
#include <utf8.h>

#include <algorithm>
#include <optional>

#include "standin/file_content.h"
#include "standin/file_facts.h"
#include "standin/kept_copies.h"
#include "standin/reply_limit.h"
#include "standin/tools.h"

namespace fs = std::filesystem;
using nlohmann::json;

namespace standin {
namespace {

// What stands in the way of writing to this place, or nothing.
std::optional<Refusal> obstacleTo(Drive& drive, const Place& place) {
  const std::string file = inQuotes(place.path) + " on the drive " + inQuotes(drive.name());
  if (place.path.empty()) return Refusal{"A file to write needs a path within the drive."};
  if (const auto facts = factsOf(place.file)) {
    if (facts->kind != FileKind::File) return Refusal{file + " exists and is not a file."};
    if (!drive.reads().hasChanged(place.file)) return std::nullopt;
    return Refusal{file + " has changed since it was read; read it again before writing."};
  }
  fs::path above = place.file.parent_path();
  while (above != drive.root() && !factsOf(above)) above = above.parent_path();
  if (fs::is_directory(above)) return std::nullopt;
  return Refusal{file + " can't be written: " + inQuotes(above.filename().native()) +
                 " is not a folder."};
}

// Writes the content and tells where the file that was there before is kept, if there was one.
Outcome<std::string> replace(Drive& drive, const Place& place, const std::string& content) {
  std::string kept;
  if (factsOf(place.file)) {
    auto copy = keepCopy(drive, place.file);
    if (!copy) return copy;
    kept = std::move(*copy);
  }
  std::error_code failure;
  fs::create_directories(place.file.parent_path(), failure);
  if (!failure) failure = writeContent(place.file, content);
  if (failure) return refuse(place.path, "written", failure);
  drive.reads().remember(place.file, content);
  return kept;
}

}  // namespace

Outcome<json> readFile(Drives& drives, const Arguments& call) {
  Drive& drive = drives.named(call.text("drive"));
  const auto place = drive.existingFile(call.text("path"));
  if (!place) return std::unexpected(place.error());
  const std::uint64_t most = std::min<std::uint64_t>(call.number("max_bytes"), mostReplyBytes);
  const auto content = readContent(place->file, most);
  if (!content) return refuse(place->path, "read", content.error());
  if (content->size() > most) {
    return refuse(inQuotes(place->path) + " is larger than the " + std::to_string(most) +
                  (most < mostReplyBytes ? " bytes that max_bytes allows; ask for more to read it."
                                         : " bytes that fit into one reply."));
  }
  if (!utf8::is_valid(content->begin(), content->end())) {
    return refuse(inQuotes(place->path) + " is not UTF-8 text, so it can't be read as text.");
  }
  drive.reads().remember(place->file, *content);
  return json{{"drive", drive.name()},
              {"path", place->path},
              {"bytes", content->size()},
              {"content", *content}};
}

Outcome<json> writeFile(Drives& drives, const Arguments& call) {
  Drive& drive = drives.named(call.text("drive"));
  if (!drive.writable()) {
    return refuse("The drive " + inQuotes(drive.name()) +
                  " may only be read; nothing was written.");
  }
  const std::scoped_lock alone(drives.writing());
  const auto place = drive.place(call.text("path"));
  if (!place) return std::unexpected(place.error());
  if (auto obstacle = obstacleTo(drive, *place)) return std::unexpected(*obstacle);
  const std::string& content = call.text("content");
  const auto before = factsOf(place->file);
  json report{{"drive", drive.name()},
              {"path", place->path},
              {"bytes", content.size()},
              {"action", before ? "replace" : "create"},
              {"dry_run", call.flag("dry_run")}};
  if (before) report["replaced_bytes"] = before->bytes;
  if (call.flag("dry_run")) return report;
  const auto kept = replace(drive, *place, content);
  if (!kept) return std::unexpected(kept.error());
  if (!kept->empty()) report["kept_for_undo"] = *kept;
  return report;
}

}  // namespace standin
