#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

/// Reading and writing whole files. Every function throws std::system_error if the system refuses.
namespace standin {

/// The content of a file. If that is more than `limit` bytes, only the first `limit + 1`.
std::string readContent(const std::filesystem::path& file, std::uintmax_t limit);

/// Creates or replaces a file; one that is replaced keeps its permissions.
/// This and copyFile() either succeed or change nothing. Only one thread at a time may call them.
void writeContent(const std::filesystem::path& file, std::string_view content);

/// Creates or replaces `to` with the content of the file `from`.
void copyFile(const std::filesystem::path& from, const std::filesystem::path& to);

}  // namespace standin
