#include "tests/support/conversation.h"

#include <csignal>
#include <cstdlib>
#include <stdexcept>

#include "tests/support/private_mounts.h"
#include "tests/support/protocol_schema.h"

using nlohmann::json;

std::string request(std::string_view method, std::string_view id) {
  return R"({"jsonrpc":"2.0","id":)" + std::string(id) + R"(,"method":")" + std::string(method) +
         R"("})";
}

std::string toolCall(std::string_view params, std::string_view id) {
  return R"({"jsonrpc":"2.0","id":)" + std::string(id) + R"(,"method":"tools/call","params":)" +
         std::string(params) + "}";
}

json textResult(std::string_view text) {
  return {{"content", {{{"type", "text"}, {"text", text}}}}};
}

json errorResult(std::string_view message) {
  json result = textResult(message);
  result["isError"] = true;
  return result;
}

std::string nestedArrays(int depth) {
  const auto count = static_cast<std::size_t>(depth);
  return std::string(count, '[') + std::string(count, ']');
}

testing::AssertionResult contains(std::string_view text, std::string_view piece) {
  if (text.find(piece) != std::string_view::npos) return testing::AssertionSuccess();
  return testing::AssertionFailure() << "no " << piece << " in " << text.substr(0, 2000);
}

namespace {

// In continuous integration no test may be skipped for a reason that the machine's owner can
// change.
bool mountsAreRequired() {
#ifdef __linux__
  const char* continuousIntegration = std::getenv("CI");
  return continuousIntegration != nullptr && std::string_view(continuousIntegration) == "true";
#else
  return false;
#endif
}

}  // namespace

void Conversation::SetUp() {
  std::signal(SIGPIPE, SIG_IGN);
  endpointFile.publish(app.port());
  try {
    server = std::make_unique<ServerProcess>(home, setup);
  } catch (const PrivateMountsRefused& refused) {
    if (mountsAreRequired()) FAIL() << refused.what();
    GTEST_SKIP() << refused.what();
  }
}

void Conversation::TearDown() {
  if (server) {
    EXPECT_EQ(server->standardError(), "");
  }
}

void Conversation::sendLine(std::string_view line) {
  server->send(std::string(line) + "\n");
}

std::string Conversation::receiveUncheckedLine() {
  std::optional<std::string> line = server->readLine();
  if (!line) throw std::runtime_error("no reply");
  return *std::move(line);
}

std::string Conversation::receiveLine() {
  std::string line = receiveUncheckedLine();
  EXPECT_EQ(schemaViolation(line), "");
  return line;
}

json Conversation::receive() {
  return json::parse(receiveLine());
}

testing::AssertionResult Conversation::hasNoFurtherReply() {
  sendLine(request("one more", R"("one more")"));
  const json reply = receive();
  if (reply["id"] == "one more") return testing::AssertionSuccess();
  return testing::AssertionFailure() << "unexpected reply " << reply;
}

void Conversation::expectCleanExit() {
  server->closeInput();
  EXPECT_EQ(server->waitForExit().code, 0);
  EXPECT_EQ(server->unreadOutput(), "");
}

json Conversation::callTool(std::string_view name, const json& arguments) {
  sendLine(toolCall(json{{"name", name}, {"arguments", arguments}}.dump(), "7"));
  const json reply = receive();
  EXPECT_EQ(reply.size(), 3U) << reply;
  EXPECT_EQ(reply.at("jsonrpc"), "2.0");
  EXPECT_EQ(reply.at("id"), 7);
  return reply.at("result");
}

json Conversation::callWithScript(const ScriptedApp::Script& script) {
  json result;
  for (int attempt = 0; attempt < 100; ++attempt) {
    app.script({succeed(), script});
    const std::size_t call = app.connectionCount() + 1;
    result = callTool("search_drives");
    if (result != errorResult(unreadableReply)) break;
    app.waitUntilClosedByServer(call);  // by then the script has ended
    if (app.record(call).longestGap < ReplyWriter::lateGap) break;
  }
  return result;
}

json Conversation::callWithReply(std::string_view appReply) {
  return callWithScript(reply(std::string(appReply)));
}

std::string Conversation::callText(std::string_view appReply) {
  const json result = callWithReply(appReply);
  const std::string text = result.at("content").at(0).at("text").get<std::string>();
  EXPECT_EQ(result, textResult(text));
  return text;
}

LaunchConversation::LaunchConversation() {
  setup.overUsrBin = launches.recordingFolder();
}

void LaunchConversation::SetUp() {
  Conversation::SetUp();
  endpointFile.remove();
}

UnlaunchableConversation::UnlaunchableConversation() {
  setup.overUsrBin = launches.brokenFolder();
}
