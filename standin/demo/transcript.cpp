#include "standin/demo/transcript.h"

#include <ostream>

namespace demo {
namespace {

constexpr std::size_t mostLines = 24;
constexpr std::size_t mostBytesOfLine = 240;
constexpr std::string_view indent = "      ";

std::string shortened(std::string_view line) {
  if (line.size() <= mostBytesOfLine) return std::string(line);
  std::size_t end = mostBytesOfLine;
  const auto isInsideCharacter = [&] { return (line[end] & 0xC0) == 0x80; };
  while (end > 0 && isInsideCharacter()) --end;
  return std::string(line.substr(0, end)) + " [... " + std::to_string(line.size() - end) +
         " more bytes]";
}

}  // namespace

void Transcript::heading(int number, std::string_view text) {
  const std::string line = std::to_string(number) + ". " + std::string(text);
  out_ << '\n' << coloured(line, "1") << '\n';
}

void Transcript::sent(std::string_view line) {
  out_ << "   -> " << coloured(shortened(line), "36") << '\n' << std::flush;
}

void Transcript::received(std::string_view text) {
  std::size_t lines = 0;
  std::size_t hidden = 0;
  for (std::size_t start = 0; start < text.size(); ++lines) {
    const std::size_t end = std::min(text.find('\n', start), text.size());
    if (lines >= mostLines) {
      ++hidden;
    } else {
      out_ << (lines == 0 ? "   <- " : indent) << shortened(text.substr(start, end - start))
           << '\n';
    }
    start = end + 1;
  }
  if (hidden > 0) out_ << indent << "[... " << hidden << " more lines]\n";
  out_ << std::flush;
}

void Transcript::note(std::string_view text) {
  out_ << "   " << coloured(text, "2") << '\n';
}

void Transcript::fault(std::string_view text) {
  out_ << "   " << coloured("WRONG: " + std::string(text), "31") << '\n' << std::flush;
}

std::string Transcript::coloured(std::string_view text, std::string_view code) const {
  if (!colours_) return std::string(text);
  return "\033[" + std::string(code) + "m" + std::string(text) + "\033[0m";
}

}  // namespace demo
