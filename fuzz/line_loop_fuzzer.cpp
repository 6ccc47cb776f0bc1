// Runs the server with these bytes as its input and a scripted application, and compares each reply
// and each call with what the protocol requires.
//
// Input: a byte that determines how the input is cut into pieces, a byte that determines the
// outcome of the first call, then the server's input.

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
  const std::string content(outcome.content);
  if (!outcome.isSuccess) return std::unexpected(bridge::BridgeFailure{content});
  return bridge::callResult(outcomeWith(R"({"ok":true,"result":)" + content + "}"));
}

struct Result {
  std::vector<std::string> replies;
  std::vector<std::string> calls;
};

Result run(std::string_view bytes, std::uint8_t seed, std::size_t first) {
  Result result;
  const server::HandleDependencies dependencies{
      .callApp =
          [&](std::string_view tool, json::Value arguments) {
            common::Bytes call;
            call.append(R"({"name":)");
            json::appendQuoted(call, tool);
            call.append(R"(,"arguments":)");
            json::appendCompact(call, arguments);
            call.append('}');
            result.calls.emplace_back(call.view());
            return resultOf(outcomeOf(first, result.calls.size() - 1));
          },
      .writeReply = [&](std::string_view reply) { result.replies.emplace_back(reply); }};
  const PiecedInput input(bytes, seed);
  server::StdioLoop(input.descriptor(), [&](json::Value request) {
    const std::size_t before = result.replies.size();
    server::handle(request, dependencies);
    require(result.replies.size() <= before + 1, "a message has at most one reply");
  }).run();
  return result;
}

/// Requires an object on one line.
void requireOneObject(const std::string& text) {
  require(text.find('\n') == std::string::npos, "the text is one line", text);
  require(text.starts_with('{'), "the text is an object", text);
  require(reference::validity(text) != reference::Validity::invalid, "the text is JSON", text);
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

  const Result result = run(bytes, seed, first);
  for (const std::string& call : result.calls) requireOneObject(call);
  for (const std::string& reply : result.replies) requireOneObject(reply);

  const Expected expected = expectedOf(bytes, first);
  if (!expected.isSure) return 0;
  require(trees(result.calls) == expected.calls, "the calls are those of the requests",
          shown(result.calls, expected.calls));
  require(trees(result.replies) == expected.replies, "the replies are those of the protocol",
          shown(result.replies, expected.replies));
  return 0;
}
