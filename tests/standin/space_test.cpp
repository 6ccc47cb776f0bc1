// find_duplicates, storage_summary, propose_cleanup and drive_status.
#include <gtest/gtest.h>

#include "tests/standin/served_folders.h"

namespace fs = std::filesystem;
using nlohmann::json;
using Names = std::vector<std::string>;

namespace {

class FindDuplicates : public ServedFolders, public testing::Test {};
class StorageSummary : public ServedFolders, public testing::Test {};
class ProposeCleanup : public ServedFolders, public testing::Test {};
class DriveStatus : public ServedFolders, public testing::Test {};
class DriveStatusReadOnly : public ServedFolders, public testing::Test {
 protected:
  DriveStatusReadOnly() : ServedFolders(false) {}
};

TEST_F(FindDuplicates, ReturnsFilesOfTheSameSizeAndName) {
  putFile(alpha("x/photo"), "1234");
  putFile(beta("photo"), "abcd");
  putFile(beta("y/photo"), "different size");
  putFile(beta("other name"), "1234");
  const json found = result("find_duplicates", {{"minimum_bytes", 1}});
  ASSERT_EQ(found.at("groups").size(), 1);
  const json& group = found.at("groups").at(0);
  EXPECT_EQ(group.at("name"), "photo");
  EXPECT_EQ(group.at("bytes_each"), 4);
  EXPECT_EQ(group.at("wasted_bytes"), 4);
  EXPECT_EQ(group.at("copies"), (json{{{"drive", "Alpha"}, {"path", "x/photo"}},
                                      {{"drive", "Beta"}, {"path", "photo"}}}));
}

TEST_F(FindDuplicates, SortsGroupsByWastedSpace) {
  for (const char* copy : {"1/pair", "2/pair"}) putBytes(alpha(copy), 100);
  for (const char* copy : {"1/three", "2/three", "3/three"}) putBytes(alpha(copy), 60);
  const json found = result("find_duplicates", {{"minimum_bytes", 1}});
  EXPECT_EQ(each(found.at("groups"), "name"), (Names{"three", "pair"}));
  EXPECT_EQ(found.at("total_wasted_bytes"), 220);
  const json one = result("find_duplicates", {{"minimum_bytes", 1}, {"limit", 1}});
  EXPECT_EQ(each(one.at("groups"), "name"), Names{"three"});
  EXPECT_EQ(one.at("total_groups"), 2);
}

TEST_F(FindDuplicates, DoesNotCountLinksAsCopies) {
  putFile(alpha("photo"), "1234");
  fs::create_directory(alpha("links"));
  fs::create_symlink("../photo", alpha("links/photo"));
  EXPECT_EQ(result("find_duplicates", {{"minimum_bytes", 1}}).at("total_groups"), 0);
}

TEST_F(StorageSummary, ReturnsTheLargestFilesAndFoldersOfEachDrive) {
  putBytes(alpha("a/b/large"), 300);
  putBytes(alpha("a/middle"), 200);
  putBytes(alpha("c/small"), 100);
  putBytes(beta("only"), 7);
  const json drives = result("storage_summary", {{"limit", 2}}).at("drives");
  EXPECT_EQ(each(drives, "drive"), (Names{"Alpha", "Beta"}));
  const json& first = drives.at(0);
  EXPECT_EQ(first.at("files"), 3);
  EXPECT_EQ(first.at("bytes"), 600);
  EXPECT_EQ(each(first.at("largest_files"), "path"), (Names{"a/b/large", "a/middle"}));
  EXPECT_EQ(first.at("largest_folders"),
            (json{{{"path", "a"}, {"bytes", 500}}, {{"path", "a/b"}, {"bytes", 300}}}));
  EXPECT_GT(first.at("volume").at("capacity_bytes"), 0);
  EXPECT_EQ(drives.at(1).at("bytes"), 7);
  EXPECT_EQ(drives.at(1).at("largest_folders"), json::array());
}

TEST_F(StorageSummary, CanBeLimitedToOneDrive) {
  EXPECT_EQ(each(result("storage_summary", {{"drive", "Beta"}}).at("drives"), "drive"),
            Names{"Beta"});
}

TEST_F(ProposeCleanup, ProposesDuplicatesAndStaleFilesAndDeletesNothing) {
  putBytes(alpha("twice"), 50);
  putBytes(beta("twice"), 50);
  putBytes(alpha("stale"), 70);
  putBytes(alpha("stale and small"), 10);
  age(alpha("stale"), 10 * 24);
  age(alpha("stale and small"), 10 * 24);
  const json proposal =
      result("propose_cleanup", {{"stale_after_days", 10}, {"minimum_bytes", 20}});
  EXPECT_EQ(each(proposal.at("duplicates"), "name"), Names{"twice"});
  EXPECT_EQ(proposal.at("duplicate_bytes"), 50);
  EXPECT_EQ(each(proposal.at("stale_files"), "path"), Names{"stale"});
  EXPECT_EQ(proposal.at("stale_bytes"), 70);
  EXPECT_EQ(proposal.at("total_stale_files"), 1);
  EXPECT_TRUE(fs::exists(alpha("stale")));
  EXPECT_TRUE(fs::exists(beta("twice")));
}

TEST_F(ProposeCleanup, FileWithADateInTheFutureCountsAsChangedToday) {
  putBytes(alpha("future"), 50);
  age(alpha("future"), -48);
  const json tomorrow = result("propose_cleanup", {{"stale_after_days", 1}, {"minimum_bytes", 1}});
  EXPECT_EQ(tomorrow.at("total_stale_files"), 0);
  const json any = result("propose_cleanup", {{"stale_after_days", 0}, {"minimum_bytes", 1}});
  EXPECT_EQ(any.at("total_stale_files"), 1);
}

TEST_F(DriveStatus, ReturnsWhatEachDriveHoldsAndPermits) {
  putBytes(alpha("a/b"), 30);
  putBytes(alpha("c"), 12);
  const json drives = result("drive_status").at("drives");
  ASSERT_EQ(each(drives, "name"), (Names{"Alpha", "Beta"}));
  const json& first = drives.at(0);
  EXPECT_EQ(first.at("connected"), true);
  EXPECT_EQ(first.at("healthy"), true);
  EXPECT_EQ(first.at("files_on_this_mac"), 2);
  EXPECT_EQ(first.at("bytes_on_this_mac"), 42);
  EXPECT_FALSE(first.contains("counted_completely"));
  EXPECT_EQ(first.at("agent_may_read"), true);
  EXPECT_EQ(first.at("agent_may_write"), true);
}

TEST_F(DriveStatus, DriveWithoutItsFolderIsNotHealthy) {
  fs::remove_all(beta());
  const json drives = result("drive_status").at("drives");
  EXPECT_EQ(drives.at(0).at("healthy"), true);
  EXPECT_EQ(drives.at(1).at("healthy"), false);
}

TEST_F(DriveStatusReadOnly, ReportsThatWritingIsNotPermitted) {
  for (const json& drive : result("drive_status").at("drives")) {
    EXPECT_EQ(drive.at("agent_may_write"), false);
  }
}

}  // namespace
