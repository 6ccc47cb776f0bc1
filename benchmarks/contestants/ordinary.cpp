// The ordinary peer: what a competent C++ programmer writes in a day with the JSON library
// everybody uses (nlohmann/json, a tree of nodes for every message) and blocking sockets with
// time-outs. It answers every message rightly; only the start of an application that isn't running
// is left out, which the benchmark never needs.

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <optional>
#include <string>
#include <utility>

#include <nlohmann/json.hpp>

#include "benchmarks/contestants/catalogue_text.h"

namespace {

using nlohmann::json;

constexpr std::size_t replyLimit = 4194304;
constexpr int burstSilenceMilliseconds = 50;

struct Endpoint {
  std::int64_t version = 0;
  std::int64_t port = 0;
  std::string token;
};

struct CallOutcome {
  bool succeeded = false;
  json result;
  std::string message;
};

class Socket {
 public:
  Socket() : descriptor_(socket(AF_INET, SOCK_STREAM, 0)) {}
  ~Socket() { close(descriptor_); }
  Socket(const Socket&) = delete;
  Socket& operator=(const Socket&) = delete;
  int get() const { return descriptor_; }

 private:
  int descriptor_;
};

std::string compact(const json& value) {
  return value.dump(-1, ' ', false, json::error_handler_t::replace);
}

std::optional<Endpoint> loadEndpoint() {
  const char* home = std::getenv("HOME");
  std::ifstream file(std::string(home != nullptr ? home : "") +
                     "/Library/Application Support/Quillmark/agent.json");
  if (!file) return std::nullopt;
  const json content = json::parse(file, nullptr, false);
  if (!content.is_object() || !content.contains("version") || !content.contains("port") ||
      !content.contains("token")) {
    return std::nullopt;
  }
  const json& version = content["version"];
  const json& port = content["port"];
  const json& token = content["token"];
  if (!version.is_number_integer() || !port.is_number_integer() || !token.is_string()) {
    return std::nullopt;
  }
  return Endpoint{.version = version.get<std::int64_t>(),
                  .port = port.get<std::int64_t>(),
                  .token = token.get<std::string>()};
}

bool connectTo(const Socket& connection, std::int64_t port, int seconds) {
  const timeval limit{.tv_sec = seconds, .tv_usec = 0};
  setsockopt(connection.get(), SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
  setsockopt(connection.get(), SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = htons(static_cast<std::uint16_t>(port));
  return connect(connection.get(), reinterpret_cast<sockaddr*>(&address), sizeof address) == 0;
}

bool sendAll(const Socket& connection, const std::string& request) {
  for (std::size_t done = 0; done < request.size();) {
    const ssize_t count = send(connection.get(), request.data() + done, request.size() - done, 0);
    if (count <= 0) return false;
    done += static_cast<std::size_t>(count);
  }
  return true;
}

bool moreFollows(const Socket& connection) {
  pollfd waiting{.fd = connection.get(), .events = POLLIN, .revents = 0};
  return poll(&waiting, 1, burstSilenceMilliseconds) > 0;
}

// The reply as a tree, or a discarded value when none that can be read came. A reply comes in
// pieces: it is whole when it ends like an object and can be read.
json receiveReply(const Socket& connection) {
  std::string received;
  std::string piece(65536, '\0');
  do {
    const ssize_t count = recv(connection.get(), piece.data(), piece.size(), 0);
    if (count <= 0) break;
    received.append(piece, 0, static_cast<std::size_t>(count));
    if (received.back() == '}') {
      json reply = json::parse(received, nullptr, false);
      if (!reply.is_discarded()) return reply;
    }
  } while (received.size() < replyLimit && moreFollows(connection));
  return json::parse(received, nullptr, false);
}

bool reachable(const Endpoint& endpoint) {
  const Socket connection;
  const json request{{"version", endpoint.version},
                     {"token", endpoint.token},
                     {"tool", "drive_status"},
                     {"arguments", json::object()}};
  char byte = 0;
  return connectTo(connection, endpoint.port, 3) && sendAll(connection, compact(request)) &&
         recv(connection.get(), &byte, 1, 0) == 1;
}

// The member of that name, or null when the value has none or is no object. Not copied: a member
// may hold megabytes.
json takeMember(json& value, const char* name) {
  if (!value.is_object() || !value.contains(name)) return nullptr;
  return std::move(value[name]);
}

std::string stringOr(const json& value, std::string otherwise) {
  return value.is_string() ? value.get<std::string>() : std::move(otherwise);
}

CallOutcome failure(std::string message) {
  return {.succeeded = false, .result = nullptr, .message = std::move(message)};
}

CallOutcome callApp(std::string tool, json arguments) {
  const std::optional<Endpoint> endpoint = loadEndpoint();
  if (!endpoint || !reachable(*endpoint)) {
    return failure(
        "Quillmark could not be started. Open it once from Applications, then try again.");
  }
  json request;
  request["version"] = endpoint->version;
  request["token"] = endpoint->token;
  request["tool"] = std::move(tool);
  request["arguments"] = std::move(arguments);
  const Socket connection;
  if (!connectTo(connection, endpoint->port, 30) || !sendAll(connection, compact(request))) {
    return failure("No response from Quillmark.");
  }
  json reply = receiveReply(connection);
  if (!reply.is_object()) return failure("Quillmark sent an unreadable reply.");
  if (takeMember(reply, "ok") != true) {
    return failure(stringOr(takeMember(reply, "error"), "Quillmark refused the request."));
  }
  const bool bare = !reply.contains("result");
  return {.succeeded = true,
          .result = bare ? json::object() : takeMember(reply, "result"),
          .message = ""};
}

json callTool(json& request) {
  json parameters = takeMember(request, "params");
  json arguments = takeMember(parameters, "arguments");
  if (!arguments.is_object()) arguments = json::object();
  const CallOutcome outcome =
      callApp(stringOr(takeMember(parameters, "name"), ""), std::move(arguments));
  json content;
  content["type"] = "text";
  content["text"] = outcome.succeeded
                        ? outcome.result.dump(2, ' ', false, json::error_handler_t::replace)
                        : outcome.message;
  json result;
  result["content"].push_back(std::move(content));
  if (!outcome.succeeded) result["isError"] = true;
  return result;
}

void writeReply(json id, const char* kind, json content) {
  json reply;
  reply["jsonrpc"] = "2.0";
  reply["id"] = std::move(id);
  reply[kind] = std::move(content);
  std::cout << compact(reply) << '\n' << std::flush;
}

void handle(json request) {
  const bool wantsAnswer = request.contains("id");
  json id = takeMember(request, "id");
  const std::string method = stringOr(takeMember(request, "method"), "");
  if (method == "initialize") {
    writeReply(std::move(id), "result",
               {{"protocolVersion", "2024-11-05"},
                {"capabilities", {{"tools", json::object()}}},
                {"serverInfo", {{"name", "quillmark"}, {"version", "1.0.0"}}}});
  } else if (method == "tools/list") {
    static const json catalogue = json::parse(catalogueText);
    writeReply(std::move(id), "result", catalogue);
  } else if (method == "tools/call") {
    writeReply(std::move(id), "result", callTool(request));
  } else if (wantsAnswer) {
    writeReply(std::move(id), "error", {{"code", -32601}, {"message", "Unknown method " + method}});
  }
}

}  // namespace

int main() {
  std::ios::sync_with_stdio(false);
  std::string line;
  while (std::getline(std::cin, line)) {
    json request = json::parse(line, nullptr, false);
    if (request.is_object()) handle(std::move(request));
  }
}
