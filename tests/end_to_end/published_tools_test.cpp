#include <fstream>

#include "tests/support/conversation.h"

namespace {

using nlohmann::json;
using nlohmann::ordered_json;

// The tools as agents see them, as they were last reviewed: catalogue/tools.json.
ordered_json reviewed() {
  std::ifstream file(QUILLMARK_REVIEWED_TOOLS);
  return ordered_json::parse(file);
}

class PublishedTools : public Conversation {};

TEST_F(PublishedTools, AreThoseReviewedWithTheirMembersInOrder) {
  sendLine(request("tools/list"));
  EXPECT_EQ(ordered_json::parse(receiveLine()).at("result").dump(2), reviewed().dump(2))
      << "If agents are meant to see this difference, change catalogue/tools.json too.";
}

TEST_F(PublishedTools, AreWrittenAsUtf8) {
  sendLine(request("tools/list"));
  EXPECT_TRUE(contains(receiveLine(), "newest first \xE2\x80\x94 useful for \\\"what did I"));
}

TEST_F(PublishedTools, AreListedWithoutTheApplication) {
  endpointFile.remove();
  sendLine(request("tools/list"));
  EXPECT_EQ(receive().at("result"), json(reviewed()));
}

TEST_F(PublishedTools, AreNotCheckedInACall) {
  app.script({succeed(), refuse("no such tool here")});
  EXPECT_EQ(callTool("no_such_tool", {{"anything", 1}}), errorResult("no such tool here"));
  EXPECT_EQ(json::parse(app.record(1).received).at("tool"), "no_such_tool");
}

TEST_F(PublishedTools, AddNoDefaultsToACall) {
  callTool("search_drives", {{"query", "invoice"}});
  EXPECT_EQ(json::parse(app.record(1).received).at("arguments"), json({{"query", "invoice"}}));
}

}  // namespace
