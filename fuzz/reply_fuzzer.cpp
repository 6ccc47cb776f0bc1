// Takes the application's reply to a tool call, which comes in pieces, and makes the tool result of
// it, judged by another JSON library.
//
// Input: a byte that says how the reply is cut into pieces, then the reply.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include <nlohmann/json.hpp>

#include "bridge/call_app.h"
#include "bridge/reply.h"
#include "fuzz/pieces.h"
#include "fuzz/require.h"
#include "json/reader.h"
#include "server/server.h"
#include "tests/unit/reference.h"

namespace {

using reference::Verdict;

/// Whether a reply is whole is told after each of its pieces: that is what it is taken by.
bridge::Reply received(std::string_view bytes, std::uint8_t seed) {
  bridge::Reply reply;
  for (const std::size_t end : pieceEnds(bytes.size(), seed)) {
    const std::string_view piece = bytes.substr(reply.size(), end - reply.size());
    std::ranges::copy(piece, reply.room(piece.size()));
    reply.received(piece.size());
    const Verdict verdict = reference::verdict(bytes.substr(0, end));
    require(verdict == Verdict::none || reply.isWhole() == (verdict == Verdict::wellFormed),
            "a reply is whole when the judge can read it");
  }
  require(reply.size() == bytes.size(), "no byte of a reply is lost");
  return reply;
}

/// The server's reply to a tool call to which the application says this.
std::string toolResult(bridge::Reply reply) {
  bridge::CallResult result = bridge::callResult({.ended = true, .reply = std::move(reply)});
  std::string written;
  const auto request = json::read(R"({"method":"tools/call"})");
  server::handle(request->root(),
                 {.callApp = [&](std::string_view, json::Value) { return std::move(result); },
                  .writeReply = [&](std::string_view text) { written = text; }});
  return written;
}

std::string failure(const std::string& message) {
  return R"({"jsonrpc":"2.0","id":null,"result":{"content":[{"type":"text","text":)" +
         reference::literal(message) + R"(}],"isError":true}})";
}

std::string success(const std::string& text) {
  return R"({"jsonrpc":"2.0","id":null,"result":{"content":[{"type":"text","text":)" +
         reference::literal(text) + "}]}}";
}

/// With U+FFFD in place of the characters that stand for unpaired surrogates in the reference.
std::string withoutSurrogates(std::string text) {
  for (std::size_t at = text.find('\xEE'); at < text.size(); at = text.find('\xEE', at + 3)) {
    if (static_cast<unsigned char>(text[at + 1]) < 0xA0) text.replace(at, 3, "\xEF\xBF\xBD");
  }
  return text;
}

/// What the server must reply.
std::string expected(std::string_view bytes) {
  const nlohmann::json reply =
      reference::verdict(bytes) == Verdict::wellFormed ? reference::tree(bytes) : nullptr;
  if (!reply.is_object()) return failure("Quillmark sent an unreadable reply.");
  if (reply.value("ok", nlohmann::json()) == true) {
    return success(reference::pretty(reply.value("result", nlohmann::json::object())));
  }
  const nlohmann::json error = reply.value("error", nlohmann::json());
  const std::string message = error.is_string() ? error.get<std::string>() : "";
  if (message.starts_with('s')) return failure(withoutSurrogates(message.substr(1)));
  return failure("Quillmark refused the request.");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Input input(data, size);
  const std::uint8_t seed = input.byte();
  const std::string_view bytes = input.rest();

  const std::string told = toolResult(received(bytes, seed));
  require(reference::verdict(told) != Verdict::malformed, "the tool result is JSON", told);
  require(told.find('\n') == std::string::npos, "the tool result is one line", told);
  if (reference::verdict(bytes) == Verdict::none || !reference::isTellable(bytes)) return 0;
  require(told == expected(bytes), "the tool result is what the rules make of the reply",
          told + "\n" + expected(bytes));
  return 0;
}
