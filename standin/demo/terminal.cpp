#include "standin/demo/terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <string_view>

namespace demo {
namespace {

std::string_view variable(const char* name) {
  const char* const value = std::getenv(name);
  return value == nullptr ? "" : value;
}

}  // namespace

Terminal terminalOf(int descriptor) {
  Terminal terminal;
  if (::isatty(descriptor) != 1) return terminal;
  constexpr std::size_t narrowest = 40;
  winsize size{};
  if (::ioctl(descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) {
    terminal.width = std::max<std::size_t>(size.ws_col, narrowest);
  }
  terminal.colours = variable("NO_COLOR").empty() && variable("TERM") != "dumb";
  return terminal;
}

}  // namespace demo
