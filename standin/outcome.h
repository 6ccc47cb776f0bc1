#pragma once

#include <expected>
#include <string>
#include <string_view>
#include <system_error>

namespace standin {

/// Why a call was not carried out: a full sentence that the agent is shown as it stands.
struct Refusal {
  std::string sentence;
};

/// What a step gave, or why there is nothing.
template <typename T>
using Outcome = std::expected<T, Refusal>;

inline std::unexpected<Refusal> refuse(std::string sentence) {
  return std::unexpected(Refusal{std::move(sentence)});
}

/// A refusal about a file, with the system's reason: `"a.txt" could not be copied: ...`.
std::unexpected<Refusal> refuse(std::string_view file, std::string_view what,
                                const std::error_code& reason);

/// The text in quotation marks, cut short when it is too long for a sentence.
std::string inQuotes(std::string_view text);

}  // namespace standin
