#include "benchmarks/driver/conversation.h"

#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <stdexcept>

#include "benchmarks/driver/start_child.h"

namespace {

constexpr int patienceMilliseconds = 60'000;

struct Pipe {
  Descriptor reader, writer;
};

Pipe makePipe() {
  std::array<int, 2> ends{};
  if (::pipe(ends.data()) != 0) throw std::runtime_error("no pipe can be made");
  return {.reader = Descriptor(ends[0]), .writer = Descriptor(ends[1])};
}

}  // namespace

Conversation::Conversation(const Contestant& contestant, const std::string& home)
    : name_(contestant.name), received_(4096, '\0') {
  Pipe in = makePipe();
  Pipe out = makePipe();
  process_ =
      startChild(contestant.command, home, {.input = in.reader.get(), .output = out.writer.get()});
  input_ = std::move(in.writer);
  output_ = std::move(out.reader);
}

Conversation::~Conversation() {
  input_.reset();
  output_.reset();
  ::waitpid(process_, nullptr, 0);
}

std::string_view Conversation::ask(std::string_view line) {
  send(line);
  return receive();
}

std::string_view Conversation::initialize() {
  return ask(
      R"({"jsonrpc":"2.0","id":1,"method":"initialize","params":{"protocolVersion":"2024-11-05",)"
      R"("capabilities":{},"clientInfo":{"name":"quillmark-benchmark","version":"1.0.0"}}})"
      "\n");
}

void Conversation::send(std::string_view line) {
  while (!line.empty()) {
    const ssize_t count = ::write(input_.get(), line.data(), line.size());
    if (count <= 0) throw std::runtime_error(name_ + " stopped reading");
    line.remove_prefix(static_cast<std::size_t>(count));
  }
}

std::string_view Conversation::receive() {
  std::size_t size = 0;
  while (size == 0 || received_[size - 1] != '\n') {
    if (size == received_.size()) received_.resize(2 * size);
    pollfd waiting{.fd = output_.get(), .events = POLLIN, .revents = 0};
    if (::poll(&waiting, 1, patienceMilliseconds) <= 0) {
      ::kill(process_, SIGKILL);
      throw std::runtime_error(name_ + " didn't answer within a minute");
    }
    const ssize_t count = ::read(output_.get(), received_.data() + size, received_.size() - size);
    if (count <= 0) throw std::runtime_error(name_ + " ended without an answer");
    size += static_cast<std::size_t>(count);
  }
  return std::string_view(received_).substr(0, size - 1);
}
