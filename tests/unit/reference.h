#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

/// Another JSON library's opinion, made fit for comparison with ours.
///
/// That library refuses the escape of an unpaired surrogate, which we let through. So it is
/// given the text with U+E000 to U+E7FF in the place of U+D800 to U+DFFF; in the order of
/// characters nothing else lies between these, so names sort as before.
namespace reference {

enum class Verdict : std::uint8_t {
  wellFormed,
  malformed,
  none  ///< a number is too big for that library, which says nothing of the rest
};

/// Whether this is a message by our rules: an object or array on the top, at most 512 levels.
Verdict verdict(std::string_view text);

/// Whether no character of the text is one of those that stand for surrogates here. If one is,
/// names may seem to be the same, and literal() spells it as an escape.
bool isTellable(std::string_view text);

/// The values of a well-formed message. A string is "s" and its characters, a number "n" and
/// its spelling, so that two trees are equal just when the messages mean the same and have the
/// same numbers to the letter.
nlohmann::json tree(std::string_view text);

/// How a tree must look: on one line with names sorted, and as pretty text.
std::string compact(const nlohmann::json& tree);
std::string pretty(const nlohmann::json& tree);

/// How a string must look as a literal.
std::string literal(const std::string& characters);

}  // namespace reference
