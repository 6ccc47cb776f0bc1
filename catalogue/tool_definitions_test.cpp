#include "catalogue/tool_definitions.h"

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "catalogue/tools.h"
#include "tests/unit/written.h"

// The end-to-end tests compare the texts with tools.json. These tests compare the JSON with the
// table.

namespace {

nlohmann::json definitions() {
  return nlohmann::json::parse(toolDefinitions());
}

TEST(ToolDefinitions, ListAllToolsInOrder) {
  std::vector<std::string> names;
  for (const auto& tool : definitions()) names.push_back(tool.at("name"));
  EXPECT_EQ(names, (std::vector<std::string>{"search_drives", "list_directory", "get_file_info",
                                             "read_file", "write_file", "find_duplicates",
                                             "storage_summary", "recent_changes", "transfer_file",
                                             "propose_cleanup", "drive_status"}));
}

TEST(ToolDefinitions, HaveTheTextsOfTheTableAndNothingElse) {
  const nlohmann::json all = definitions();
  ASSERT_EQ(all.size(), std::size(AgentProtocol::tools));
  for (std::size_t i = 0; i < all.size(); ++i) {
    const AgentProtocol::Tool& tool = AgentProtocol::tools[i];
    nlohmann::json properties = nlohmann::json::object();
    for (const auto& [name, property] : tool.properties) {
      properties[std::string(name)] = {{"type", property.type},
                                       {"description", property.description}};
    }
    nlohmann::json required = nlohmann::json::array();
    for (const std::string_view name : tool.required) required.push_back(name);
    const nlohmann::json schema = {
        {"type", "object"}, {"properties", properties}, {"required", required}};
    const nlohmann::json expected = {
        {"name", tool.name}, {"description", tool.description}, {"inputSchema", schema}};
    EXPECT_EQ(all[i], expected);
  }
}

TEST(ToolDefinitions, WithoutParametersHaveAnEmptySchema) {
  EXPECT_EQ(definitions().back().at("inputSchema"),
            nlohmann::json::parse(R"({"type":"object","properties":{},"required":[]})"));
}

TEST(ToolDefinitions, WithOnlyOptionalParametersRequireNothing) {
  const std::set<std::string> optional{"find_duplicates", "storage_summary", "recent_changes",
                                       "propose_cleanup", "drive_status"};
  for (const auto& tool : definitions()) {
    EXPECT_EQ(tool.at("inputSchema").at("required").empty(), optional.contains(tool.at("name")))
        << tool;
  }
}

TEST(ToolDefinitions, KeepTheOrderOfRequiredParameters) {
  EXPECT_EQ(definitions().at(8).at("inputSchema").at("required"),
            (nlohmann::json{"from_drive", "path", "to_drive"}));
  EXPECT_EQ(definitions().at(4).at("inputSchema").at("required"),
            (nlohmann::json{"drive", "path", "content"}));
}

TEST(ToolDefinitions, HaveDescriptionsOfThePublishedLengths) {
  std::vector<std::size_t> lengths;
  for (const auto& tool : definitions()) {
    lengths.push_back(tool.at("description").get_ref<const std::string&>().size());
  }
  EXPECT_EQ(lengths,
            (std::vector<std::size_t>{147, 51, 187, 124, 231, 253, 174, 137, 172, 201, 132}));
}

TEST(ToolDefinitions, HaveParametersOfThePublishedTypes) {
  const std::map<std::string, std::string> types = {
      {"query", "string"},     {"drive", "string"},          {"path", "string"},
      {"content", "string"},   {"from_drive", "string"},     {"to_drive", "string"},
      {"to_folder", "string"}, {"limit", "integer"},         {"max_bytes", "integer"},
      {"dry_run", "boolean"},  {"minimum_bytes", "integer"}, {"stale_after_days", "integer"},
      {"move", "boolean"}};
  std::size_t parameters = 0;
  for (const auto& tool : definitions()) {
    for (const auto& [name, property] : tool.at("inputSchema").at("properties").items()) {
      EXPECT_EQ(property.at("type"), types.at(name)) << name;
      ++parameters;
    }
  }
  EXPECT_EQ(parameters, 27U);
}

TEST(ToolDefinitions, AreCompactJson) {
  EXPECT_EQ(compact(toolDefinitions()), toolDefinitions());
}

TEST(ToolDefinitions, AreTheSameTextEachTime) {
  EXPECT_EQ(toolDefinitions().data(), toolDefinitions().data());
}

TEST(Tools, HaveUniqueParametersAndRequireOnlyThese) {
  for (const AgentProtocol::Tool& tool : AgentProtocol::tools) {
    std::set<std::string_view> names;
    for (const auto& [name, property] : tool.properties) EXPECT_TRUE(names.insert(name).second);
    for (const std::string_view name : tool.required) EXPECT_TRUE(names.contains(name)) << name;
  }
}

}  // namespace
