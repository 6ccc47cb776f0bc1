#include "server/line_reader.h"

#include <unistd.h>

#include <cerrno>
#include <utility>

#include "server/descriptor_wait.h"

namespace server {
namespace {

std::string_view withoutCarriageReturn(std::string_view line) {
  if (line.ends_with('\r')) line.remove_suffix(1);
  return line;
}

}  // namespace

std::optional<std::string_view> LineReader::next(
    const std::function<void(std::string_view beginning)>& partial) {
  std::size_t searched = 0;
  while (true) {
    const std::size_t lineFeed = rest().find('\n', searched);
    if (lineFeed != std::string_view::npos) {
      return withoutCarriageReturn(take(lineFeed + 1).substr(0, lineFeed));
    }
    searched = rest().size();
    if (searched > 0) partial(withoutCarriageReturn(rest()));
    if (!readMore()) break;
  }
  if (rest().empty()) return std::nullopt;
  return take(rest().size());
}

std::string_view LineReader::take(std::size_t length) {
  const std::string_view taken = rest().substr(0, length);
  begin_ += length;
  return taken;
}

bool LineReader::readMore() {
  constexpr std::size_t piece = 65536;
  dropTakenLines();
  while (true) {
    const ssize_t count = read(input_, bytes_.room(piece), piece);
    if (count > 0) {
      bytes_.commit(static_cast<std::size_t>(count));
      return true;
    }
    if (count == 0) return false;
    if (errno == EAGAIN) {
      wait(input_, Until::readable);
    } else if (errno != EINTR) {
      return false;
    }
  }
}

/// Keeps the memory of a big line, because another one often follows. After small lines it is
/// freed.
void LineReader::dropTakenLines() {
  constexpr std::size_t big = 1U << 20U;
  constexpr std::size_t mostToKeep = 32U << 20U;
  const std::size_t keep = begin_ > big ? mostToKeep : big;
  if (bytes_.capacity() <= keep) {
    bytes_.dropFront(begin_);
  } else if (begin_ > 0) {
    common::Bytes fresh;
    fresh.append(rest());
    bytes_ = std::move(fresh);
  }
  begin_ = 0;
}

}  // namespace server
