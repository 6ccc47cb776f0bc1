#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

#include "tests/support/endpoint_file.h"
#include "tests/support/launches.h"
#include "tests/support/scripted_app.h"
#include "tests/support/scripts.h"
#include "tests/support/server_process.h"
#include "tests/support/temporary_home.h"

/// The bridge's own messages for the agent.
inline constexpr std::string_view couldNotBeStarted =
    "Quillmark could not be started. Open it once from Applications, then try again.";
inline constexpr std::string_view noResponse = "No response from Quillmark.";
inline constexpr std::string_view unreadableReply = "Quillmark sent an unreadable reply.";
inline constexpr std::string_view refusedRequest = "Quillmark refused the request.";

/// A request line. `id` is JSON text.
std::string request(std::string_view method, std::string_view id = "1");
/// A tools/call line. "params" and `id` are JSON text.
std::string toolCall(std::string_view params, std::string_view id = "1");
/// The "result" of a tool call that succeeded with this text, or failed with this message.
nlohmann::json textResult(std::string_view text);
nlohmann::json errorResult(std::string_view message);
/// Empty arrays inside each other.
std::string nestedArrays(int depth);
/// Whether the text contains the piece. A failure shows both.
testing::AssertionResult contains(std::string_view text, std::string_view piece);

/// A test that is an agent's host: it talks to a server, which has a home folder of its own. A
/// scripted application listens and has published its endpoint. In no test may the server write to
/// standard error.
class Conversation : public testing::Test {
 protected:
  using Clock = std::chrono::steady_clock;
  using Seconds = std::chrono::duration<double>;

  /// The promised limits of the bridge.
  static constexpr Seconds probeLimit{3};
  static constexpr Seconds startLimit{20};
  static constexpr Seconds callLimit{30};
  /// How much later than promised something may be seen on a busy machine.
  static constexpr Seconds lateness{15};

  /// Starts the server. Skips the test where the system does not allow what it needs.
  void SetUp() override;
  void TearDown() override;

  void sendLine(std::string_view line);
  /// The next line of output, which must be a reply by the protocol's schema. Throws if there is
  /// none.
  std::string receiveLine();
  /// The same for a line that may be no such reply.
  std::string receiveUncheckedLine();
  /// The next reply. Throws if there is none or it is not JSON.
  nlohmann::json receive();
  /// Whether no reply is outstanding: sends one more request, whose reply must be the next line.
  testing::AssertionResult hasNoFurtherReply();
  /// Ends the server's input. It must exit with status 0 and write nothing more.
  void expectCleanExit();

  /// Makes a tool call and returns the "result" of the reply.
  nlohmann::json callTool(std::string_view name,
                          const nlohmann::json& arguments = nlohmann::json::object());
  /// The result of a tool call for which the application runs this script. If the application was
  /// so late with a part of its reply that the server could not wait for it, the call is made
  /// again.
  nlohmann::json callWithScript(const ScriptedApp::Script& script);
  nlohmann::json callWithReply(std::string_view appReply);
  /// The text of the result, which must be a success.
  std::string callText(std::string_view appReply);

  TemporaryHome home;
  EndpointFile endpointFile{home};
  Launches launches{home};
  ServerSetup setup;
  ScriptedApp app;
  std::unique_ptr<ServerProcess> server;
};

/// A conversation in which the test sees launches of the application and decides what they do. No
/// endpoint is published at first.
class LaunchConversation : public Conversation {
 protected:
  LaunchConversation();
  void SetUp() override;
};

/// A conversation in which the application cannot be launched, so that a tool call fails at once if
/// the endpoint file is unusable.
class UnlaunchableConversation : public Conversation {
 protected:
  UnlaunchableConversation();
};
