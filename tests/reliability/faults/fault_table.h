#pragma once

#include <string>
#include <string_view>
#include <vector>

/// What one failure of a system call may change. Nothing else may change.
enum class Effect {
  none,           ///< every request is answered as without the fault, and nothing is launched
  appLaunched,    ///< the application may be launched, and the call is answered rightly
  callFails,      ///< the same, or the call fails with one of the bridge's own sentences
  replyLost,      ///< the reply may be missing, or cut off as the last thing written
  inputEnds,      ///< the process may end as at the end of its input
  processAborts,  ///< the process may end by SIGABRT; or the same as callFails
};

/// A kind of system call and how it fails on a real kernel.
struct FaultRow {
  std::string_view call;
  std::string_view pattern;             ///< regular expression for the call's line in a trace
  std::vector<std::string> injections;  ///< strace's words, such as "error=EIO"; may be empty
  Effect effect;
  std::string_view reason;
};

/// Every system call that the server makes after the start of main(). A call can match several
/// rows: they differ in their effects.
const std::vector<FaultRow>& faultTable();
