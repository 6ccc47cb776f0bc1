#include "standin/demo/transcript.h"

#include <algorithm>
#include <cerrno>
#include <ostream>
#include <system_error>

#include "standin/demo/text_layout.h"

using nlohmann::json;

namespace demo {
namespace {

constexpr std::string_view margin = "   ";
constexpr std::string_view messageMargin = "     ";

// A number, a flag or a text. Text keeps its quotation marks if it has several lines.
std::string plain(const json& value) {
  const bool isWord = value.is_string() && !value.get_ref<const std::string&>().contains('\n');
  return isWord ? value.get<std::string>() : value.dump();
}

}  // namespace

Transcript::Transcript(std::ostream& out, const Terminal& terminal)
    : out_(out), terminal_(terminal) {
  constexpr std::size_t pleasantWidth = 100;
  terminal_.width = std::min(terminal_.width, pleasantWidth);
}

void Transcript::title(std::string_view text) {
  lines("", text, Style::Heading);
  endBlock();
}

void Transcript::chapter(std::string_view heading) {
  lines(std::to_string(++chapters_) + ". ", heading, Style::Heading);
  endBlock();
}

void Transcript::prose(std::string_view text) {
  lines(margin, text, Style::Prose);
  endBlock();
}

void Transcript::message(std::string_view label, std::string_view text) {
  lines(margin, label, Style::Label);
  lines(messageMargin, text, Style::Data);
  endBlock();
}

void Transcript::list(const std::vector<std::pair<std::string, std::string>>& entries) {
  std::size_t longest = 0;
  for (const auto& [name, text] : entries) longest = std::max(longest, name.size());
  for (const auto& [name, text] : entries) {
    lines(std::string(margin) + name + std::string(longest + 2 - name.size(), ' '), text,
          Style::Prose);
  }
  endBlock();
}

void Transcript::call(std::string_view tool, std::string_view arguments) {
  lines(std::string(margin) + "-> ", std::string(tool) + " " + std::string(arguments), Style::Call);
}

void Transcript::result(const json& value) {
  outline(value, std::string(margin) + "<- ");
  endBlock();
}

void Transcript::refusal(std::string_view sentence) {
  lines(std::string(margin) + "<- ", sentence, Style::Refusal);
  endBlock();
}

// First the simple members in one paragraph, then each list of objects. Only the first line starts
// with the beginning.
void Transcript::outline(const json& object, std::string beginning) {
  const std::string indent(beginning.size(), ' ');
  const auto print = [&](const std::string& text) {
    lines(beginning, text, Style::Data);
    beginning = indent;
  };
  std::string simple;
  for (const auto& [name, value] : object.items()) {
    if (!value.is_structured()) simple += (simple.empty() ? "" : ", ") + name + ": " + plain(value);
  }
  if (!simple.empty()) print(simple);
  for (const auto& [name, value] : object.items()) {
    if (!value.is_structured()) continue;
    print(name + (value.empty() ? ": none" : ":"));
    for (const json& item : value) outline(item, indent + "- ");
  }
}

std::string_view Transcript::colourOf(Style style) {
  switch (style) {
    case Style::Heading: return "\033[1m";
    case Style::Label: return "\033[2m";
    case Style::Call: return "\033[36m";
    case Style::Refusal: return "\033[33m";
    default: return "";
  }
}

// Only the first line starts with the beginning; the others are indented by its width.
void Transcript::lines(std::string_view beginning, std::string_view text, Style style) {
  const std::string_view colour = terminal_.colours ? colourOf(style) : "";
  const bool isData = style == Style::Data || style == Style::Call;
  const auto breakAt = isData ? BreakAt::Commas : BreakAt::Spaces;
  std::string start(beginning);
  for (const std::string& line : wrapped(text, terminal_.width - beginning.size(), breakAt)) {
    out_ << colour << start << line << (colour.empty() ? "" : "\033[0m") << '\n';
    start.assign(beginning.size(), ' ');
  }
}

void Transcript::endBlock() {
  errno = 0;
  out_ << '\n' << std::flush;
  if (!out_) throw std::system_error(errno, std::generic_category(), "can't write the output");
}

}  // namespace demo
