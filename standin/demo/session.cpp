// quillmark-demo-session: plays an agent host. It starts the server given on the command line,
// holds one session with it, shows the session, and ends with status 0 only if every answer
// was there and was right.
#include <unistd.h>

#include <cstdlib>
#include <exception>
#include <iostream>

#include "standin/demo/server_child.h"
#include "standin/demo/steps.h"
#include "standin/demo/transcript.h"

using nlohmann::json;

namespace demo {
namespace {

// The server itself gives up on the application after less than this.
constexpr std::chrono::seconds longestAnswer{60};

// The catalogue as a list of names, each with what it is for.
std::string catalogueText(const json& tools) {
  std::string text;
  for (const json& tool : tools) {
    text += tool.at("name").get<std::string>() + ": " + tool.at("description").get<std::string>() +
            '\n';
  }
  return text;
}

// What a person wants to see of an answer. Throws when the answer hasn't the form it is due.
std::string shown(const json& reply, Due due) {
  if (due == Due::MethodError) return reply.at("error").dump();
  const json& result = reply.at("result");
  if (due == Due::Result) {
    return result.contains("tools") ? catalogueText(result.at("tools")) : result.dump();
  }
  const bool refused = result.contains("isError") && result.at("isError").get<bool>();
  if (refused != (due == Due::ToolFailure)) throw std::runtime_error("not the outcome expected");
  return result.at("content").at(0).at("text").get<std::string>();
}

bool answerIsRight(const Step& step, const std::string& line, Transcript& transcript) try {
  const json reply = json::parse(line);
  if (reply.at("id") != step.request.at("id") || reply.at("jsonrpc") != "2.0") {
    transcript.fault("this answers another request: " + line);
    return false;
  }
  const std::string text = shown(reply, step.due);
  transcript.received(text);
  for (const std::string& expected : step.shows) {
    if (text.contains(expected)) continue;
    transcript.fault("the answer does not show " + expected);
    return false;
  }
  return true;
} catch (const std::exception& failure) {
  transcript.received(line);
  transcript.fault(failure.what());
  return false;
}

bool takeStep(const Step& step, ServerChild& server, Transcript& transcript) {
  const std::string line = step.request.dump();
  transcript.sent(line);
  if (!server.send(line)) {
    transcript.fault("the server takes no more requests");
    return false;
  }
  // Were anything written here after all, the next step would meet it as its answer.
  if (step.due == Due::Nothing) return true;
  const auto answer = server.receive(longestAnswer);
  if (!answer) transcript.fault("no answer");
  return answer && answerIsRight(step, *answer, transcript);
}

bool holdSession(std::vector<std::string> command, Transcript& transcript) {
  ServerChild server(std::move(command));
  bool allRight = true;
  int number = 0;
  for (const Step& step : session()) {
    transcript.heading(++number, step.heading);
    allRight = takeStep(step, server, transcript) && allRight;
  }
  transcript.heading(++number, "The host closes the server's input, and the server ends");
  if (server.finish(longestAnswer)) {
    transcript.note("ended with status 0");
    return allRight;
  }
  transcript.fault("it did not end cleanly");
  return false;
}

}  // namespace
}  // namespace demo

int main(int count, char** words) try {
  if (count < 2) {
    std::cerr << "Usage: quillmark-demo-session SERVER [ARGUMENT...]\n";
    return 2;
  }
  demo::Transcript transcript(std::cout, ::isatty(STDOUT_FILENO) == 1);
  const bool right = demo::holdSession({words + 1, words + count}, transcript);
  transcript.note(right ? "Every answer was right." : "Something was wrong; see above.");
  return right ? EXIT_SUCCESS : EXIT_FAILURE;
} catch (const std::exception& failure) {
  std::cerr << "quillmark-demo-session: " << failure.what() << '\n';
  return EXIT_FAILURE;
}
