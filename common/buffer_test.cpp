#include "common/buffer.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <new>
#include <utility>
#include <vector>

#include "tests/support/sanitizers.h"

namespace common {
namespace {

std::vector<int> contents(const Buffer<int>& buffer) {
  std::vector<int> values;
  values.reserve(buffer.size());
  for (std::size_t i = 0; i < buffer.size(); ++i) values.push_back(buffer[i]);
  return values;
}

Buffer<int> oneToFive() {
  Buffer<int> buffer;
  for (const int value : {1, 2, 3, 4, 5}) buffer.push(value);
  return buffer;
}

TEST(Buffer, IsInitiallyEmpty) {
  const Buffer<int> buffer;
  EXPECT_EQ(buffer.size(), 0U);
  EXPECT_EQ(buffer.capacity(), 0U);
}

TEST(Buffer, KeepsItsValuesWhenItGrows) {
  Buffer<int> buffer;
  std::vector<int> expected;
  expected.reserve(100000);
  for (int value = 0; value < 100000; ++value) {
    buffer.push(value);
    expected.push_back(value);
  }
  EXPECT_EQ(contents(buffer), expected);
}

TEST(Buffer, AppendsSeveralValues) {
  Buffer<int> buffer = oneToFive();
  buffer.append(std::vector<int>(1000, 7));
  ASSERT_EQ(buffer.size(), 1005U);
  EXPECT_EQ(buffer[4], 5);
  EXPECT_EQ(buffer[5], 7);
  EXPECT_EQ(buffer[1004], 7);
}

TEST(Buffer, AppendsNothing) {
  Buffer<int> buffer;
  buffer.append({});
  EXPECT_EQ(buffer.size(), 0U);
}

TEST(Buffer, RoomIsAddedByCommit) {
  Buffer<int> buffer = oneToFive();
  int* const room = buffer.room(1000);
  EXPECT_EQ(buffer.size(), 5U);
  EXPECT_GE(buffer.capacity(), 1005U);
  room[0] = 6;
  room[1] = 7;
  buffer.commit(2);
  EXPECT_EQ(contents(buffer), (std::vector{1, 2, 3, 4, 5, 6, 7}));
}

TEST(Buffer, DoesNotMoveWhileThereIsRoom) {
  Buffer<int> buffer;
  buffer.room(1000);
  const int* const before = buffer.data();
  for (int value = 0; value < 1000; ++value) buffer.push(value);
  EXPECT_EQ(buffer.data(), before);
}

TEST(Buffer, DoublesItsCapacity) {
  Buffer<char> buffer;
  std::size_t moves = 0;
  std::size_t capacity = 0;
  for (int i = 0; i < 1 << 20; ++i) {
    buffer.push('x');
    if (buffer.capacity() != capacity) ++moves;
    capacity = buffer.capacity();
  }
  EXPECT_LE(moves, 20U);
}

TEST(Buffer, DropsFromTheFront) {
  Buffer<int> buffer = oneToFive();
  buffer.dropFront(2);
  EXPECT_EQ(contents(buffer), (std::vector{3, 4, 5}));
  buffer.dropFront(0);
  EXPECT_EQ(contents(buffer), (std::vector{3, 4, 5}));
  buffer.dropFront(3);
  EXPECT_EQ(buffer.size(), 0U);
}

TEST(Buffer, LastIsTheLastValue) {
  Buffer<int> buffer = oneToFive();
  EXPECT_EQ(buffer.last(), 5);
  buffer.last() = 9;
  buffer.push(10);
  EXPECT_EQ(contents(buffer), (std::vector{1, 2, 3, 4, 9, 10}));
}

TEST(Buffer, MovingKeepsPointersValid) {
  Buffer<int> from = oneToFive();
  const int* const values = from.data();
  const Buffer<int> to = std::move(from);
  EXPECT_EQ(to.data(), values);
  EXPECT_EQ(contents(to), (std::vector{1, 2, 3, 4, 5}));
}

TEST(Buffer, MoveAssignmentReplacesTheValues) {
  Buffer<int> to;
  to.push(9);
  to = oneToFive();
  EXPECT_EQ(contents(to), (std::vector{1, 2, 3, 4, 5}));
}

TEST(Buffer, ThrowsWithoutAChangeWhenOutOfMemory) {
  Buffer<std::uint64_t> buffer;
  buffer.push(1);
  EXPECT_THROW(buffer.room(SIZE_MAX / 8), std::bad_alloc);
  EXPECT_THROW(buffer.room(SIZE_MAX), std::bad_alloc);
#if !UNDER_ADDRESS_SANITIZER && !UNDER_THREAD_SANITIZER  // they end the process
  EXPECT_THROW(buffer.room(PTRDIFF_MAX / 8 - 1), std::bad_alloc);
#endif
  ASSERT_EQ(buffer.size(), 1U);
  EXPECT_EQ(buffer[0], 1U);
}

}  // namespace
}  // namespace common
