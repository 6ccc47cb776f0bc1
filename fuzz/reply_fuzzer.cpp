// Converts an application's reply that arrives in pieces into the tool result, and compares it with
// that of another JSON library.
//
// Input: a byte that determines how the reply is cut into pieces, then the reply.

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

using reference::Validity;

/// A reply of these bytes. After each piece it must know whether it is whole.
bridge::Reply received(std::string_view bytes, std::uint8_t seed) {
  bridge::Reply reply;
  for (const std::size_t end : pieceEnds(bytes.size(), seed)) {
    const std::string_view piece = bytes.substr(reply.size(), end - reply.size());
    std::ranges::copy(piece, reply.room(piece.size()));
    reply.received(piece.size());
    const Validity validity = reference::validity(bytes.substr(0, end));
    require(validity == Validity::unknown || reply.isWhole() == (validity == Validity::valid),
            "a reply is whole if it is valid JSON");
  }
  require(reply.size() == bytes.size(), "no byte of a reply is lost");
  return reply;
}

/// The server's reply to a tool call to which the application sends this reply.
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

/// With U+FFFD in place of the characters that replace unpaired surrogates in the reference.
std::string withoutSurrogates(std::string text) {
  for (std::size_t at = text.find('\xEE'); at < text.size(); at = text.find('\xEE', at + 3)) {
    if (static_cast<unsigned char>(text[at + 1]) < 0xA0) text.replace(at, 3, "\xEF\xBF\xBD");
  }
  return text;
}

/// The expected reply of the server.
std::string expected(std::string_view bytes) {
  const nlohmann::json reply =
      reference::validity(bytes) == Validity::valid ? reference::tree(bytes) : nullptr;
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

  const std::string actual = toolResult(received(bytes, seed));
  require(reference::validity(actual) != Validity::invalid, "the tool result is JSON", actual);
  require(actual.find('\n') == std::string::npos, "the tool result is one line", actual);
  if (reference::validity(bytes) == Validity::unknown || !reference::isUnambiguous(bytes)) return 0;
  require(actual == expected(bytes), "the tool result is that of the reply",
          actual + "\n" + expected(bytes));
  return 0;
}
