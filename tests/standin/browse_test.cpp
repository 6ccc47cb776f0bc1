#include <gtest/gtest.h>

#include "tests/standin/served_folders.h"

namespace fs = std::filesystem;
using nlohmann::json;
using Names = std::vector<std::string>;

namespace {

class SearchDrives : public ServedFolders, public testing::Test {
 protected:
  Names found(const std::string& query) {
    return each(result("search_drives", {{"query", query}}).at("results"), "path");
  }
};
class ListDirectory : public ServedFolders, public testing::Test {};
class GetFileInfo : public ServedFolders, public testing::Test {};
class RecentChanges : public ServedFolders, public testing::Test {};

TEST_F(SearchDrives, FindsFilesAndFoldersByAnyPartOfTheirName) {
  putFile(alpha("deep/My Plan.txt"), "");
  putFile(beta("Floorplans/other.txt"), "");
  putFile(beta("Plan/nothing.txt"), "");
  EXPECT_EQ(found("plan"), (Names{"deep/My Plan.txt", "Floorplans", "Plan"}));
}

TEST_F(SearchDrives, IgnoresCase) {
  putFile(alpha("Überblick PLAN.txt"), "");
  EXPECT_EQ(found("überblick plan"), Names{});  // beyond ASCII, it does not
  EXPECT_EQ(found("BLICK plan"), Names{"Überblick PLAN.txt"});
}

TEST_F(SearchDrives, DoesNotSearchTheFoldersOfThePath) {
  putFile(alpha("plans/other.txt"), "");
  EXPECT_EQ(found("plan"), Names{"plans"});
}

TEST_F(SearchDrives, ReportsWhetherThereIsMore) {
  for (const char* name : {"a1", "a2", "a3"}) putFile(alpha(name), "");
  const json two = result("search_drives", {{"query", "a"}, {"limit", 2}});
  EXPECT_EQ(each(two.at("results"), "path"), (Names{"a1", "a2"}));
  EXPECT_EQ(two.at("more"), true);
  EXPECT_EQ(result("search_drives", {{"query", "a"}, {"limit", 3}}).at("more"), false);
}

TEST_F(SearchDrives, ReturnsAnEmptyListIfNothingMatches) {
  const json nothing = result("search_drives", {{"query", "zebra"}});
  EXPECT_EQ(nothing.at("results"), json::array());
  EXPECT_EQ(nothing.at("more"), false);
}

TEST_F(SearchDrives, DoesNotFollowLinks) {
  putFile(outside("elsewhere/plan.txt"), "");
  fs::create_directory_symlink(outside("elsewhere"), alpha("out"));
  fs::create_directory_symlink(alpha(), alpha("round"));
  EXPECT_EQ(found("plan"), Names{});
}

TEST_F(SearchDrives, ReplacesBytesOfANameThatAreNotUtf8) {
  std::error_code refused;
  fs::create_directory(alpha("plan\xFF"), refused);
  if (refused) GTEST_SKIP() << "this file system accepts UTF-8 names only";
  EXPECT_EQ(found("plan"), Names{"plan\uFFFD"});
}

TEST_F(ListDirectory, ListsTheTopLevelByDefault) {
  putFile(alpha("b.txt"), "12345");
  putFile(alpha("a/inner.txt"), "");
  const json listing = result("list_directory", {{"drive", "Alpha"}});
  EXPECT_EQ(listing.at("path"), "");
  ASSERT_EQ(each(listing.at("entries"), "path"), (Names{"a", "b.txt"}));
  EXPECT_EQ(each(listing.at("entries"), "kind"), (Names{"folder", "file"}));
  EXPECT_EQ(listing.at("entries").at(1).at("bytes"), 5);
  EXPECT_FALSE(listing.at("entries").at(0).contains("bytes"));
}

TEST_F(ListDirectory, ListsAFolder) {
  putFile(alpha("a/b/c.txt"), "");
  const json listing = result("list_directory", {{"drive", "Alpha"}, {"path", "a/b/"}});
  EXPECT_EQ(listing.at("path"), "a/b");
  EXPECT_EQ(each(listing.at("entries"), "path"), Names{"a/b/c.txt"});
}

TEST_F(ListDirectory, RefusesAMissingFolderAndAFile) {
  putFile(alpha("file"), "");
  EXPECT_EQ(refusal("list_directory", {{"drive", "Alpha"}, {"path", "none"}}),
            "There is no folder \"none\" on the drive \"Alpha\".");
  EXPECT_EQ(refusal("list_directory", {{"drive", "Alpha"}, {"path", "file"}}),
            "\"file\" on the drive \"Alpha\" is not a folder.");
}

TEST_F(ListDirectory, NoToolShowsTheUndoFolder) {
  putFile(alpha("note.txt"), "old");
  result("write_file", {{"drive", "Alpha"}, {"path", "note.txt"}, {"content", "new"}});
  ASSERT_TRUE(fs::exists(alpha(".quillmark-undo")));
  EXPECT_EQ(each(result("list_directory", {{"drive", "Alpha"}}).at("entries"), "path"),
            Names{"note.txt"});
  EXPECT_EQ(result("search_drives", {{"query", "note"}}).at("results").size(), 1);
  EXPECT_EQ(result("search_drives", {{"query", "undo"}}).at("results").size(), 0);
  EXPECT_EQ(result("recent_changes").at("changes").size(), 1);
  EXPECT_EQ(result("storage_summary").at("drives").at(0).at("files"), 1);
  EXPECT_EQ(result("find_duplicates", {{"minimum_bytes", 0}}).at("total_groups"), 0);
  EXPECT_EQ(result("drive_status").at("drives").at(0).at("files_on_this_mac"), 1);
}

TEST_F(GetFileInfo, ReturnsSizeDatesAndDrive) {
  putFile(alpha("a/note.txt"), "12345");
  fs::last_write_time(alpha("a/note.txt"),
                      fs::file_time_type::clock::now() - std::chrono::hours(24));
  const json info = result("get_file_info", {{"drive", "Alpha"}, {"path", "a/note.txt"}});
  EXPECT_EQ(info.at("drive"), "Alpha");
  EXPECT_EQ(info.at("path"), "a/note.txt");
  EXPECT_EQ(info.at("kind"), "file");
  EXPECT_EQ(info.at("bytes"), 5);
  EXPECT_EQ(info.at("downloaded"), true);
  const std::string modified = info.at("modified");
  const std::string accessed = info.at("accessed");
  EXPECT_EQ(modified.size(), std::string("2024-05-06T07:08:09Z").size());
  EXPECT_LT(modified, accessed);
}

TEST_F(GetFileInfo, RefusesAMissingFile) {
  EXPECT_EQ(refusal("get_file_info", {{"drive", "Beta"}, {"path", "none"}}),
            "There is nothing at \"none\" on the drive \"Beta\".");
}

TEST_F(RecentChanges, ListsTheFilesOfAllDrivesNewestFirst) {
  putFile(alpha("old"), "");
  putFile(beta("a/new"), "");
  putFile(alpha("middle"), "");
  age(alpha("old"), 30);
  age(alpha("middle"), 20);
  age(beta("a/new"), 10);
  const json changes = result("recent_changes");
  EXPECT_EQ(each(changes.at("changes"), "path"), (Names{"a/new", "middle", "old"}));
  EXPECT_EQ(changes.at("more"), false);
}

TEST_F(RecentChanges, CanBeLimitedToOneDriveAndANumberOfFiles) {
  putFile(alpha("old"), "");
  putFile(alpha("new"), "");
  putFile(beta("newest"), "");
  age(alpha("old"), 30);
  age(alpha("new"), 20);
  const json changes = result("recent_changes", {{"drive", "Alpha"}, {"limit", 1}});
  EXPECT_EQ(each(changes.at("changes"), "path"), Names{"new"});
  EXPECT_EQ(changes.at("more"), true);
}

}  // namespace
