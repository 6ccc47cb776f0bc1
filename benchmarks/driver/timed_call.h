#pragma once

#include <memory>
#include <string>

#include "benchmarks/driver/conversation.h"
#include "benchmarks/driver/payloads.h"
#include "benchmarks/driver/setting.h"

/// One contestant in a conversation of its own, making one tool call again and again. Members
/// throw std::runtime_error when anything that the contestant writes is wrong.
class TimedCall {
 public:
  /// Starts the contestant and makes the call once, untimed, to check every byte of it. The
  /// setting and the call must outlive this.
  TimedCall(Setting& setting, const Contestant& contestant, const ToolCall& call);

  /// Makes the call and returns the nanoseconds from the first byte of the line written to the
  /// last byte of the answer read. Then compares everything written with the first, checked call;
  /// what differs is checked anew.
  double run();

  const Conversation& conversation() const { return conversation_; }

 private:
  void check(std::string_view answer);

  Setting& setting_;
  const Contestant& contestant_;
  const ToolCall& call_;
  Conversation conversation_;
  std::string checkedAnswer_, checkedProbe_, checkedRequest_;
};
