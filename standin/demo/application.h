#pragma once

#include <filesystem>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "standin/agent_file.h"
#include "standin/dispatch.h"
#include "standin/listener.h"

namespace demo {

/// Makes two folders for the drives: Studio with plans and a picture, and Archive with a copy of
/// the picture and an old recording.
void prepareDrives(const std::filesystem::path& folder);

/// A request of the server and the application's reply.
struct Exchange {
  std::string request;
  std::string reply;
};

/// The stand-in, running in this process as long as this object exists. It serves what
/// prepareDrives() made in the folder; agents may write on Studio and only read Archive.
class Application {
 public:
  /// A server whose home is this one finds it.
  Application(const std::filesystem::path& home, const std::filesystem::path& folder);

  /// The exchanges since the previous call of this function, in order.
  std::vector<Exchange> takeExchanges();

 private:
  struct TwoDrives : standin::Drives {
    explicit TwoDrives(const std::filesystem::path& folder);
  };
  std::string answer(std::string_view request);

  TwoDrives drives_;
  std::string token_;
  standin::Dispatch dispatch_;
  std::mutex mutex_;
  std::vector<Exchange> exchanges_;
  standin::Listener listener_;
  standin::AgentFile agentFile_;
};

}  // namespace demo
