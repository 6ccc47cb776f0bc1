#pragma once

#include <sys/types.h>

#include <string>
#include <string_view>

#include "benchmarks/driver/contestant.h"
#include "benchmarks/driver/descriptor.h"
#include "benchmarks/driver/resident_memory.h"

/// One run of a contestant, spoken to over two pipes as an agent host would. Every member throws
/// std::runtime_error when the contestant doesn't answer within a minute or has gone. At the end
/// its input is closed and its exit awaited.
class Conversation {
 public:
  /// Starts the contestant with this folder as its home.
  Conversation(const Contestant& contestant, const std::string& home);
  ~Conversation();
  Conversation(const Conversation&) = delete;
  Conversation& operator=(const Conversation&) = delete;

  /// Writes a line, which carries its line feed, and returns the one line that answers it,
  /// without its line feed; valid until the next one. Lines are told apart by nothing but a line
  /// feed at the end of what came, so that reading costs next to nothing.
  std::string_view ask(std::string_view line);

  /// Says hello as every host does first. Returns the answer.
  std::string_view initialize();

  ResidentMemory memory() const { return residentMemory(process_); }

 private:
  void send(std::string_view line);
  std::string_view receive();

  std::string name_;
  Descriptor input_, output_;  // the contestant's own, seen from here
  pid_t process_ = -1;
  std::string received_;
};
