#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

namespace standin {

/// Thrown when a call can't be carried out. Its text is a full sentence, shown to the agent as it
/// is.
class Refusal : public std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// The text in quotation marks, shortened if it is too long for a sentence.
inline std::string inQuotes(std::string_view text) {
  constexpr std::size_t longest = 200;
  return '"' + std::string(text.substr(0, longest)) + (text.size() > longest ? "...\"" : "\"");
}

/// The name of every item in quotation marks, with commas between them.
template <typename Items, typename Name>
std::string listInQuotes(const Items& items, Name name) {
  std::string list;
  for (const auto& item : items) list += (list.empty() ? "" : ", ") + inQuotes(item.*name);
  return list;
}

}  // namespace standin
