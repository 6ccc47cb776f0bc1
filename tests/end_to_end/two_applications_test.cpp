#include <atomic>
#include <fstream>
#include <thread>

#include "tests/support/conversation.h"

namespace {

using nlohmann::json;
using namespace std::chrono_literals;

// Two applications rewrite the endpoint file in turn, not atomically. Launching has no effect.
class TwoApplications : public LaunchConversation {
 protected:
  void rewriteInTurn() {
    for (bool second = true; !done_; second = !second) {
      std::ofstream(endpointFile.path(), std::ios::trunc)
          << (second ? EndpointFile::text(other.port(), "token 2", 2)
                     : EndpointFile::text(app.port(), "token 1", 1));
      std::this_thread::sleep_for(200us);
    }
  }

  // Every request has the token and version of the application that received it.
  static void expectOwnRequests(ScriptedApp& application, std::string_view token, int version) {
    EXPECT_GT(application.connectionCount(), 0U);
    for (std::size_t i = 0; i < application.connectionCount(); ++i) {
      const json request = json::parse(application.record(i).received);
      EXPECT_EQ(request.at("token"), token);
      EXPECT_EQ(request.at("version"), version);
    }
  }

  ScriptedApp other;
  std::atomic<bool> done_ = false;
};

TEST_F(TwoApplications, EachGetItsOwnTokenAndVersion) {
  std::thread writer([this] { rewriteInTurn(); });
  for (int call = 0; call < 50; ++call) {
    EXPECT_EQ(callTool("x").size(), 1U) << call;
  }
  done_ = true;
  writer.join();
  EXPECT_EQ(app.connectionCount() + other.connectionCount(), 100U);
  expectOwnRequests(app, "token 1", 1);
  expectOwnRequests(other, "token 2", 2);
}

}  // namespace
