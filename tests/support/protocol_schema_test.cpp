#include "tests/support/protocol_schema.h"

#include <gtest/gtest.h>

namespace {

// A result's line, and an error's.
std::string withResult(const std::string& result) {
  return R"({"jsonrpc":"2.0","id":1,"result":)" + result + "}";
}
std::string withError(const std::string& error) {
  return R"({"jsonrpc":"2.0","id":1,"error":)" + error + "}";
}
std::string withTool(const std::string& tool) {
  return withResult(R"({"tools":[)" + tool + "]}");
}

const std::string emptyTool =
    R"({"name":"a","description":"b","inputSchema":{"type":"object","properties":{}}})";

TEST(ProtocolSchema, AcceptsEachKindOfReply) {
  for (const std::string& line :
       {withResult(R"({"protocolVersion":"2024-11-05","capabilities":{"tools":{}},)"
                   R"("serverInfo":{"name":"a","version":"1"}})"),
        withTool(emptyTool), withResult(R"({"content":[{"type":"text","text":""}]})"),
        withResult(R"({"content":[{"type":"text","text":"a"}],"isError":true})"),
        withError(R"({"code":-32601,"message":"a"})")}) {
    EXPECT_EQ(schemaViolation(line), "") << line;
  }
}

TEST(ProtocolSchema, RejectsABrokenEnvelope) {
  for (const std::string line :
       {"", "null", "[]", "{}", "{", R"({"jsonrpc":"2.0","id":1})",
        R"({"jsonrpc":"1.0","id":1,"error":{"code":1,"message":"a"}})",
        R"({"jsonrpc":"2.0","error":{"code":1,"message":"a"}})",
        R"({"id":1,"error":{"code":1,"message":"a"}})",
        R"({"jsonrpc":"2.0","id":1,"error":{"code":1,"message":"a"},"result":{}})"}) {
    EXPECT_NE(schemaViolation(line), "") << line;
  }
}

TEST(ProtocolSchema, RejectsAWrongError) {
  for (const std::string error :
       {"{}", R"("a")", R"({"code":"1","message":"a"})", R"({"code":1.5,"message":"a"})",
        R"({"code":1,"message":null})", R"({"code":1,"message":"a","more":1})"}) {
    EXPECT_NE(schemaViolation(withError(error)), "") << error;
  }
}

TEST(ProtocolSchema, RejectsAWrongResultOfInitialize) {
  const std::string start = R"({"protocolVersion":)";
  for (const std::string rest :
       {R"(1,"capabilities":{},"serverInfo":{"name":"a","version":"1"}})",
        R"("1","serverInfo":{"name":"a","version":"1"}})", R"("1","capabilities":{}})",
        R"("1","capabilities":{"tools":[]},"serverInfo":{"name":"a","version":"1"}})",
        R"("1","capabilities":{},"serverInfo":{"name":"a"}})"}) {
    EXPECT_NE(schemaViolation(withResult(start + rest)), "") << rest;
  }
}

TEST(ProtocolSchema, RejectsAWrongTool) {
  for (const std::string tool :
       {R"("a")", R"({"name":"a"})", R"({"inputSchema":{"type":"object"}})",
        R"({"name":"a","inputSchema":{"type":"array"}})",
        R"({"name":"a","inputSchema":{"type":"object","properties":[]}})",
        R"({"name":"a","inputSchema":{"type":"object","properties":{"b":{"type":1}}}})",
        R"({"name":"a","inputSchema":{"type":"object","required":[1]}})"}) {
    EXPECT_NE(schemaViolation(withTool(tool)), "") << tool;
  }
  EXPECT_NE(schemaViolation(withResult(R"({"tools":{}})")), "");
}

TEST(ProtocolSchema, RejectsAWrongResultOfACall) {
  for (const std::string result :
       {"{}", R"({"content":{}})", R"({"content":[{"type":"image","text":"a"}]})",
        R"({"content":[{"type":"text"}]})", R"({"content":[{"type":"text","text":1}]})",
        R"({"content":[],"isError":"true"})"}) {
    EXPECT_NE(schemaViolation(withResult(result)), "") << result;
  }
}

}  // namespace
