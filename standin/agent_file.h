#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

#include "standin/outcome.h"

namespace standin {

/// The small file by which the application tells the server how to reach it. It is there for
/// as long as this object lives.
class AgentFile {
 public:
  /// Writes <home>/Library/Application Support/Quillmark/agent.json, readable by its owner
  /// only, making the folders it takes. A reader sees the whole file or the one before it.
  static Outcome<AgentFile> publish(const std::filesystem::path& home, std::uint16_t port,
                                    std::string_view token);

  AgentFile(AgentFile&& other) noexcept;
  AgentFile& operator=(AgentFile&&) = delete;
  /// Removes the file, unless another application has published its own there since.
  ~AgentFile();

  const std::filesystem::path& path() const { return path_; }

 private:
  AgentFile(std::filesystem::path path, std::string content)
      : path_(std::move(path)), content_(std::move(content)) {}

  std::filesystem::path path_;
  std::string content_;
};

}  // namespace standin
