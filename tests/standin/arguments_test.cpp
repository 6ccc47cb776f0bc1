// Arguments are checked before a tool runs. The defaults are those that agents were promised.
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

TEST_F(Arguments, ValueOfAnotherTypeIsRefused) {
  EXPECT_EQ(refusal("search_drives", {{"query", 5}}), "The argument \"query\" must be a string.");
  EXPECT_EQ(refusal("list_directory", {{"drive", json::array()}}),
            "The argument \"drive\" must be a string.");
  const json write{{"drive", "Alpha"}, {"path", "a"}, {"content", "text"}, {"dry_run", "yes"}};
  EXPECT_EQ(refusal("write_file", write), "The argument \"dry_run\" must be true or false.");
}

TEST_F(Arguments, NumberMustBeWholeAndNotNegative) {
  for (const json& limit : {json(-1), json(1.5), json(-2.0), json(1e300), json("5"), json(true)}) {
    EXPECT_EQ(refusal("recent_changes", {{"limit", limit}}),
              "The argument \"limit\" must be a whole number, 0 or above.")
        << limit;
  }
}

TEST_F(Arguments, NumberMayBeZeroOrVeryLarge) {
  putFile(alpha("note"), "");
  EXPECT_EQ(result("recent_changes", {{"limit", 0}}).at("changes").size(), 0);
  EXPECT_EQ(result("recent_changes", {{"limit", 18446744073709551615U}}).at("changes").size(), 1);
}

TEST_F(Arguments, UnknownDriveIsNamedWithTheConnectedDrives) {
  const std::string sentence = R"(There is no drive "Gamma"; connected are "Alpha", "Beta".)";
  EXPECT_EQ(refusal("list_directory", {{"drive", "Gamma"}}), sentence);
  EXPECT_EQ(refusal("recent_changes", {{"drive", "Gamma"}}), sentence);
}

TEST_F(Arguments, UnknownArgumentIsNamedWithThoseThatTheToolTakes) {
  EXPECT_EQ(refusal("search_drives", {{"query", "plan"}, {"Limit", 5}}),
            R"(There is no argument "Limit"; search_drives takes "query", "limit".)");
  EXPECT_EQ(refusal("drive_status", {{"colour", "green"}}),
            R"(There is no argument "colour"; drive_status takes none.)");
}

TEST_F(Arguments, NullMeansThatAnOptionalArgumentWasLeftOut) {
  putFile(alpha("note"), "");
  const json search{{"query", "note"}, {"limit", nullptr}};
  EXPECT_EQ(result("search_drives", search), result("search_drives", {{"query", "note"}}));
  EXPECT_EQ(result("storage_summary", {{"drive", nullptr}}).at("drives").size(), 2);
  const json write{{"drive", "Alpha"}, {"path", "new"}, {"content", ""}, {"dry_run", nullptr}};
  EXPECT_EQ(result("write_file", write).at("dry_run"), false);
}

TEST_F(Arguments, NullForARequiredArgumentMeansThatItIsMissing) {
  EXPECT_EQ(refusal("search_drives", {{"query", nullptr}}), "The argument \"query\" is missing.");
}

TEST_F(Arguments, WholeNumberMayBeWrittenAsAFraction) {
  for (const char* name : {"a1", "a2", "a3"}) putFile(alpha(name), "");
  for (const char* limit : {"2.0", "2e0", "20e-1"}) {
    const json found = result("search_drives", {{"query", "a"}, {"limit", json::parse(limit)}});
    EXPECT_EQ(found.at("results").size(), 2) << limit;
  }
}

TEST_F(Arguments, SearchReturnsFiftyResultsByDefault) {
  for (int i = 0; i < 51; ++i) putFile(alpha("note" + std::to_string(i)), "");
  EXPECT_EQ(result("search_drives", {{"query", "note"}}).at("results").size(), 50);
  EXPECT_EQ(result("search_drives", {{"query", "note"}, {"limit", 51}}).at("results").size(), 51);
}

TEST_F(Arguments, RecentChangesReturnsTwentyFiveByDefault) {
  for (int i = 0; i < 26; ++i) putFile(alpha("note" + std::to_string(i)), "");
  EXPECT_EQ(result("recent_changes").at("changes").size(), 25);
  EXPECT_EQ(result("recent_changes", {{"limit", 30}}).at("changes").size(), 26);
}

TEST_F(Arguments, StorageSummaryListsTenFilesByDefault) {
  for (int i = 0; i < 11; ++i) putFile(alpha("note" + std::to_string(i)), "");
  const json whole = result("storage_summary").at("drives").at(0);
  EXPECT_EQ(whole.at("largest_files").size(), 10);
  EXPECT_EQ(whole.at("files"), 11);
}

TEST_F(Arguments, FindDuplicatesIgnoresFilesBelow64KiBByDefault) {
  for (const auto& drive : {alpha(), beta()}) {
    putBytes(drive / "large", 65536);
    putBytes(drive / "small", 65535);
  }
  EXPECT_EQ(each(result("find_duplicates").at("groups"), "name"),
            std::vector<std::string>{"large"});
}

TEST_F(Arguments, FindDuplicatesReturnsTwentyFiveGroupsByDefault) {
  for (int i = 0; i < 26; ++i) {
    putFile(alpha("note" + std::to_string(i)), "text");
    putFile(beta("note" + std::to_string(i)), "text");
  }
  const json found = result("find_duplicates", {{"minimum_bytes", 1}});
  EXPECT_EQ(found.at("groups").size(), 25);
  EXPECT_EQ(found.at("total_groups"), 26);
}

TEST_F(Arguments, ReadFileReadsOneMebibyteByDefault) {
  putBytes(alpha("fits"), 1048576);
  putBytes(alpha("longer"), 1048577);
  const json longer{{"drive", "Alpha"}, {"path", "longer"}, {"max_bytes", 1048577}};
  EXPECT_EQ(result("read_file", {{"drive", "Alpha"}, {"path", "fits"}}).at("bytes"), 1048576);
  EXPECT_NE(refusal("read_file", {{"drive", "Alpha"}, {"path", "longer"}}).find("1048576"),
            std::string::npos);
  EXPECT_EQ(result("read_file", longer).at("bytes"), 1048577);
}

TEST_F(Arguments, ProposeCleanupListsFilesOfTenMebibytesAndOneYearByDefault) {
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
