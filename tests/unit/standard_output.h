#pragma once

#include <unistd.h>

#include <cstdio>
#include <string>
#include <vector>

/// Makes a descriptor the standard output of this process while it exists.
class StandardOutput {
 public:
  explicit StandardOutput(int descriptor) : before_(dup(STDOUT_FILENO)) {
    std::fflush(stdout);
    dup2(descriptor, STDOUT_FILENO);
  }
  StandardOutput(const StandardOutput&) = delete;
  StandardOutput& operator=(const StandardOutput&) = delete;
  ~StandardOutput() {
    dup2(before_, STDOUT_FILENO);
    close(before_);
  }

 private:
  int before_;
};

inline std::string readToTheEnd(int descriptor) {
  std::string all;
  std::vector<char> piece(65536);
  while (true) {
    const ssize_t count = read(descriptor, piece.data(), piece.size());
    if (count <= 0) return all;
    all.append(piece.data(), static_cast<std::size_t>(count));
  }
}
