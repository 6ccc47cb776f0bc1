#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <system_error>

#include "standin/outcome.h"

namespace standin {

/// All bytes of a regular file. When the file holds more than `atMost` bytes, the content
/// returned is longer than that, but no more is read. None when it can't be read.
std::expected<std::string, std::error_code> readContent(const std::filesystem::path& file,
                                                        std::uint64_t atMost);

/// Makes the file hold exactly these bytes. It appears, or is replaced, whole or not at all,
/// and keeps the permissions of what it replaces.
std::error_code writeContent(const std::filesystem::path& file, std::string_view content);

/// Makes `to` a copy of the file `from`, with its date. It appears whole or not at all.
std::error_code copyFile(const std::filesystem::path& from, const std::filesystem::path& to);

}  // namespace standin
