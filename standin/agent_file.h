#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace standin {

/// An access token that cannot be guessed.
std::string newToken();

/// The endpoint file, in which the application publishes how the server reaches it. It exists as
/// long as this object.
class AgentFile {
 public:
  /// Writes Library/Application Support/Quillmark/agent.json in the home folder, readable by its
  /// owner only. Replaces a previous file in one step. Throws std::system_error.
  AgentFile(const std::filesystem::path& home, std::uint16_t port, std::string_view token);
  AgentFile(const AgentFile&) = delete;
  AgentFile& operator=(const AgentFile&) = delete;
  /// Removes the file, unless another application has replaced it.
  ~AgentFile();

 private:
  std::filesystem::path path_;
  std::string content_;
};

}  // namespace standin
