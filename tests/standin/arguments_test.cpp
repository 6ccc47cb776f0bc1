// What is checked before a tool runs, and the defaults that the agent was promised.
#include <gtest/gtest.h>

#include "tests/standin/served_folders.h"

using nlohmann::json;

namespace {

class Arguments : public ServedFolders, public testing::Test {};

TEST_F(Arguments, MissingRequiredArgumentIsNamed) {
  EXPECT_EQ(refusal("search_drives"), "The argument \"query\" is missing.");
  EXPECT_EQ(refusal("read_file", {{"drive", "Alpha"}}), "The argument \"path\" is missing.");
  EXPECT_EQ(refusal("write_file", {{"drive", "Alpha"}, {"path", "a"}}),
            "The argument \"content\" is missing.");
  EXPECT_EQ(refusal("transfer_file", {{"from_drive", "Alpha"}, {"path", "a"}}),
            "The argument \"to_drive\" is missing.");
}

TEST_F(Arguments, WrongTypeIsRefused) {
  EXPECT_EQ(refusal("search_drives", {{"query", 5}}), "The argument \"query\" must be a string.");
  EXPECT_EQ(refusal("list_directory", {{"drive", json::array()}}),
            "The argument \"drive\" must be a string.");
  EXPECT_EQ(refusal("storage_summary", {{"drive", nullptr}}),
            "The argument \"drive\" must be a string.");
  const json write{{"drive", "Alpha"}, {"path", "a"}, {"content", "text"}, {"dry_run", "yes"}};
  EXPECT_EQ(refusal("write_file", write), "The argument \"dry_run\" must be true or false.");
}

TEST_F(Arguments, LimitMustBeAWholeNumberAboveZero) {
  for (const json& limit : {json(0), json(-1), json(1.5), json("5"), json(true),
                            json(std::uint64_t{18446744073709551615U})}) {
    EXPECT_EQ(refusal("recent_changes", {{"limit", limit}}),
              "The argument \"limit\" must be a whole number above 0.")
        << limit;
  }
}

TEST_F(Arguments, MinimumBytesMayBeZeroButNotBelow) {
  EXPECT_TRUE(result("find_duplicates", {{"minimum_bytes", 0}}).contains("groups"));
  EXPECT_EQ(refusal("find_duplicates", {{"minimum_bytes", -1}}),
            "The argument \"minimum_bytes\" must be 0 or a whole number above.");
}

TEST_F(Arguments, UnknownDriveIsNamedTogetherWithThoseThereAre) {
  const std::string sentence =
      R"(The argument "drive" names no connected drive: "Gamma"; there are: "Alpha", "Beta".)";
  EXPECT_EQ(refusal("list_directory", {{"drive", "Gamma"}}), sentence);
  EXPECT_EQ(refusal("recent_changes", {{"drive", "Gamma"}}), sentence);
}

TEST_F(Arguments, FurtherArgumentsAreIgnored) {
  EXPECT_TRUE(result("drive_status", {{"colour", "green"}}).contains("drives"));
}

TEST_F(Arguments, SearchShowsFiftyUnlessTold) {
  for (int i = 0; i < 51; ++i) putFile(alpha("note" + std::to_string(i)), "");
  EXPECT_EQ(result("search_drives", {{"query", "note"}}).at("results").size(), 50);
  EXPECT_EQ(result("search_drives", {{"query", "note"}, {"limit", 51}}).at("results").size(), 51);
}

TEST_F(Arguments, RecentChangesShowsTwentyFiveUnlessTold) {
  for (int i = 0; i < 26; ++i) putFile(alpha("note" + std::to_string(i)), "");
  EXPECT_EQ(result("recent_changes").at("changes").size(), 25);
  EXPECT_EQ(result("recent_changes", {{"limit", 30}}).at("changes").size(), 26);
}

TEST_F(Arguments, StorageSummaryListsTenFilesUnlessTold) {
  for (int i = 0; i < 11; ++i) putFile(alpha("note" + std::to_string(i)), "");
  const json whole = result("storage_summary").at("drives").at(0);
  EXPECT_EQ(whole.at("largest_files").size(), 10);
  EXPECT_EQ(whole.at("files"), 11);
}

TEST_F(Arguments, DuplicatesStartAtSixtyFourKibibytesUnlessTold) {
  for (const auto& drive : {alpha(), beta()}) {
    putBytes(drive / "large", 65536);
    putBytes(drive / "small", 65535);
  }
  EXPECT_EQ(each(result("find_duplicates").at("groups"), "name"),
            std::vector<std::string>{"large"});
}

TEST_F(Arguments, DuplicatesShowsTwentyFiveGroupsUnlessTold) {
  for (int i = 0; i < 26; ++i) {
    putFile(alpha("note" + std::to_string(i)), "text");
    putFile(beta("note" + std::to_string(i)), "text");
  }
  const json found = result("find_duplicates", {{"minimum_bytes", 1}});
  EXPECT_EQ(found.at("groups").size(), 25);
  EXPECT_EQ(found.at("total_groups"), 26);
}

TEST_F(Arguments, ReadFileTakesOneMebibyteUnlessTold) {
  putBytes(alpha("fits"), 1048576);
  putBytes(alpha("longer"), 1048577);
  const json longer{{"drive", "Alpha"}, {"path", "longer"}, {"max_bytes", 1048577}};
  EXPECT_EQ(result("read_file", {{"drive", "Alpha"}, {"path", "fits"}}).at("bytes"), 1048576);
  EXPECT_NE(refusal("read_file", {{"drive", "Alpha"}, {"path", "longer"}}).find("1048576"),
            std::string::npos);
  EXPECT_EQ(result("read_file", longer).at("bytes"), 1048577);
}

TEST_F(Arguments, CleanupProposesFilesOfTenMebibytesAndAYearUnlessTold) {
  const auto size = std::uintmax_t{10485760};
  for (const auto& [name, bytes, hours] :
       {std::tuple("old", size, 366 * 24), std::tuple("recent", size, 364 * 24),
        std::tuple("small", size - 1, 366 * 24)}) {
    putFile(alpha(name), "");
    std::filesystem::resize_file(alpha(name), bytes);
    age(alpha(name), hours);
  }
  EXPECT_EQ(each(result("propose_cleanup").at("stale_files"), "path"),
            std::vector<std::string>{"old"});
}

}  // namespace
