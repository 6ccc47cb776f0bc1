#pragma once

#include <algorithm>
#include <string_view>

namespace standin {

/// Names that begin so belong to the stand-in itself: the folder that keeps replaced files,
/// and files not yet finished. No tool shows or reaches them.
inline constexpr std::string_view hiddenPrefix = ".quillmark-undo";

/// Letter case makes no difference, as on volumes where it makes none either.
inline bool isHidden(std::string_view name) {
  const auto sameLetter = [](char a, char b) {
    return a == b || ('A' <= a && a <= 'Z' && a - 'A' + 'a' == b);
  };
  return name.size() >= hiddenPrefix.size() &&
         std::equal(hiddenPrefix.begin(), hiddenPrefix.end(), name.begin(),
                    [&](char hidden, char given) { return sameLetter(given, hidden); });
}

}  // namespace standin
