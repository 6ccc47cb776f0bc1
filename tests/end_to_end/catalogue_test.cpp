#include <algorithm>
#include <fstream>
#include <map>
#include <vector>

#include "tests/support/conversation.h"

namespace {

using nlohmann::json;
using nlohmann::ordered_json;

// What agents are told of the tools, as it was last reviewed: catalogue/tools.json.
ordered_json reviewed() {
  std::ifstream file(QUILLMARK_REVIEWED_TOOLS);
  return ordered_json::parse(file);
}

class Catalogue : public Conversation {
 protected:
  json tools() {
    say(request("tools/list"));
    return hear().at("result").at("tools");
  }

  json tool(const std::string& name) {
    const json all = tools();
    const auto found =
        std::ranges::find(all, json(name), [](const json& t) { return t.at("name"); });
    return found == all.end() ? json() : *found;
  }

  json required(const std::string& name) { return tool(name).at("inputSchema").at("required"); }
};

TEST_F(Catalogue, HasElevenToolsInItsOrder) {
  std::vector<std::string> names;
  for (const json& entry : tools()) names.push_back(entry.at("name"));
  EXPECT_EQ(names, (std::vector<std::string>{"search_drives", "list_directory", "get_file_info",
                                             "read_file", "write_file", "find_duplicates",
                                             "storage_summary", "recent_changes", "transfer_file",
                                             "propose_cleanup", "drive_status"}));
}

TEST_F(Catalogue, IsAsReviewedWithEveryMemberInItsPlace) {
  say(request("tools/list"));
  EXPECT_EQ(ordered_json::parse(hearLine()).at("result").dump(2), reviewed().dump(2))
      << "If agents are meant to see this difference, change catalogue/tools.json too.";
}

TEST_F(Catalogue, DescriptionsHaveTheirPublishedLengths) {
  const std::vector<std::size_t> lengths = {147, 51, 187, 124, 231, 253, 174, 137, 172, 201, 132};
  std::vector<std::size_t> heard;
  for (const json& entry : tools()) {
    heard.push_back(entry.at("description").get<std::string>().size());
  }
  EXPECT_EQ(heard, lengths);
}

TEST_F(Catalogue, EmDashesAndQuotesArriveAsThemselves) {
  const auto description = tool("recent_changes").at("description").get<std::string>();
  EXPECT_TRUE(has(description, "newest first \xE2\x80\x94 useful"));
  EXPECT_TRUE(has(description, "\"what did I touch this week\""));
  say(request("tools/list"));
  EXPECT_TRUE(has(hearLine(), "newest first \xE2\x80\x94 useful for \\\"what did I"));
}

TEST_F(Catalogue, ToolWithoutParametersHasEmptyPropertiesAndRequired) {
  EXPECT_EQ(tool("drive_status").at("inputSchema"),
            json::parse(R"({"type":"object","properties":{},"required":[]})"));
}

TEST_F(Catalogue, ToolsWithOptionalParametersAloneRequireNothing) {
  for (const char* name :
       {"find_duplicates", "storage_summary", "recent_changes", "propose_cleanup"}) {
    EXPECT_EQ(required(name), json::array()) << name;
  }
}

TEST_F(Catalogue, RequiredNamesKeepTheirOrder) {
  EXPECT_EQ(required("transfer_file"), json({"from_drive", "path", "to_drive"}));
  EXPECT_EQ(required("write_file"), json({"drive", "path", "content"}));
}

TEST_F(Catalogue, ParametersHaveTheirTypes) {
  const std::map<std::string, std::string> types = {
      {"query", "string"},     {"drive", "string"},          {"path", "string"},
      {"content", "string"},   {"from_drive", "string"},     {"to_drive", "string"},
      {"to_folder", "string"}, {"limit", "integer"},         {"max_bytes", "integer"},
      {"dry_run", "boolean"},  {"minimum_bytes", "integer"}, {"stale_after_days", "integer"},
      {"move", "boolean"}};
  std::size_t parameters = 0;
  for (const json& entry : tools()) {
    for (const auto& [name, property] : entry.at("inputSchema").at("properties").items()) {
      EXPECT_EQ(property.at("type"), types.at(name)) << name;
      ++parameters;
    }
  }
  EXPECT_EQ(parameters, 27U);
}

TEST_F(Catalogue, ParameterHasTypeAndDescriptionAlone) {
  for (const json& entry : tools()) {
    EXPECT_EQ(entry.size(), 3U);
    EXPECT_EQ(entry.at("inputSchema").size(), 3U);
    for (const json& property : entry.at("inputSchema").at("properties")) {
      EXPECT_EQ(property.size(), 2U);
      EXPECT_TRUE(property.contains("type") && property.contains("description")) << property;
    }
  }
}

TEST_F(Catalogue, IsTheSameEachTime) {
  EXPECT_EQ(tools(), tools());
}

TEST_F(Catalogue, IsTheSameWhenTheApplicationIsNotRunning) {
  endpointFile.remove();
  EXPECT_EQ(tools(), json(reviewed()).at("tools"));
}

TEST_F(Catalogue, IsNotConsultedForACall) {
  app.script({answer(), refuse("no such tool here")});
  EXPECT_EQ(callTool("no_such_tool", {{"anything", 1}}), failure("no such tool here"));
  EXPECT_EQ(json::parse(app.record(1).received).at("tool"), "no_such_tool");
}

TEST_F(Catalogue, AddsNoDefaultsToACall) {
  callTool("search_drives", {{"query", "invoice"}});
  EXPECT_EQ(json::parse(app.record(1).received).at("arguments"), json({{"query", "invoice"}}));
}

}  // namespace
