#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

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

/// Every name in quotation marks, with commas between them.
inline std::string listInQuotes(const std::vector<std::string>& names) {
  std::string list;
  for (const std::string& name : names) list += (list.empty() ? "" : ", ") + inQuotes(name);
  return list;
}

}  // namespace standin
