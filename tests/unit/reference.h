#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

/// Another JSON library, used to check ours.
///
/// That library rejects the escape of an unpaired surrogate, which ours accepts. So it gets the
/// text with U+E000 to U+E7FF in place of U+D800 to U+DFFF. No other code points lie between these,
/// so names sort as before.
namespace reference {

enum class Validity : std::uint8_t {
  valid,
  invalid,
  unknown  ///< the library stops at a number that is too big for it
};

/// Whether the text is a message by our rules: an object or array with at most 512 levels.
Validity validity(std::string_view text);

/// Whether the text contains none of the characters that replace surrogates here. Otherwise
/// different names may seem the same, and literal() writes the character as an escape.
bool isUnambiguous(std::string_view text);

/// The values of a valid message. A string is "s" and its characters, a number is "n" and its text.
/// So two trees are equal exactly if the messages mean the same and write numbers in the same way.
nlohmann::json tree(std::string_view text);

/// The expected text of a tree: compact with names sorted, and pretty.
std::string compact(const nlohmann::json& tree);
std::string pretty(const nlohmann::json& tree);

/// The expected string literal.
std::string literal(const std::string& characters);

}  // namespace reference
