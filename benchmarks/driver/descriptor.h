#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <utility>

/// Owns one file descriptor, which no child process inherits, and closes it at the end.
class Descriptor {
 public:
  Descriptor() = default;
  /// Takes over an open descriptor, or -1 for none.
  explicit Descriptor(int descriptor) : descriptor_(descriptor) {
    if (descriptor_ >= 0) ::fcntl(descriptor_, F_SETFD, FD_CLOEXEC);
  }
  Descriptor(Descriptor&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(descriptor_, other.descriptor_);
    return *this;
  }
  ~Descriptor() { reset(); }

  int get() const { return descriptor_; }
  void reset() {
    if (descriptor_ >= 0) ::close(std::exchange(descriptor_, -1));
  }

 private:
  int descriptor_ = -1;
};
