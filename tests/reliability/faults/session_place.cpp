#include "tests/reliability/faults/session_place.h"

#include <fstream>
#include <iterator>
#include <utility>

#include "tests/support/endpoint_file.h"

namespace {

constexpr const char* probeReply = R"({"ok":true,"result":{}})";

}  // namespace

SessionPlace::SessionPlace(const Session& session)
    : leavesProbeOpen_(session.firstProbeIsAbandoned),
      app_([this](const nlohmann::json& request) { return answer(request); }) {
  const EndpointFile file(home_);
  file.publish(session.appHasToBeStarted ? refusing_.port() : app_.port());
  std::ofstream(home_.home() / "fresh") << EndpointFile::text(app_.port());
  // In one step, as a server may be reading the file.
  RecordedOpen::onLaunch(
      home_, R"(cd "$HOME"; cp fresh fresh.$$; mv fresh.$$ ")" + file.path().string() + "\"");
}

std::string SessionPlace::trace() const {
  std::ifstream file(traceFile(), std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::map<std::size_t, std::size_t> SessionPlace::calls() {
  const std::lock_guard lock(mutex_);
  return calls_;
}

void SessionPlace::answerLate() {
  app_.answerLate(probeReply);
}

std::optional<std::string> SessionPlace::answer(const nlohmann::json& request) {
  if (request.at("tool") == "drive_status") {
    if (std::exchange(leavesProbeOpen_, false)) return std::nullopt;
    return probeReply;
  }
  if (answersLateItself_) answerLate();
  const std::lock_guard lock(mutex_);
  ++calls_[request.at("arguments").at("number").get<std::size_t>()];
  return replyTo(request);
}
