#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

#include "standin/dispatch.h"
#include "standin/drives.h"
#include "tests/support/temporary_home.h"

/// The tools, on two temporary folders served as the drives "Alpha" and "Beta".
class ServedFolders {
 public:
  explicit ServedFolders(bool writable = true);

  std::filesystem::path alpha(std::string_view path = "") const;
  std::filesystem::path beta(std::string_view path = "") const;
  /// A place on no drive.
  std::filesystem::path outside(std::string_view path) const;

  /// The result of a call. Throws if it is refused.
  nlohmann::json result(std::string_view tool, nlohmann::json arguments = nlohmann::json::object());
  /// The sentence with which a call is refused. Throws if it is not.
  std::string refusal(std::string_view tool, nlohmann::json arguments = nlohmann::json::object());
  /// The whole reply to a request.
  nlohmann::json reply(std::string_view request);

 private:
  nlohmann::json call(std::string_view tool, nlohmann::json arguments);

  TemporaryHome place_;
  standin::Drives drives_;
  standin::Dispatch dispatch_;
};

/// Writes a file, and makes the folders above it.
void putFile(const std::filesystem::path& file, std::string_view content);
/// Writes a file of this many bytes.
void putBytes(const std::filesystem::path& file, std::size_t bytes);
/// The content of a file. Throws if it can't be read.
std::string contentOf(const std::filesystem::path& file);
/// Sets the time of the last change to this many hours ago.
void age(const std::filesystem::path& file, int hours);
/// The value of one member of each object in a list.
std::vector<std::string> each(const nlohmann::json& list, const char* member);
