#pragma once

#include <cstddef>
#include <string>

/// A request to a server with everything that belongs to it, ready before any clock runs.
struct Call {
  std::string line;    // what the agent host writes, with its line feed
  std::string result;  // the result, as JSON; of a tool call the application's
  std::string reply;   // the application's whole reply; empty if this is no tool call
};

Call initialize();
Call toolsList();

/// Details of one file: a reply of 300 bytes.
Call smallCall();

/// The content of a file as one long string: a reply of exactly this many bytes (at least 200).
/// The text has lines of all kinds, with quotes, tabs, slashes and some characters beyond ASCII.
Call longTextReply(std::size_t bytes);

/// A folder of 29,000 files, each an object with five members in no sorted order: 4 MB.
Call listingReply();

/// The same kind of text as an argument: a request line of exactly this many bytes (at least 200).
Call longArgument(std::size_t bytes);
