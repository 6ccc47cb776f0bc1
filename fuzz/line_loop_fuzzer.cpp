// Runs the server on standard input with these bytes, beside an application that answers by a
// script, and compares every reply and every call with what the protocol asks for.
//
// Input: a byte that says how the bytes come in pieces, a byte that says which outcome the first
// call has, then the bytes.

#include <cstddef>
#include <cstdint>
#include <expected>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/expected_replies.h"
#include "fuzz/pieced_input.h"
#include "fuzz/pieces.h"
#include "fuzz/require.h"
#include "server/server.h"
#include "server/stdio_loop.h"
#include "tests/unit/reference.h"
#include "tests/unit/reply_of.h"
#include "tests/unit/written.h"

namespace {

using Trees = std::vector<nlohmann::json>;

bridge::CallResult resultOf(const Outcome& outcome) {
  const std::string said(outcome.said);
  if (!outcome.isSuccess) return std::unexpected(bridge::BridgeFailure{said});
  return bridge::callResult(answered(R"({"ok":true,"result":)" + said + "}"));
}

struct Happened {
  std::vector<std::string> replies;
  std::vector<std::string> calls;
};

Happened run(std::string_view bytes, std::uint8_t seed, std::size_t first) {
  Happened happened;
  const server::HandleDependencies dependencies{
      .callApp =
          [&](std::string_view tool, json::Value arguments) {
            common::Bytes call;
            call.append(R"({"name":)");
            json::appendQuoted(call, tool);
            call.append(R"(,"arguments":)");
            json::appendCompact(call, arguments);
            call.append('}');
            happened.calls.emplace_back(call.view());
            return resultOf(outcomeOf(first, happened.calls.size() - 1));
          },
      .writeReply = [&](std::string_view reply) { happened.replies.emplace_back(reply); }};
  const PiecedInput input(bytes, seed);
  server::StdioLoop(input.descriptor(), [&](json::Value request) {
    const std::size_t before = happened.replies.size();
    server::handle(request, dependencies);
    require(happened.replies.size() <= before + 1, "a message has at most one reply");
  }).run();
  return happened;
}

/// An object on one line; with a number in it that the judge finds too big, it is let through.
void requireOneObject(const std::string& text) {
  require(text.find('\n') == std::string::npos, "what is sent is one line", text);
  require(text.starts_with('{'), "what is sent is an object", text);
  require(reference::verdict(text) != reference::Verdict::malformed, "what is sent is JSON", text);
}

Trees trees(const std::vector<std::string>& texts) {
  Trees trees;
  for (const std::string& text : texts) trees.push_back(reference::tree(text));
  return trees;
}

std::string shown(const std::vector<std::string>& texts, const Trees& expected) {
  std::string lines;
  for (const std::string& text : texts) lines += text + "\n";
  lines += "expected:\n";
  for (const auto& tree : expected) lines += reference::compact(tree) + "\n";
  return lines;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Input input(data, size);
  const std::uint8_t seed = input.byte();
  const std::size_t first = input.byte();
  const std::string_view bytes = input.rest();

  const Happened happened = run(bytes, seed, first);
  for (const std::string& call : happened.calls) requireOneObject(call);
  for (const std::string& reply : happened.replies) requireOneObject(reply);

  const Expected expected = expectedOf(bytes, first);
  if (!expected.isSure) return 0;
  require(trees(happened.calls) == expected.calls, "calls are made as they were asked for",
          shown(happened.calls, expected.calls));
  require(trees(happened.replies) == expected.replies, "replies are what the protocol asks for",
          shown(happened.replies, expected.replies));
  return 0;
}
