#include "standin/outcome.h"

namespace standin {

std::unexpected<Refusal> refuse(std::string_view file, std::string_view what,
                                const std::error_code& reason) {
  return refuse(inQuotes(file) + " could not be " + std::string(what) + ": " + reason.message() +
                ".");
}

std::string inQuotes(std::string_view text) {
  constexpr std::size_t longest = 200;
  const bool fits = text.size() <= longest;
  return '"' + std::string(text.substr(0, longest)) + (fits ? "\"" : "...\"");
}

}  // namespace standin
