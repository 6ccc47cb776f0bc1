#include <gtest/gtest.h>
#include <sys/stat.h>

#include "tests/standin/served_folders.h"

namespace fs = std::filesystem;
using nlohmann::json;

namespace {

class ReadFile : public ServedFolders, public testing::Test {
 protected:
  static json at(const std::string& path) { return {{"drive", "Alpha"}, {"path", path}}; }
};

TEST_F(ReadFile, ReturnsTheTextUnchanged) {
  using namespace std::string_literals;
  const std::string text = "\xEF\xBB\xBFone\r\ntwo \"\\/\" \u2014 \U0001F40B\n\0end"s;
  putFile(alpha("a/note.txt"), text);
  const json read = result("read_file", at("a/note.txt"));
  EXPECT_EQ(read.at("content"), text);
  EXPECT_EQ(read.at("bytes"), text.size());
}

TEST_F(ReadFile, ReturnsEmptyTextForAnEmptyFile) {
  putFile(alpha("empty"), "");
  EXPECT_EQ(result("read_file", at("empty")).at("content"), "");
}

TEST_F(ReadFile, RefusesMoreThanMaxBytes) {
  putFile(alpha("note"), "12345");
  json call = at("note");
  call["max_bytes"] = 4;
  EXPECT_EQ(refusal("read_file", call),
            R"("note" on the drive "Alpha" is longer than the 4 bytes that this call may read.)");
  call["max_bytes"] = 5;
  EXPECT_EQ(result("read_file", call).at("content"), "12345");
}

TEST_F(ReadFile, RefusesWhatIsNotUtf8) {
  for (const char* bytes : {"caf\xE9", "\xFF\xFE", "cut \xE2\x80", "\xED\xA0\x80", "\xC0\xAF"}) {
    putFile(alpha("note"), bytes);
    EXPECT_EQ(refusal("read_file", at("note")),
              R"("note" on the drive "Alpha" is not UTF-8 text.)");
  }
}

TEST_F(ReadFile, RefusesMoreThanAReplyCanHold) {
  for (const std::size_t bytes : {standin::maxReplyBytes + 1, standin::maxReplyBytes}) {
    putBytes(alpha("note"), bytes);
    json call = at("note");
    call["max_bytes"] = 1'000'000'000;
    EXPECT_NE(refusal("read_file", call).find("longer than"), std::string::npos) << bytes;
  }
}

TEST_F(ReadFile, RefusesWhatIsNotARegularFile) {
  fs::create_directory(alpha("folder"));
  ASSERT_EQ(::mkfifo(alpha("pipe").c_str(), 0600), 0);
  EXPECT_EQ(refusal("read_file", at("folder")), R"("folder" on the drive "Alpha" is not a file.)");
  EXPECT_EQ(refusal("read_file", at("pipe")), R"("pipe" on the drive "Alpha" is not a file.)");
  EXPECT_EQ(refusal("read_file", at("none")), R"(There is no file "none" on the drive "Alpha".)");
}

}  // namespace
