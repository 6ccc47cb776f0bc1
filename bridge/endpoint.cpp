#include "bridge/endpoint.h"

#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

#include "json/reader.h"
#include "json/text.h"

namespace bridge {
namespace {

std::string homeDirectory() {
  if (const char* home = std::getenv("HOME"); home != nullptr && *home != '\0') return home;
  const passwd* user = getpwuid(getuid());
  return user != nullptr && user->pw_dir != nullptr ? user->pw_dir : "";
}

class OpenFile {
 public:
  /// Opening must not wait: a named pipe in the file's place would block for ever.
  explicit OpenFile(const std::string& path)
      : descriptor_(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {}
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;
  ~OpenFile() {
    if (descriptor_ >= 0) close(descriptor_);
  }

  [[nodiscard]] bool isRegularFile() const {
    struct stat status{};
    return descriptor_ >= 0 && fstat(descriptor_, &status) == 0 && S_ISREG(status.st_mode);
  }

  /// Everything in it, or none after an error.
  [[nodiscard]] std::optional<json::Text> contents() const {
    constexpr std::size_t piece = 4096;
    json::Text text;
    while (true) {
      const ssize_t count = read(descriptor_, text.room(piece), piece);
      if (count == 0) return text;
      if (count > 0) text.commit(static_cast<std::size_t>(count));
      if (count < 0 && errno != EINTR) return std::nullopt;
    }
  }

 private:
  int descriptor_;
};

std::optional<json::Text> readFile(const std::string& path) {
  const OpenFile file(path);
  return file.isRegularFile() ? file.contents() : std::nullopt;
}

std::optional<Endpoint> decode(json::Value object) {
  const auto version = object.member("version");
  const auto port = object.member("port");
  const auto token = object.member("token");
  if (!version || !port || !token) return std::nullopt;
  const auto versionNumber = version->integer();
  const auto portNumber = port->integer();
  auto characters = token->string();
  if (!versionNumber || !portNumber || !characters) return std::nullopt;
  return Endpoint{*versionNumber, *portNumber, std::move(*characters)};
}

}  // namespace

std::optional<Endpoint> Endpoint::load() {
  const auto file = readFile(homeDirectory() + "/Library/Application Support/Quillmark/agent.json");
  if (!file) return std::nullopt;
  const auto document = json::read(file->view());
  return document ? decode(document->root()) : std::nullopt;
}

}  // namespace bridge
