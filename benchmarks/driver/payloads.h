#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// What the stand-in application answers a probe with.
inline constexpr std::string_view probeReply = R"({"result":{"drives":[]},"ok":true})";

/// One tool call with everything both sides say, ready before any clock runs.
struct ToolCall {
  std::string line;       // what the agent host writes, with its line feed
  std::string tool;       // the tool it names ...
  std::string arguments;  // ... and its arguments, as JSON
  std::string result;     // the application's result, as JSON
  std::string reply;      // the application's whole reply

  /// Which of the two is big: bytes of the reply and of the line.
  std::size_t replyBytes() const { return reply.size(); }
  std::size_t lineBytes() const { return line.size(); }
};

/// Details of one file: a reply of 300 bytes.
ToolCall smallCall();

/// The content of a file, as one long string: a reply of exactly this many bytes (at least 200).
/// The text has lines of all kinds, quotes, tabs, slashes, and now and then something beyond
/// ASCII.
ToolCall longTextReply(std::size_t bytes);

/// A folder of 29,000 files, each an object of five members in no sorted order: 4 MB.
ToolCall listingReply();

/// The same kind of text as an argument: a request line of exactly this many bytes (at least 200).
ToolCall longArgument(std::size_t bytes);
