#pragma once

#include <iosfwd>
#include <string>
#include <string_view>

namespace demo {

/// Writes the session so that a person can follow it on a terminal. Long lines and long texts
/// are cut short, and say so.
class Transcript {
 public:
  /// With `colours`, headings and verdicts stand out by colour too.
  Transcript(std::ostream& out, bool colours) : out_(out), colours_(colours) {}

  void heading(int number, std::string_view text);
  void sent(std::string_view line);
  void received(std::string_view text);
  void note(std::string_view text);
  void fault(std::string_view text);

 private:
  std::string coloured(std::string_view text, std::string_view code) const;

  std::ostream& out_;
  bool colours_;
};

}  // namespace demo
