// find_duplicates, storage_summary and propose_cleanup: where the space goes.
#include <algorithm>
#include <map>

#include "standin/tools.h"
#include "standin/walk.h"

namespace fs = std::filesystem;
using nlohmann::json;

namespace standin {
namespace {

// Files of the same size and name.
struct DuplicateGroup {
  std::vector<Entry> copies;
  std::uint64_t wasted() const { return copies.front().facts.bytes * (copies.size() - 1); }
};

// Sorted by wasted space, the most first.
std::vector<DuplicateGroup> duplicatesAmong(const std::vector<Entry>& files) {
  std::map<std::pair<std::uint64_t, std::string>, std::vector<Entry>> alike;
  for (const Entry& file : files) alike[{file.facts.bytes, file.name()}].push_back(file);
  std::vector<DuplicateGroup> groups;
  for (auto& [sizeAndName, copies] : alike) {
    if (copies.size() > 1) groups.push_back({.copies = std::move(copies)});
  }
  std::ranges::sort(groups, std::greater(), &DuplicateGroup::wasted);
  return groups;
}

std::uint64_t wastedBy(const std::vector<DuplicateGroup>& groups) {
  std::uint64_t bytes = 0;
  for (const DuplicateGroup& group : groups) bytes += group.wasted();
  return bytes;
}

std::uint64_t bytesOf(const std::vector<Entry>& files) {
  std::uint64_t bytes = 0;
  for (const Entry& file : files) bytes += file.facts.bytes;
  return bytes;
}

json listed(const std::vector<DuplicateGroup>& groups, std::uint64_t limit) {
  json list = json::array();
  for (const DuplicateGroup& group : groups) {
    if (list.size() >= limit) break;
    json copies = json::array();
    for (const Entry& copy : group.copies) {
      copies.push_back({{"drive", copy.drive->name}, {"path", copy.path}});
    }
    list.push_back({{"name", group.copies.front().name()},
                    {"bytes_each", group.copies.front().facts.bytes},
                    {"wasted_bytes", group.wasted()},
                    {"copies", std::move(copies)}});
  }
  return list;
}

json largestFiles(std::vector<Entry> files, std::uint64_t limit) {
  std::ranges::sort(files, std::greater(), [](const Entry& file) { return file.facts.bytes; });
  json list = json::array();
  for (const Entry& file : files) {
    if (list.size() >= limit) break;
    list.push_back({{"drive", file.drive->name},
                    {"path", file.path},
                    {"bytes", file.facts.bytes},
                    {"modified", dateText(file.facts.modified)}});
  }
  return list;
}

// A folder counts everything below it.
json largestFolders(const std::vector<Entry>& files, std::uint64_t limit) {
  std::map<std::string, std::uint64_t> bytesBelow;
  for (const Entry& file : files) {
    for (fs::path folder = fs::path(file.path).parent_path(); !folder.empty();
         folder = folder.parent_path()) {
      bytesBelow[folder.native()] += file.facts.bytes;
    }
  }
  std::vector<std::pair<std::string, std::uint64_t>> folders(bytesBelow.begin(), bytesBelow.end());
  std::ranges::sort(folders, std::greater(), [](const auto& folder) { return folder.second; });
  json list = json::array();
  for (const auto& [path, bytes] : folders) {
    if (list.size() >= limit) break;
    list.push_back({{"path", path}, {"bytes", bytes}});
  }
  return list;
}

}  // namespace

json findDuplicates(Drives& drives, const Arguments& call) {
  const auto groups = duplicatesAmong(filesOn(drives.chosen(""), call.number("minimum_bytes")));
  return {{"groups", listed(groups, call.number("limit"))},
          {"total_groups", groups.size()},
          {"total_wasted_bytes", wastedBy(groups)}};
}

json storageSummary(Drives& drives, const Arguments& call) {
  json summaries = json::array();
  for (const Drive* drive : drives.chosen(call.text("drive"))) {
    const std::vector<Entry> files = filesOn({drive}, 0);
    const fs::space_info volume = fs::space(drive->root);
    summaries.push_back(
        {{"drive", drive->name},
         {"files", files.size()},
         {"bytes", bytesOf(files)},
         {"largest_files", largestFiles(files, call.number("limit"))},
         {"largest_folders", largestFolders(files, call.number("limit"))},
         {"volume", {{"capacity_bytes", volume.capacity}, {"free_bytes", volume.available}}}});
  }
  return {{"drives", std::move(summaries)}};
}

json proposeCleanup(Drives& drives, const Arguments& call) {
  constexpr std::uint64_t maxListed = 100;
  constexpr std::int64_t nanosecondsPerDay = 86'400'000'000'000;
  const std::vector<Entry> files = filesOn(drives.chosen(""), call.number("minimum_bytes"));
  const auto groups = duplicatesAmong(files);
  std::vector<Entry> stale;
  std::ranges::copy_if(files, std::back_inserter(stale), [&](const Entry& file) {
    const std::int64_t age = std::max<std::int64_t>(now() - file.facts.modified, 0);
    return static_cast<std::uint64_t>(age / nanosecondsPerDay) >= call.number("stale_after_days");
  });
  return {
      {"duplicates", listed(groups, maxListed)}, {"total_duplicate_groups", groups.size()},
      {"duplicate_bytes", wastedBy(groups)},     {"stale_files", largestFiles(stale, maxListed)},
      {"total_stale_files", stale.size()},       {"stale_bytes", bytesOf(stale)}};
}

}  // namespace standin
