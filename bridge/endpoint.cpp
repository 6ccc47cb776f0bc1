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

  /// Everything in it; none if it is no regular file, can't be read, or changes meanwhile.
  [[nodiscard]] std::optional<json::Text> contents() const {
    auto text = readOnce();
    const auto again = readOnce();
    if (!text || !again || text->view() != again->view()) return std::nullopt;
    return text;
  }

 private:
  /// In a single read: between two of them, an application that writes its file anew could put
  /// the end of one text behind the beginning of another. Even one read of a long file may mix
  /// them, so two have to agree.
  [[nodiscard]] std::optional<json::Text> readOnce() const {
    struct stat status{};
    if (descriptor_ < 0 || fstat(descriptor_, &status) != 0 || !S_ISREG(status.st_mode)) {
      return std::nullopt;
    }
    const std::size_t room = static_cast<std::size_t>(status.st_size) + 1;
    json::Text text;
    ssize_t count = 0;
    do {
      count = pread(descriptor_, text.room(room), room, 0);
    } while (count < 0 && errno == EINTR);
    if (count < 0) return std::nullopt;
    text.commit(static_cast<std::size_t>(count));
    return text;
  }

  int descriptor_;
};

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
  const OpenFile file(homeDirectory() + "/Library/Application Support/Quillmark/agent.json");
  const auto text = file.contents();
  if (!text) return std::nullopt;
  const auto document = json::read(text->view());
  return document ? decode(document->root()) : std::nullopt;
}

}  // namespace bridge
