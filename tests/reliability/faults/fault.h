#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "tests/reliability/faults/fault_table.h"

/// One failure of one system call in a session.
struct Fault {
  enum class Where : std::uint8_t {
    mainThread,
    launchedChild,    ///< between clone and exec
    backgroundThread  ///< which waits for the reply of an abandoned exchange
  };

  const FaultRow* row;
  std::string injection;  ///< strace's words, such as "error=EIO"
  std::size_t number;     ///< of the call among those of the same name in its thread, from 1
  Where where;

  /// For strace's -e, such as "inject=read:error=EIO:when=3".
  [[nodiscard]] std::string expression() const {
    return "inject=" + std::string(row->call) + ":" + injection + ":when=" + std::to_string(number);
  }
};
