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

/// The messages that the bridge itself has for the agent.
inline constexpr std::string_view couldNotBeStarted =
    "Quillmark could not be started. Open it once from Applications, then try again.";
inline constexpr std::string_view noResponse = "No response from Quillmark.";
inline constexpr std::string_view unreadableReply = "Quillmark sent an unreadable reply.";
inline constexpr std::string_view refusedRequest = "Quillmark refused the request.";

/// A request line with this id, which is written as it stands.
std::string request(std::string_view method, std::string_view id = "1");
/// A tools/call line with these "params" and this id, both written as they stand.
std::string toolCall(std::string_view params, std::string_view id = "1");
/// The "result" of a tool call that succeeded with this text, or failed with this message.
nlohmann::json textResult(std::string_view text);
nlohmann::json failure(std::string_view message);
/// That many arrays, one within the other.
std::string nestedArrays(int depth);
/// True if text has this piece; a test's failure shows both.
testing::AssertionResult has(std::string_view text, std::string_view piece);

/// A conversation between an agent host and a server with its own home folder, beside a
/// scripted application that listens and has published its endpoint. No test here may make
/// the server write to standard error.
class Conversation : public testing::Test {
 protected:
  using Clock = std::chrono::steady_clock;
  using Seconds = std::chrono::duration<double>;
  static constexpr auto generous = ServerProcess::generous;

  /// Starts the server, or skips the test where what it needs cannot be had.
  void SetUp() override;
  void TearDown() override;

  void say(std::string_view line);
  /// The next reply line. Throws when none comes in time.
  std::string hearLine(std::chrono::milliseconds within = generous);
  /// The next reply. Throws when none comes in time or it is not JSON.
  nlohmann::json hear(std::chrono::milliseconds within = generous);
  /// True if the server, after all else that it was told, has nothing more to say.
  testing::AssertionResult staysSilent();
  /// Ends the server's input and checks that it exits at once with status 0 and without
  /// another word.
  void sayGoodbye();

  /// Makes a tool call and returns the reply's "result".
  nlohmann::json callTool(std::string_view name,
                          const nlohmann::json& arguments = nlohmann::json::object(),
                          std::chrono::milliseconds within = generous);
  /// What a tool call comes to when this is the application's reply to it.
  nlohmann::json callAnsweredWith(std::string_view appReply);
  /// The one text of a tool call that succeeded.
  std::string callGivingText(std::string_view appReply);

  TemporaryHome home;
  EndpointFile endpointFile{home};
  Launches launches{home};
  ServerSetup setup;
  ScriptedApp app;
  std::unique_ptr<ServerProcess> server;
};

/// A conversation in which launching the application is seen by the test and does what the
/// test asks for. No endpoint is published at first.
class LaunchConversation : public Conversation {
 protected:
  LaunchConversation();
  void SetUp() override;
};

/// A conversation in which the application cannot be launched, so that a tool call fails at
/// once when the endpoint file is no good.
class UnlaunchableConversation : public Conversation {
 protected:
  UnlaunchableConversation();
};
