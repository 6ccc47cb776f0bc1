// read_file and write_file.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "tests/standin/served_folders.h"

namespace fs = std::filesystem;
using nlohmann::json;

namespace {

class Text : public ServedFolders, public testing::Test {
 protected:
  explicit Text(bool writable = true) : ServedFolders(writable) {}

  static json at(const std::string& path) { return {{"drive", "Alpha"}, {"path", path}}; }
  static json writing(const std::string& path, const std::string& content, bool dryRun = false) {
    return {{"drive", "Alpha"}, {"path", path}, {"content", content}, {"dry_run", dryRun}};
  }
};
class ReadFile : public Text {};
class WriteFile : public Text {};
class WriteFileReadOnly : public Text {
 protected:
  WriteFileReadOnly() : Text(false) {}
};

TEST_F(ReadFile, GivesTheTextAsItIs) {
  using namespace std::string_literals;
  const std::string text = "\xEF\xBB\xBFone\r\ntwo \"\\/\" \u2014 \U0001F40B\n\0end"s;
  putFile(alpha("a/note.txt"), text);
  const json read = result("read_file", at("a/note.txt"));
  EXPECT_EQ(read.at("content"), text);
  EXPECT_EQ(read.at("bytes"), text.size());
}

TEST_F(ReadFile, EmptyFileIsEmptyText) {
  putFile(alpha("empty"), "");
  EXPECT_EQ(result("read_file", at("empty")).at("content"), "");
}

TEST_F(ReadFile, RefusesBeyondMaxBytes) {
  putFile(alpha("note"), "12345");
  json call = at("note");
  call["max_bytes"] = 4;
  EXPECT_EQ(refusal("read_file", call),
            "\"note\" is larger than the 4 bytes that max_bytes allows; ask for more to read it.");
  call["max_bytes"] = 5;
  EXPECT_EQ(result("read_file", call).at("content"), "12345");
}

TEST_F(ReadFile, RefusesWhatIsNotUtf8) {
  for (const char* bytes : {"caf\xE9", "\xFF\xFE", "cut \xE2\x80", "\xED\xA0\x80", "\xC0\xAF"}) {
    putFile(alpha("note"), bytes);
    EXPECT_EQ(refusal("read_file", at("note")),
              "\"note\" is not UTF-8 text, so it can't be read as text.");
  }
}

TEST_F(ReadFile, RefusesWhatNoReplyCanCarry) {
  putBytes(alpha("too long"), standin::mostReplyBytes + 1);
  putBytes(alpha("long with envelope"), standin::mostReplyBytes);
  for (const char* name : {"too long", "long with envelope"}) {
    json call = at(name);
    call["max_bytes"] = 1'000'000'000;
    EXPECT_NE(refusal("read_file", call).find("fit into one reply"), std::string::npos) << name;
  }
}

TEST_F(ReadFile, RefusesWhatIsNoFile) {
  fs::create_directory(alpha("folder"));
  ASSERT_EQ(::mkfifo(alpha("pipe").c_str(), 0600), 0);
  EXPECT_EQ(refusal("read_file", at("folder")),
            "\"folder\" on the drive \"Alpha\" is a folder, not a file.");
  EXPECT_EQ(refusal("read_file", at("pipe")), "\"pipe\" is not an ordinary file.");
  EXPECT_EQ(refusal("read_file", at("none")), "There is no file \"none\" on the drive \"Alpha\".");
}

TEST_F(WriteFile, MakesAFileAndTheFoldersAboveIt) {
  const json report = result("write_file", writing("a/b/note.txt", "text \u2014\n"));
  EXPECT_EQ(contentOf(alpha("a/b/note.txt")), "text \u2014\n");
  EXPECT_EQ(report.at("action"), "create");
  EXPECT_EQ(report.at("bytes"), 9);
  EXPECT_FALSE(report.contains("kept_for_undo"));
}

TEST_F(WriteFile, KeepsWhatItReplaces) {
  putFile(alpha("a/note.txt"), "first");
  const json second = result("write_file", writing("a/note.txt", "second"));
  const json third = result("write_file", writing("a/note.txt", "third"));
  EXPECT_EQ(contentOf(alpha("a/note.txt")), "third");
  EXPECT_EQ(second.at("action"), "replace");
  EXPECT_EQ(second.at("replaced_bytes"), 5);
  EXPECT_EQ(contentOf(alpha(second.at("kept_for_undo").get<std::string>())), "first");
  EXPECT_EQ(contentOf(alpha(third.at("kept_for_undo").get<std::string>())), "second");
}

TEST_F(WriteFile, LeavesNoUnfinishedFileBehind) {
  result("write_file", writing("note.txt", "text"));
  EXPECT_EQ(std::distance(fs::directory_iterator(alpha()), fs::directory_iterator()), 1);
}

TEST_F(WriteFile, KeepsThePermissionsOfWhatItReplaces) {
  putFile(alpha("run.sh"), "old");
  fs::permissions(alpha("run.sh"), fs::perms::owner_all);
  result("write_file", writing("run.sh", "new"));
  EXPECT_EQ(fs::status(alpha("run.sh")).permissions(), fs::perms::owner_all);
}

TEST_F(WriteFile, DryRunOnlyReports) {
  putFile(alpha("note.txt"), "old");
  const json replacing = result("write_file", writing("note.txt", "newer", true));
  const json creating = result("write_file", writing("a/other.txt", "text", true));
  EXPECT_EQ(replacing.at("action"), "replace");
  EXPECT_EQ(replacing.at("dry_run"), true);
  EXPECT_EQ(replacing.at("bytes"), 5);
  EXPECT_EQ(creating.at("action"), "create");
  EXPECT_EQ(contentOf(alpha("note.txt")), "old");
  EXPECT_EQ(std::distance(fs::directory_iterator(alpha()), fs::directory_iterator()), 1);
}

TEST_F(WriteFile, RefusesAFileThatChangedSinceItWasRead) {
  putFile(alpha("note.txt"), "one");
  result("read_file", at("note.txt"));
  putFile(alpha("note.txt"), "two");
  const std::string sentence =
      "\"note.txt\" on the drive \"Alpha\" has changed since it was read; "
      "read it again before writing.";
  EXPECT_EQ(refusal("write_file", writing("note.txt", "mine")), sentence);
  EXPECT_EQ(refusal("write_file", writing("note.txt", "mine", true)), sentence);
  EXPECT_EQ(contentOf(alpha("note.txt")), "two");
}

TEST_F(WriteFile, GoesAheadOnceTheChangeHasBeenRead) {
  putFile(alpha("note.txt"), "one");
  result("read_file", at("note.txt"));
  putFile(alpha("note.txt"), "longer than before");
  refusal("write_file", writing("note.txt", "mine"));
  result("read_file", at("note.txt"));
  result("write_file", writing("note.txt", "mine"));
  EXPECT_EQ(contentOf(alpha("note.txt")), "mine");
}

TEST_F(WriteFile, ItsOwnWritingIsNoChange) {
  putFile(alpha("note.txt"), "one");
  result("read_file", at("note.txt"));
  result("write_file", writing("note.txt", "two"));
  result("write_file", writing("note.txt", "three"));
  EXPECT_EQ(contentOf(alpha("note.txt")), "three");
}

TEST_F(WriteFile, NoticesAChangeAfterItsOwnWriting) {
  result("write_file", writing("note.txt", "mine"));
  putFile(alpha("note.txt"), "somebody else's");
  EXPECT_NE(refusal("write_file", writing("note.txt", "mine again")).find("has changed"),
            std::string::npos);
}

TEST_F(WriteFile, MayMakeAFileAnewThatWasRemovedAfterReading) {
  putFile(alpha("note.txt"), "one");
  result("read_file", at("note.txt"));
  fs::remove(alpha("note.txt"));
  EXPECT_EQ(result("write_file", writing("note.txt", "two")).at("action"), "create");
}

TEST_F(WriteFile, RefusesFoldersAndPathsThroughFiles) {
  putFile(alpha("file"), "text");
  fs::create_directory(alpha("folder"));
  for (const bool dryRun : {true, false}) {
    EXPECT_EQ(refusal("write_file", writing("folder", "x", dryRun)),
              "\"folder\" on the drive \"Alpha\" exists and is not a file.");
    EXPECT_EQ(refusal("write_file", writing("file/below/note", "x", dryRun)),
              "\"file/below/note\" on the drive \"Alpha\" can't be written: "
              "\"file\" is not a folder.");
    EXPECT_EQ(refusal("write_file", writing("", "x", dryRun)),
              "A file to write needs a path within the drive.");
  }
}

TEST_F(WriteFile, ReplacesNothingWhenTheUndoFolderIsALink) {
  putFile(alpha("note.txt"), "old");
  fs::create_directory(outside("elsewhere"));
  fs::create_directory_symlink(outside("elsewhere"), alpha(".quillmark-undo"));
  EXPECT_NE(refusal("write_file", writing("note.txt", "new")).find("nothing was replaced"),
            std::string::npos);
  EXPECT_EQ(contentOf(alpha("note.txt")), "old");
  EXPECT_TRUE(fs::is_empty(outside("elsewhere")));
}

TEST_F(WriteFile, TakesManyMegabytes) {
  const std::string text(20'000'000, 'q');
  EXPECT_EQ(result("write_file", writing("large.txt", text)).at("bytes"), text.size());
  EXPECT_EQ(fs::file_size(alpha("large.txt")), text.size());
}

TEST_F(WriteFileReadOnly, IsRefusedEvenAsADryRun) {
  for (const bool dryRun : {true, false}) {
    EXPECT_EQ(refusal("write_file", writing("note.txt", "text", dryRun)),
              "The drive \"Alpha\" may only be read; nothing was written.");
  }
  EXPECT_TRUE(fs::is_empty(alpha()));
}

}  // namespace
