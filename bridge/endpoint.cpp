#include "bridge/endpoint.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <string_view>
#include <utility>

#include "bridge/home_directory.h"
#include "common/bytes.h"
#include "json/reader.h"
#include "json/value.h"

namespace bridge {
namespace {

class File {
 public:
  /// O_NONBLOCK because opening a named pipe would wait for a writer.
  explicit File(const std::string& path)
      : descriptor_(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {}
  File(const File&) = delete;
  File& operator=(const File&) = delete;
  ~File() {
    if (descriptor_ >= 0) close(descriptor_);
  }

  /// The whole contents; empty if they cannot be read, are too long, or are being changed.
  ///
  /// Reads everything twice; both results must agree. The application may overwrite the file during
  /// a read. The bytes are then a mixture: the port of one version and the token of the other.
  [[nodiscard]] common::Bytes contents() const {
    const auto size = this->size();
    if (!size) return {};
    auto bytes = read(*size + 1);
    const auto again = read(*size + 1);
    const bool haveChanged = bytes.size() > *size || bytes.view() != again.view();
    return haveChanged ? common::Bytes() : std::move(bytes);
  }

 private:
  [[nodiscard]] std::optional<std::size_t> size() const {
    constexpr off_t mostBytes = off_t{16} << 20U;
    struct stat status{};
    if (descriptor_ < 0 || fstat(descriptor_, &status) != 0) return std::nullopt;
    if (!S_ISREG(status.st_mode) || status.st_size > mostBytes) return std::nullopt;
    return static_cast<std::size_t>(status.st_size);
  }

  /// The first bytes, at most this many; none if they cannot be read.
  [[nodiscard]] common::Bytes read(std::size_t most) const {
    common::Bytes bytes;
    ssize_t count = 0;
    do {
      count = pread(descriptor_, bytes.room(most), most, 0);
    } while (count < 0 && errno == EINTR);
    bytes.commit(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    return bytes;
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
  auto text = token->string();
  if (!versionNumber || !portNumber || !text) return std::nullopt;
  return Endpoint{*versionNumber, *portNumber, std::move(*text)};
}

}  // namespace

std::optional<Endpoint> Endpoint::load() {
  const File file(homeDirectory() + "/Library/Application Support/Quillmark/agent.json");
  const auto bytes = file.contents();
  const auto document = json::read(bytes.view());
  return document ? decode(document->root()) : std::nullopt;
}

}  // namespace bridge
