#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <new>
#include <span>
#include <type_traits>
#include <utility>

namespace common {

/// A growing array of plain values, for messages of any size.
///
/// It differs from a vector in two ways that matter when a message has megabytes: new room is not
/// zero-filled, so that bytes can be received straight into it, and it grows with realloc(), which
/// moves large arrays without copying them.
///
/// Running out of memory throws std::bad_alloc. Pointers into the buffer are valid until it grows;
/// moving the buffer keeps them valid.
template <typename T>
  requires std::is_trivially_copyable_v<T>
class Buffer {
 public:
  Buffer() = default;
  Buffer(Buffer&& other) noexcept { swap(other); }
  Buffer& operator=(Buffer&& other) noexcept {
    Buffer(std::move(other)).swap(*this);
    return *this;
  }
  Buffer(const Buffer&) = delete;
  Buffer& operator=(const Buffer&) = delete;
  ~Buffer() = default;

  [[nodiscard]] std::size_t size() const { return size_; }
  [[nodiscard]] std::size_t capacity() const { return capacity_; }
  [[nodiscard]] T* data() { return items_.get(); }
  [[nodiscard]] const T* data() const { return items_.get(); }
  [[nodiscard]] T& operator[](std::size_t index) { return items_.get()[index]; }
  [[nodiscard]] const T& operator[](std::size_t index) const { return items_.get()[index]; }

  /// The last value; there must be one.
  [[nodiscard]] T& last() { return items_.get()[size_ - 1]; }

  /// Ensures room for `count` more values and returns a pointer to it. commit() makes them part of
  /// the buffer.
  T* room(std::size_t count) {
    if (count > capacity_ - size_) grow(count);
    return items_.get() + size_;
  }

  /// Makes `count` values that were written to room() part of the buffer.
  void commit(std::size_t count) { size_ += count; }

  void push(T value) {
    *room(1) = value;
    commit(1);
  }

  void append(std::span<const T> values) {
    if (values.empty()) return;
    std::memcpy(room(values.size()), values.data(), values.size_bytes());
    commit(values.size());
  }

  /// Removes the first `count` values and moves the rest to the front.
  void dropFront(std::size_t count) {
    if (count == 0) return;
    size_ -= count;
    if (size_ > 0) std::memmove(items_.get(), items_.get() + count, size_ * sizeof(T));
  }

 private:
  struct Free {
    void operator()(T* items) const { std::free(items); }
  };

  void swap(Buffer& other) noexcept {
    items_.swap(other.items_);
    std::swap(size_, other.size_);
    std::swap(capacity_, other.capacity_);
  }

  void grow(std::size_t count) {
    constexpr std::size_t most = std::numeric_limits<std::ptrdiff_t>::max() / sizeof(T);
    // A smaller block would stay in the allocator's cache when freed, and split the memory of big
    // messages.
    constexpr std::size_t least = 2048 / sizeof(T);
    if (count > most - size_) throw std::bad_alloc();
    const std::size_t capacity = std::max({size_ + count, 2 * capacity_, least});
    void* grown = std::realloc(items_.get(), capacity * sizeof(T));
    if (grown == nullptr) throw std::bad_alloc();
    static_cast<void>(items_.release());  // realloc has freed or moved it
    items_.reset(static_cast<T*>(grown));
    capacity_ = capacity;
  }

  std::unique_ptr<T[], Free> items_;
  std::size_t size_ = 0;
  std::size_t capacity_ = 0;
};

}  // namespace common
