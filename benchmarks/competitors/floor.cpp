// The floor: about the least work that a server between these two pipes and that socket can do.
// It is a yardstick, not a server, and understands only the benchmark's own messages.
//
// For a tool call it does what no server can leave out: it looks once at every byte of the request
// line, to find the line feed; reads the endpoint file; twice connects, sends a request, receives
// the reply and closes, once for the probe and once for the call itself; looks once at every byte
// of the reply, copies the result into the answer, and writes the answer and then its line feed.
//
// It parses no JSON but finds members by their place in the known text, treats every reply as a
// success, and copies the result into the answer's text neither indented nor quoted, so that the
// answer is not valid JSON and is shorter than a correct one. It has no time limits, never starts
// the application, and exits at the first error.

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/uio.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <string>
#include <string_view>

#include "catalogue/tool_definitions.h"
#include "common/bytes.h"

namespace {

using common::Bytes;
using std::string_view;

void require(bool condition, const char* what) {
  if (condition) return;
  std::perror(what);
  std::_Exit(1);
}

// Empties a buffer, which keeps its memory.
void clear(Bytes& bytes) {
  bytes.dropFront(bytes.size());
}

// The text between two marks.
string_view between(string_view text, string_view before, string_view after) {
  text.remove_prefix(text.find(before) + before.size());
  return text.substr(0, text.find(after));
}

// The next line without its line feed; exits at the end of input.
string_view readLine(Bytes& input) {
  constexpr std::size_t piece = 65536;
  clear(input);
  while (true) {
    char* const fresh = input.room(piece);
    const ssize_t count = read(STDIN_FILENO, fresh, piece);
    if (count <= 0) std::_Exit(0);
    input.commit(static_cast<std::size_t>(count));
    if (std::memchr(fresh, '\n', static_cast<std::size_t>(count)) != nullptr) {
      return input.view().substr(0, input.size() - 1);
    }
  }
}

void answer(Bytes& output, std::initializer_list<string_view> result) {
  clear(output);
  output.append(R"({"jsonrpc":"2.0","id":7,"result":)");
  for (const string_view piece : result) output.append(piece);
  output.append("}");
  for (string_view left = output.view(); !left.empty();) {
    const ssize_t count = write(STDOUT_FILENO, left.data(), left.size());
    require(count > 0, "floor: write");
    left.remove_prefix(static_cast<std::size_t>(count));
  }
  require(write(STDOUT_FILENO, "\n", 1) == 1, "floor: write");
}

string_view readEndpointFile(char (&text)[1024]) {
  char path[1024];
  std::snprintf(path, sizeof path, "%s/Library/Application Support/Quillmark/agent.json",
                std::getenv("HOME"));
  const int file = open(path, O_RDONLY | O_CLOEXEC);
  const ssize_t count = read(file, text, sizeof text);
  require(count > 0, "floor: endpoint file");
  close(file);
  return {text, static_cast<std::size_t>(count)};
}

int connectTo(string_view port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = htons(static_cast<std::uint16_t>(std::atoi(std::string(port).c_str())));
  const int connection = socket(AF_INET, SOCK_STREAM, 0);
  require(connect(connection, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0,
          "floor: connect");
  return connection;
}

// Sends the pieces with one call.
void send(int connection, std::initializer_list<string_view> pieces) {
  iovec request[16];
  int count = 0;
  std::size_t total = 0;
  for (const string_view piece : pieces) {
    request[count++] = {.iov_base = const_cast<char*>(piece.data()), .iov_len = piece.size()};
    total += piece.size();
  }
  require(writev(connection, request, count) == static_cast<ssize_t>(total), "floor: send");
}

// One exchange with the application; returns the result that its reply carries.
string_view exchange(string_view endpoint, string_view tool, string_view arguments, Bytes& reply) {
  constexpr std::size_t replyLimit = 4194304;
  constexpr string_view head = R"({"result":)", tail = R"(,"ok":true})";
  const int connection = connectTo(between(endpoint, R"("port":)", ","));
  send(connection, {R"({"version":1,"token":")", between(endpoint, R"("token":")", "\""),
                    R"(","tool":")", tool, R"(","arguments":)", arguments, "}"});
  clear(reply);
  while (!reply.view().ends_with(tail)) {
    const std::size_t left = replyLimit - reply.size();
    const ssize_t count = recv(connection, reply.room(left), left, 0);
    require(count > 0, "floor: receive");
    reply.commit(static_cast<std::size_t>(count));
  }
  close(connection);
  return reply.view().substr(head.size(), reply.size() - head.size() - tail.size());
}

void callTool(string_view line, Bytes& reply, Bytes& output) {
  constexpr string_view mark = R"("arguments":)";
  const string_view tool = between(line, R"("params":{"name":")", "\"");
  string_view arguments = line.substr(line.find(mark) + mark.size());
  arguments.remove_suffix(2);  // the closing braces of "params" and of the request

  char text[1024];
  const string_view endpoint = readEndpointFile(text);
  exchange(endpoint, "drive_status", "{}", reply);
  const string_view result = exchange(endpoint, tool, arguments, reply);
  require(std::memchr(result.data(), '\0', result.size()) == nullptr, "floor: reply");
  answer(output, {R"({"content":[{"type":"text","text":")", result, R"("}]})"});
}

}  // namespace

int main() {
  Bytes input, reply, output;
  while (true) {
    const string_view line = readLine(input);
    const string_view method = between(line, R"("method":")", "\"");
    if (method == "initialize") {
      answer(output, {R"({"protocolVersion":"2024-11-05","capabilities":{"tools":{}},)",
                      R"("serverInfo":{"name":"quillmark","version":"1.0.0"}})"});
    } else if (method == "tools/list") {
      answer(output, {R"({"tools":)", toolDefinitions(), "}"});
    } else {
      callTool(line, reply, output);
    }
  }
}
