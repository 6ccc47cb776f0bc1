// The floor: about the least work that any server between these two pipes and that socket can do.
// It is a yardstick, not a server, and knows only the messages that the benchmark sends.
//
// What it does for a tool call, and what no server can leave out:
//   reads the request line, looking once at every byte of it for the line feed;
//   reads the endpoint file, twice connects, sends a request, receives the reply and closes,
//     once for the probe and once for the call itself, with blocking sockets;
//   looks once at every byte of the reply (memchr), copies its result into the answer line,
//     and writes the line with one write and the line feed with a second.
//
// What it leaves out: it reads no JSON but finds members by their place in the known text, takes
// every reply for a success, and copies the result into the answer's text as it stands, neither
// laid out nor quoted, so that the line isn't valid JSON (and is shorter than a right one). It
// has no time limits, starts no application, takes one request at a time from a host that waits
// for each answer, keeps its buffers from call to call, and stops at the first thing amiss.

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/uio.h>
#include <unistd.h>

#include <array>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <string_view>

#include "benchmarks/contestants/catalogue_text.h"

namespace {

using std::string_view;

// How the benchmark's application begins and ends every reply.
constexpr string_view replyHead = R"({"result":)";
constexpr string_view replyTail = R"(,"ok":true})";
// What stands before the arguments in every request line.
constexpr string_view argumentsMark = R"("arguments":)";

// Bytes that are never filled in before they are used, unlike those of std::string.
struct Buffer {
  char* bytes;
  std::size_t size, capacity;
};

struct Endpoint {
  string_view version, token;
  std::uint16_t port;
};

[[noreturn]] void stop(const char* why) {
  std::perror(why);
  std::_Exit(1);
}

void makeRoom(Buffer& buffer, std::size_t capacity) {
  if (buffer.capacity >= capacity) return;
  void* const larger = std::realloc(buffer.bytes, capacity);
  if (larger == nullptr) stop("floor: memory");
  buffer.bytes = static_cast<char*>(larger);
  buffer.capacity = capacity;
}

void append(Buffer& buffer, string_view text) {
  std::memcpy(buffer.bytes + buffer.size, text.data(), text.size());
  buffer.size += text.size();
}

// What stands between the two marks, searched for from the front.
string_view between(string_view text, string_view before, string_view after) {
  const std::size_t start = text.find(before) + before.size();
  return text.substr(start, text.find(after, start) - start);
}

// The digits after the mark.
string_view digitsAfter(string_view text, string_view before) {
  text.remove_prefix(text.find(before) + before.size());
  return text.substr(0, text.find_first_not_of("0123456789"));
}

// The next line without its line feed; ends the program at the end of input.
string_view readLine(Buffer& input) {
  input.size = 0;
  while (true) {
    if (input.size == input.capacity) makeRoom(input, 2 * input.capacity);
    char* fresh = input.bytes + input.size;
    const ssize_t count = read(STDIN_FILENO, fresh, input.capacity - input.size);
    if (count <= 0) std::_Exit(0);
    input.size += static_cast<std::size_t>(count);
    if (std::memchr(fresh, '\n', static_cast<std::size_t>(count)) != nullptr) {
      return {input.bytes, input.size - 1};
    }
  }
}

void answer(Buffer& output, string_view id, std::initializer_list<string_view> result) {
  output.size = 0;
  append(output, R"({"jsonrpc":"2.0","id":)");
  append(output, id);
  append(output, R"(,"result":)");
  for (const string_view piece : result) append(output, piece);
  append(output, "}");
  for (std::size_t done = 0; done < output.size;) {
    const ssize_t count = write(STDOUT_FILENO, output.bytes + done, output.size - done);
    if (count <= 0) stop("floor: write");
    done += static_cast<std::size_t>(count);
  }
  if (write(STDOUT_FILENO, "\n", 1) != 1) stop("floor: write");
}

Endpoint loadEndpoint(char (&text)[1024]) {
  char path[1024];
  std::snprintf(path, sizeof path, "%s/Library/Application Support/Quillmark/agent.json",
                std::getenv("HOME"));
  const int file = open(path, O_RDONLY | O_CLOEXEC);
  const ssize_t count = read(file, text, sizeof text);
  if (count <= 0) stop("floor: endpoint file");
  close(file);
  const string_view content(text, static_cast<std::size_t>(count));
  const string_view port = digitsAfter(content, R"("port":)");
  Endpoint endpoint{.version = digitsAfter(content, R"("version":)"),
                    .token = between(content, R"("token":")", "\""),
                    .port = 0};
  std::from_chars(port.data(), port.data() + port.size(), endpoint.port);
  return endpoint;
}

