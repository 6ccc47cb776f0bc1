#include "tests/support/conversation.h"

#include <csignal>
#include <cstdlib>
#include <stdexcept>

#include "tests/support/private_mounts.h"

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

json failure(std::string_view message) {
  json result = textResult(message);
  result["isError"] = true;
  return result;
}

std::string nestedArrays(int depth) {
  const auto count = static_cast<std::size_t>(depth);
  return std::string(count, '[') + std::string(count, ']');
}

testing::AssertionResult has(std::string_view text, std::string_view piece) {
  if (text.find(piece) != std::string_view::npos) return testing::AssertionSuccess();
  return testing::AssertionFailure() << "no " << piece << " in " << text.substr(0, 2000);
}

namespace {

// Nobody reads what was skipped in continuous integration, so it is a failure there, unless
// the system has no such mounts at all.
bool mountsAreOwed() {
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
    if (mountsAreOwed()) FAIL() << "private mounts are refused: " << refused.what();
    GTEST_SKIP() << "this machine allows no private mounts: " << refused.what();
  }
}

void Conversation::TearDown() {
  if (server) {
    EXPECT_EQ(server->standardError(), "");
  }
}

void Conversation::say(std::string_view line) {
  server->send(std::string(line) + "\n");
}

std::string Conversation::hearLine(std::chrono::milliseconds within) {
  std::optional<std::string> line = server->readLine(within);
  if (!line) throw std::runtime_error("no reply in time");
  return *std::move(line);
}

json Conversation::hear(std::chrono::milliseconds within) {
  return json::parse(hearLine(within));
}

// Lines are handled in their order, so an answer to one more request, and nothing before
// it, shows that those before it had none.
testing::AssertionResult Conversation::staysSilent() {
  say(request("silence-ends-here", R"("silence-ends-here")"));
  const json reply = hear();
  if (reply["id"] == "silence-ends-here") return testing::AssertionSuccess();
  return testing::AssertionFailure() << "unexpected reply " << reply;
}

void Conversation::sayGoodbye() {
  const auto start = Clock::now();
  server->closeInput();
  const ExitStatus status = server->waitForExit();
  EXPECT_EQ(status.code, 0);
  EXPECT_LT(Seconds(Clock::now() - start), Seconds(2));
  EXPECT_EQ(server->unreadOutput(), "");
}

json Conversation::callTool(std::string_view name, const json& arguments,
                            std::chrono::milliseconds within) {
  say(toolCall(json{{"name", name}, {"arguments", arguments}}.dump(), "7"));
  const json reply = hear(within);
  EXPECT_EQ(reply.size(), 3U) << reply;
  EXPECT_EQ(reply.at("jsonrpc"), "2.0");
  EXPECT_EQ(reply.at("id"), 7);
  return reply.at("result");
}

json Conversation::callAnsweredWith(std::string_view appReply) {
  app.script({answer(), reply(std::string(appReply))});
  return callTool("search_drives");
}

std::string Conversation::callGivingText(std::string_view appReply) {
  const json result = callAnsweredWith(appReply);
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
