#include "tests/soak/misbehaving_app.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <stdexcept>
#include <vector>

#include "tests/support/conversation.h"
#include "tests/support/reply_writer.h"
#include "tests/support/socket_io.h"

namespace {

using nlohmann::json;

Behaviour success(std::string_view name, const std::string& result) {
  const json value = json::parse(result);
  return {.name = name,
          .reply = R"({"ok":true,"result":)" + result + "}",
          .text = value.empty() ? value.dump() : value.dump(2)};
}

Behaviour unreadable(std::string_view name, std::string reply) {
  return {.name = name,
          .reply = std::move(reply),
          .text = std::string(unreadableReply),
          .isError = true};
}

// The results contain nothing that two JSON libraries write differently.
std::vector<Behaviour> allBehaviours() {
  std::string listing = "[0";
  for (int i = 1; i < 2000; ++i) listing += "," + std::to_string(i);
  listing += "]";
  const std::string big = "[\"" + std::string(4'000'000, 'q') + "\"]";
  return {success("small", R"({})"),
          success("listing", listing),
          success("big", big),
          {.name = "refuse",
           .reply = R"({"ok":false,"error":"Not now."})",
           .text = "Not now.",
           .isError = true},
          {.name = "shrug", .reply = "{}", .text = std::string(refusedRequest), .isError = true},
          unreadable("close", ""),
          unreadable("reset", ""),
          unreadable("garbage", std::string("\x00\xFF}{\"]\n", 7)),
          unreadable("truncated", R"({"ok":true,"result":{"a":[1,2)"),
          unreadable("bigTruncated", R"({"ok":true,"result":[")" + std::string(1'000'000, 'q')),
          unreadable("tooLong", R"({"ok":true,"result":[")" + std::string(4'200'000, 'q') + "\"]}"),
          unreadable("deep", R"({"ok":true,"result":)" + nestedArrays(1500) + "}")};
}

}  // namespace

const Behaviour& behaviour(std::string_view name) {
  static const std::vector<Behaviour> all = allBehaviours();
  const auto found = std::ranges::find(all, name, &Behaviour::name);
  if (found == all.end()) throw std::runtime_error("no behaviour " + std::string(name));
  return *found;
}

MisbehavingApp::MisbehavingApp(bool failsProbes)
    : failsProbes_(failsProbes), thread_(&MisbehavingApp::serve, this) {}

MisbehavingApp::~MisbehavingApp() {
  done_ = true;
  thread_.join();
}

void MisbehavingApp::serve() {
  while (!done_) {
    pollfd wanted{.fd = listener_.socket(), .events = POLLIN, .revents = 0};
    if (::poll(&wanted, 1, 50) <= 0) continue;
    const int connection = listener_.accept();
    if (connection < 0) continue;
    handle(connection);
    ::close(connection);
  }
}

void MisbehavingApp::handle(int connection) {
  const json request = json::parse(receiveRequest(connection));
  if (request.at("tool") == "drive_status") {
    if (failsProbes_ && ++probes_ % 1000 == 0) return resetWhenClosed(connection);
    return sendAll(connection, behaviour("small").reply);
  }
  ++calls_;
  reply(connection, request.at("arguments").at("do").get<std::string>());
}

void MisbehavingApp::reply(int connection, std::string_view name) {
  ReplyWriter writer;
  if (name == "reset") {
    resetWhenClosed(connection);
  } else {
    writer.write(connection, behaviour(name).reply);
  }
  const std::lock_guard lock(mutex_);
  late_.push_back(writer.longestGap() >= ReplyWriter::lateGap);
  replied_.notify_one();
}

bool MisbehavingApp::wasLate() {
  std::unique_lock lock(mutex_);
  replied_.wait(lock, [this] { return !late_.empty(); });
  const bool late = late_.front();
  late_.pop_front();
  return late;
}
