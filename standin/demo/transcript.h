#pragma once

#include <iosfwd>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <nlohmann/json.hpp>

#include "standin/demo/terminal.h"

namespace demo {

/// Writes the story so that a person can follow it: in chapters, with lines that fit the terminal.
/// Every function throws std::system_error if the output can't be written.
class Transcript {
 public:
  Transcript(std::ostream& out, const Terminal& terminal);

  void title(std::string_view text);
  /// Starts a chapter. Chapters are numbered.
  void chapter(std::string_view heading);
  /// A paragraph of the story.
  void prose(std::string_view text);
  /// A message as it is sent, under a label such as "host -> server".
  void message(std::string_view label, std::string_view text);
  /// A list of names and what each stands for.
  void list(const std::vector<std::pair<std::string, std::string>>& entries);
  /// A call of a tool, and its result as an outline.
  void call(std::string_view tool, std::string_view arguments);
  void result(const nlohmann::json& value);
  void refusal(std::string_view sentence);

 private:
  enum class Style { Prose, Data, Heading, Label, Call, Refusal };

  static std::string_view colourOf(Style style);
  void outline(const nlohmann::json& object, std::string beginning);
  void lines(std::string_view beginning, std::string_view text, Style style);
  void endBlock();

  std::ostream& out_;
  Terminal terminal_;
  int chapters_ = 0;
};

}  // namespace demo
