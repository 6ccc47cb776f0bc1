#pragma once

#include <unistd.h>

#include <array>
#include <chrono>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

/// A pipe with both ends.
class Pipe {
 public:
  Pipe() {
    if (pipe(ends_.data()) != 0) throw std::runtime_error("cannot create a pipe");
  }
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;
  ~Pipe() {
    closeReadEnd();
    closeWriteEnd();
  }

  [[nodiscard]] int readEnd() const { return ends_[0]; }
  [[nodiscard]] int writeEnd() const { return ends_[1]; }

  /// Returns when everything is written. Another thread must read what the pipe cannot hold.
  void write(std::string_view bytes) const {
    while (!bytes.empty()) {
      const ssize_t written = ::write(ends_[1], bytes.data(), bytes.size());
      if (written <= 0) throw std::runtime_error("cannot write to the pipe");
      bytes.remove_prefix(static_cast<std::size_t>(written));
    }
  }

  void closeReadEnd() { closeEnd(ends_[0]); }
  void closeWriteEnd() { closeEnd(ends_[1]); }

 private:
  static void closeEnd(int& end) {
    if (end >= 0) close(end);
    end = -1;
  }

  std::array<int, 2> ends_{-1, -1};
};

/// A thread that writes the pieces, with a pause between them, and then closes the write end. Join
/// it before the pipe is destroyed.
inline std::thread writeInPieces(Pipe& pipe, const std::vector<std::string>& pieces) {
  return std::thread([&pipe, pieces] {
    for (const std::string& piece : pieces) {
      pipe.write(piece);
      if (pieces.size() > 1) std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    pipe.closeWriteEnd();
  });
}
