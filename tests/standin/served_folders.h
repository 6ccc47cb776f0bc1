#pragma once

#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

#include "standin/dispatch.h"
#include "standin/drives.h"
#include "tests/support/temporary_home.h"

/// Two temporary folders, "Alpha" and "Beta", served as drives, and the tools to call on them.
class ServedFolders {
 public:
  explicit ServedFolders(bool writable = true);

  std::filesystem::path alpha(std::string_view path = "") const;
  std::filesystem::path beta(std::string_view path = "") const;
  /// A place that belongs to no drive.
  std::filesystem::path outside(std::string_view path) const;
  const standin::Drives& drives() const { return *drives_; }

  /// The result of a call, which must be carried out; otherwise an exception tells why not.
  nlohmann::json result(std::string_view tool, nlohmann::json arguments = nlohmann::json::object());
  /// The sentence of a call, which must be refused; otherwise an exception shows its result.
  std::string refusal(std::string_view tool, nlohmann::json arguments = nlohmann::json::object());
  /// The whole reply to a request given as text.
  nlohmann::json reply(std::string_view request);

 private:
  nlohmann::json call(std::string_view tool, nlohmann::json arguments);

  TemporaryHome place_;
  std::unique_ptr<standin::Drives> drives_;
  std::unique_ptr<standin::Dispatch> dispatch_;
};

/// Makes a file with this content, and the folders above it.
void putFile(const std::filesystem::path& file, std::string_view content);
/// Makes a file of that many bytes.
void putBytes(const std::filesystem::path& file, std::size_t bytes);
/// The content of a file; an exception when it can't be read.
std::string contentOf(const std::filesystem::path& file);
/// Lets the file look as if last changed that many hours ago.
void age(const std::filesystem::path& file, int hours);
/// The values of one member of each object in a list.
std::vector<std::string> each(const nlohmann::json& list, const char* member);
