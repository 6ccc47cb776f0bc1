#include "tests/standin/shell.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <system_error>
#include <thread>

namespace {

// Everything until the last process that writes has closed its end.
std::string readAll(int descriptor) {
  std::string text;
  std::array<char, 4096> block{};
  for (ssize_t bytes = 1; bytes > 0;) {
    bytes = ::read(descriptor, block.data(), block.size());
    if (bytes > 0) text.append(block.data(), static_cast<std::size_t>(bytes));
  }
  return text;
}

int exitStatus(int status) {
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

}  // namespace

CommandResult runInShell(const std::string& command) {
  std::FILE* const running = ::popen(("{ " + command + "; } 2>&1").c_str(), "r");
  CommandResult result{.output = readAll(::fileno(running))};
  result.status = exitStatus(::pclose(running));
  return result;
}

CommandResult runOnTerminal(const std::string& command, int columns) {
  const int reader = ::posix_openpt(O_RDWR | O_NOCTTY);
  if (reader < 0 || ::grantpt(reader) != 0 || ::unlockpt(reader) != 0) {
    throw std::system_error(errno, std::generic_category(), "no terminal");
  }
  const std::string name = ::ptsname(reader);
  const int terminal = ::open(name.c_str(), O_RDWR | O_NOCTTY);
  const winsize size{
      .ws_row = 24, .ws_col = static_cast<unsigned short>(columns), .ws_xpixel = 0, .ws_ypixel = 0};
  ::ioctl(terminal, TIOCSWINSZ, &size);
  CommandResult result;
  std::thread reading([&] { result.output = readAll(reader); });
  result.status = exitStatus(std::system(("{ " + command + "; } >" + name + " 2>&1").c_str()));
  ::close(terminal);
  reading.join();
  ::close(reader);
  std::erase(result.output, '\r');
  return result;
}

std::string quoted(const std::string& text) {
  std::string word = "'";
  for (const char letter : text) word += letter == '\'' ? "'\\''" : std::string(1, letter);
  return word + "'";
}
