#pragma once

#include <string>
#include <string_view>

namespace standin {

/// UTF-8 text as code points with letter case taken away, for comparing names. Knows the
/// Latin, Greek and Cyrillic letters in common use; ill-formed bytes count as U+FFFD.
std::u32string folded(std::string_view text);

}  // namespace standin
