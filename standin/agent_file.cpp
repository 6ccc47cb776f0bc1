#include "standin/agent_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include <nlohmann/json.hpp>

#include "standin/dispatch.h"
#include "standin/file_content.h"
#include "standin/random_hex.h"

namespace fs = std::filesystem;

namespace standin {
namespace {

// A new file that nobody else may read, not even before its content is there.
std::error_code writePrivately(const fs::path& file, std::string_view content) {
  const int descriptor = ::open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
  if (descriptor < 0) return {errno, std::generic_category()};
  const ssize_t written = ::write(descriptor, content.data(), content.size());
  const bool whole = std::cmp_equal(written, content.size());
  const bool closed = ::close(descriptor) == 0;
  return whole && closed ? std::error_code() : std::make_error_code(std::errc::io_error);
}

}  // namespace

Outcome<AgentFile> AgentFile::publish(const fs::path& home, std::uint16_t port,
                                      std::string_view token) {
  const fs::path folder = home / "Library/Application Support/Quillmark";
  const fs::path part = folder / (".agent-" + randomHex(8));
  fs::path path = folder / "agent.json";
  std::string content =
      nlohmann::json({{"version", wireVersion}, {"port", port}, {"token", token}}).dump() + '\n';
  std::error_code failure;
  fs::create_directories(folder, failure);
  if (!failure) failure = writePrivately(part, content);
  if (!failure) fs::rename(part, path, failure);
  if (!failure) return AgentFile(std::move(path), std::move(content));
  std::error_code ignored;
  fs::remove(part, ignored);
  return refuse(path.native(), "written", failure);
}

AgentFile::AgentFile(AgentFile&& other) noexcept
    : path_(std::exchange(other.path_, {})), content_(std::move(other.content_)) {}

AgentFile::~AgentFile() {
  if (path_.empty()) return;
  const auto found = readContent(path_, content_.size());
  std::error_code ignored;
  if (found && *found == content_) fs::remove(path_, ignored);
}

}  // namespace standin