int connectTo(std::uint16_t port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = htons(port);
  const int connection = socket(AF_INET, SOCK_STREAM, 0);
  if (connection < 0) stop("floor: socket");
  if (connect(connection, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
    stop("floor: connect");
  }
  return connection;
}

// One exchange: sends the request's pieces in one go and returns the whole reply.
string_view exchange(const Endpoint& endpoint, string_view tool, string_view arguments,
                     Buffer& reply) {
  const std::array<string_view, 9> pieces{R"({"version":)",    endpoint.version, R"(,"token":")",
                                          endpoint.token,      R"(","tool":")",  tool,
                                          R"(","arguments":)", arguments,        "}"};
  std::array<iovec, pieces.size()> request{};
  std::size_t total = 0;
  for (std::size_t i = 0; i < pieces.size(); ++i) {
    request[i].iov_base = const_cast<char*>(pieces[i].data());
    request[i].iov_len = pieces[i].size();
    total += pieces[i].size();
  }
  const int connection = connectTo(endpoint.port);
  if (writev(connection, request.data(), request.size()) != static_cast<ssize_t>(total)) {
    stop("floor: send");
  }
  string_view received;
  while (!received.ends_with(replyTail)) {
    const ssize_t count =
        recv(connection, reply.bytes + received.size(), reply.capacity - received.size(), 0);
    if (count <= 0) stop("floor: receive");
    received = {reply.bytes, received.size() + static_cast<std::size_t>(count)};
  }
  close(connection);
  return received;
}

void callTool(string_view line, string_view id, Buffer& reply, Buffer& output) {
  const string_view tool = between(line, R"("params":{"name":")", "\"");
  string_view arguments = line.substr(line.find(argumentsMark) + argumentsMark.size());
  arguments.remove_suffix(2);  // the ends of "params" and of the request

  char text[1024];
  const Endpoint endpoint = loadEndpoint(text);
  exchange(endpoint, "drive_status", "{}", reply);
  string_view result = exchange(endpoint, tool, arguments, reply);
  result.remove_prefix(replyHead.size());
  result.remove_suffix(replyTail.size());
  if (std::memchr(result.data(), '\0', result.size()) != nullptr) stop("floor: reply");
  answer(output, id, {R"({"content":[{"type":"text","text":")", result, R"("}]})"});
}

}  // namespace

int main() {
  constexpr std::size_t replyLimit = 4194304;
  Buffer input{}, reply{}, output{};
  makeRoom(input, 65536);
  makeRoom(reply, replyLimit);
  makeRoom(output, replyLimit + 4096);
  while (true) {
    const string_view line = readLine(input);
    const string_view id = digitsAfter(line, R"("id":)");
    const string_view method = between(line, R"("method":")", "\"");
    if (method == "initialize") {
      answer(output, id,
             {R"({"protocolVersion":"2024-11-05","capabilities":{"tools":{}},)",
              R"("serverInfo":{"name":"quillmark","version":"1.0.0"}})"});
    } else if (method == "tools/list") {
      answer(output, id, {catalogueText});
    } else {
      callTool(line, id, reply, output);
    }
  }
}
