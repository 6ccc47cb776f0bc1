#include <atomic>
#include <fstream>
#include <thread>

#include "tests/support/conversation.h"

namespace {

using nlohmann::json;
using namespace std::chrono_literals;

// The endpoint file is cut to nothing and written anew, again and again, now for one
// application and now for another. Launching helps nobody.
class RewrittenEndpoint : public LaunchConversation {
 protected:
  void rewriteByTurns() {
    for (bool others = true; !done_; others = !others) {
      std::ofstream(endpointFile.path(), std::ios::trunc)
          << (others ? EndpointFile::text(other.port(), "the other's", 2)
                     : EndpointFile::text(app.port(), "the first's", 1));
      std::this_thread::sleep_for(200us);
    }
  }

  // Every request that an application got was meant for it.
  static void gotItsOwn(ScriptedApp& asked, std::string_view token, int version) {
    EXPECT_GT(asked.connectionCount(), 0U);
    for (std::size_t i = 0; i < asked.connectionCount(); ++i) {
      const json request = json::parse(asked.record(i).received);
      EXPECT_EQ(request.at("token"), token);
      EXPECT_EQ(request.at("version"), version);
    }
  }

  ScriptedApp other;
  std::atomic<bool> done_ = false;
};

TEST_F(RewrittenEndpoint, NeverMixesWhatBelongsToTwoApplications) {
  std::thread writer([this] { rewriteByTurns(); });
  for (int call = 0; call < 50; ++call) {
    EXPECT_EQ(callTool("x").size(), 1U) << call;
  }
  done_ = true;
  writer.join();
  EXPECT_EQ(app.connectionCount() + other.connectionCount(), 100U);
  gotItsOwn(app, "the first's", 1);
  gotItsOwn(other, "the other's", 2);
}

}  // namespace
