// The ordinary server: what a competent C++ programmer writes in a day with a popular JSON library
// (nlohmann/json, which builds a tree of nodes for every message) and blocking sockets. It
// answers every request of a host. It lacks time limits, the start of an application that isn't
// running, and the product's wording when a call fails.

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>
#include <utility>

#include <nlohmann/json.hpp>

#include "catalogue/tool_definitions.h"

namespace {

using nlohmann::json;

std::string compact(const json& value) {
  return value.dump(-1, ' ', false, json::error_handler_t::replace);
}

struct Socket {
  ~Socket() { close(number); }
  int number = socket(AF_INET, SOCK_STREAM, 0);
};

void connectTo(const Socket& connection, std::uint16_t port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = htons(port);
  if (connect(connection.number, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
    throw std::runtime_error("no connection to Quillmark");
  }
}

// A reply arrives in pieces: it is whole when it ends like an object and can be parsed.
json receiveReply(const Socket& connection) {
  std::string received;
  std::string piece(65536, '\0');
  while (true) {
    const ssize_t count = recv(connection.number, piece.data(), piece.size(), 0);
    if (count <= 0) throw std::runtime_error("no readable reply from Quillmark");
    received.append(piece, 0, static_cast<std::size_t>(count));
    if (received.back() != '}') continue;
    json reply = json::parse(received, nullptr, false);
    if (!reply.is_discarded()) return reply;
  }
}

json exchange(const json& endpoint, const std::string& tool, json arguments) {
  json request;
  request["version"] = endpoint.at("version");
  request["token"] = endpoint.at("token");
  request["tool"] = tool;
  request["arguments"] = std::move(arguments);
  const std::string text = compact(request);
  const Socket connection;
  connectTo(connection, endpoint.at("port"));
  if (send(connection.number, text.data(), text.size(), 0) != std::ssize(text)) {
    throw std::runtime_error("Quillmark takes no request");
  }
  return receiveReply(connection);
}

// The text that the agent gets as the tool's result.
std::string callTool(json& parameters) {
  json arguments = json::object();
  if (parameters.contains("arguments")) arguments = std::move(parameters["arguments"]);
  std::ifstream file(std::string(std::getenv("HOME")) +
                     "/Library/Application Support/Quillmark/agent.json");
  const json endpoint = json::parse(file);
  exchange(endpoint, "drive_status", json::object());
  const json reply = exchange(endpoint, parameters.at("name"), std::move(arguments));
  if (!reply.value("ok", false)) throw std::runtime_error(reply.value("error", "refused"));
  return reply.at("result").dump(2, ' ', false, json::error_handler_t::replace);
}

json callResult(json& parameters) try {
  return {{"content", {{{"type", "text"}, {"text", callTool(parameters)}}}}};
} catch (const std::exception& error) {
  return {{"content", {{{"type", "text"}, {"text", error.what()}}}}, {"isError", true}};
}

json replyTo(json& request) {
  json reply{{"jsonrpc", "2.0"}, {"id", request["id"]}};
  const std::string method = request.value("method", "");
  if (method == "initialize") {
    reply["result"] = {{"protocolVersion", "2024-11-05"},
                       {"capabilities", {{"tools", json::object()}}},
                       {"serverInfo", {{"name", "quillmark"}, {"version", "1.0.0"}}}};
  } else if (method == "tools/list") {
    static const json tools = json::parse(toolDefinitions());
    reply["result"]["tools"] = tools;
  } else if (method == "tools/call") {
    reply["result"] = callResult(request["params"]);
  } else {
    reply["error"] = {{"code", -32601}, {"message", "Unknown method " + method}};
  }
  return reply;
}

}  // namespace

int main() {
  std::ios::sync_with_stdio(false);
  for (std::string line; std::getline(std::cin, line);) {
    json request = json::parse(line, nullptr, false);
    if (!request.is_object() || !request.contains("id")) continue;
    std::cout << compact(replyTo(request)) << '\n' << std::flush;
  }
}
