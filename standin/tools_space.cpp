// find_duplicates, storage_summary and propose_cleanup: where the space goes.
#include <algorithm>
#include <map>
#include <tuple>

#include "standin/tools.h"
#include "standin/walk.h"

namespace fs = std::filesystem;
using nlohmann::json;

namespace standin {
namespace {

struct DuplicateGroup {
  std::vector<Entry> copies;
  std::uint64_t wasted() const { return copies.front().facts.bytes * (copies.size() - 1); }
};

// Every list begins with the largest; those of one size are in the order of their names.
bool isLarger(const Entry& a, const Entry& b) {
  return std::tie(b.facts.bytes, a.path) < std::tie(a.facts.bytes, b.path);
}

bool isMoreWasteful(const DuplicateGroup& a, const DuplicateGroup& b) {
  return std::pair(b.wasted(), a.copies.front().name()) <
         std::pair(a.wasted(), b.copies.front().name());
}

using FolderBytes = std::pair<std::string_view, std::uint64_t>;

bool holdsMore(const FolderBytes& a, const FolderBytes& b) {
  return std::tie(b.second, a.first) < std::tie(a.second, b.first);
}

// Files of one size and name that are there more than once, the most wasteful first.
std::vector<DuplicateGroup> duplicatesAmong(const std::vector<Entry>& files) {
  std::map<std::pair<std::uint64_t, std::string_view>, std::vector<Entry>> alike;
  for (const Entry& file : files) alike[{file.facts.bytes, file.name()}].push_back(file);
  std::vector<DuplicateGroup> groups;
  for (auto& [sizeAndName, copies] : alike) {
    if (copies.size() > 1) groups.push_back({.copies = std::move(copies)});
  }
  std::ranges::sort(groups, isMoreWasteful);
  return groups;
}

json listed(const std::vector<DuplicateGroup>& groups, std::uint64_t limit) {
  json list = json::array();
  for (const DuplicateGroup& group : groups) {
    if (list.size() >= limit) break;
    json copies = json::array();
    for (const Entry& copy : group.copies) {
      copies.push_back({{"drive", copy.drive->name()}, {"path", copy.path}});
    }
    list.push_back({{"name", group.copies.front().name()},
                    {"bytes_each", group.copies.front().facts.bytes},
                    {"wasted_bytes", group.wasted()},
                    {"copies", std::move(copies)}});
  }
  return list;
}

std::uint64_t wastedBy(const std::vector<DuplicateGroup>& groups) {
  std::uint64_t bytes = 0;
  for (const DuplicateGroup& group : groups) bytes += group.wasted();
  return bytes;
}

// The largest files, in descending order.
json largest(std::vector<Entry> files, std::uint64_t limit) {
  std::ranges::sort(files, isLarger);
  json list = json::array();
  for (const Entry& file : files) {
    if (list.size() >= limit) break;
    list.push_back({{"drive", file.drive->name()},
                    {"path", file.path},
                    {"bytes", file.facts.bytes},
                    {"modified", dateText(file.facts.modified)}});
  }
  return list;
}

// The folders that hold the most, counting what is in their folders too.
json largestFolders(const std::vector<Entry>& files, std::uint64_t limit) {
  std::map<std::string_view, std::uint64_t> held;
  for (const Entry& file : files) {
    const std::string_view path = file.path;
    for (auto slash = path.rfind('/'); slash != std::string_view::npos && slash > 0;
         slash = path.rfind('/', slash - 1)) {
      held[path.substr(0, slash)] += file.facts.bytes;
    }
  }
  std::vector<FolderBytes> folders(held.begin(), held.end());
  std::ranges::sort(folders, holdsMore);
  json list = json::array();
  for (const auto& [path, bytes] : folders) {
    if (list.size() >= limit) break;
    list.push_back({{"path", path}, {"bytes", bytes}});
  }
  return list;
}

json summaryOf(const Drive& drive, std::uint64_t limit) {
  const std::vector<Entry> files = filesOn({&drive}, 0);
  std::uint64_t bytes = 0;
  for (const Entry& file : files) bytes += file.facts.bytes;
  json summary{{"drive", drive.name()},
               {"files", files.size()},
               {"bytes", bytes},
               {"largest_files", largest(files, limit)},
               {"largest_folders", largestFolders(files, limit)}};
  std::error_code failure;
  const fs::space_info volume = fs::space(drive.root(), failure);
  if (!failure) {
    summary["volume"] = {{"capacity_bytes", volume.capacity}, {"free_bytes", volume.available}};
  }
  return summary;
}

}  // namespace

Outcome<json> findDuplicates(Drives& drives, const Arguments& call) {
  const std::vector<Entry> files = filesOn(drives.chosen(""), call.number("minimum_bytes"));
  const auto groups = duplicatesAmong(files);
  return json{{"groups", listed(groups, call.number("limit"))},
              {"total_groups", groups.size()},
              {"total_wasted_bytes", wastedBy(groups)}};
}

Outcome<json> storageSummary(Drives& drives, const Arguments& call) {
  json summaries = json::array();
  for (const Drive* drive : drives.chosen(call.text("drive"))) {
    summaries.push_back(summaryOf(*drive, call.number("limit")));
  }
  return json{{"drives", std::move(summaries)}};
}

Outcome<json> proposeCleanup(Drives& drives, const Arguments& call) {
  constexpr std::uint64_t mostListed = 100;
  constexpr std::int64_t nanosecondsPerDay = 86'400'000'000'000;
  const std::vector<Entry> files = filesOn(drives.chosen(""), call.number("minimum_bytes"));
  const auto groups = duplicatesAmong(files);
  std::vector<Entry> stale;
  std::uint64_t staleBytes = 0;
  for (const Entry& file : files) {
    const std::int64_t age = std::max<std::int64_t>(now() - file.facts.modified, 0);
    if (static_cast<std::uint64_t>(age / nanosecondsPerDay) < call.number("stale_after_days")) {
      continue;
    }
    stale.push_back(file);
    staleBytes += file.facts.bytes;
  }
  return json{{"duplicates", listed(groups, mostListed)},
              {"total_duplicate_groups", groups.size()},
              {"duplicate_bytes", wastedBy(groups)},
              {"stale_files", largest(stale, mostListed)},
              {"total_stale_files", stale.size()},
              {"stale_bytes", staleBytes},
              {"note", "These are proposals only; nothing was deleted."}};
}

}  // namespace standin
