#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace demo {

enum class BreakAt { Spaces, Commas };

/// Splits UTF-8 text into lines of at most `width` characters. A line breaks at a place of the
/// preferred kind if that is far enough to the right, otherwise at the other kind, otherwise
/// anywhere.
std::vector<std::string> wrapped(std::string_view text, std::size_t width,
                                 BreakAt preferred = BreakAt::Spaces);

/// The text, or its first `limit` characters and how many are missing. Text that is only a little
/// longer stays whole.
std::string shortened(std::string_view text, std::size_t limit);

}  // namespace demo
