#include "bridge/call_app.h"

#include <utf8.h>

#include <chrono>
#include <optional>
#include <utility>

#include "bridge/app_request.h"
#include "bridge/reachability.h"

namespace bridge {

using namespace std::chrono_literals;

namespace {

std::unexpected<BridgeFailure> failure(std::string message) {
  return std::unexpected(BridgeFailure{std::move(message)});
}

}  // namespace

CallResult callApp(std::string_view tool, json::Value arguments) {
  constexpr auto startLimit = 20s;
  constexpr auto callLimit = 30s;
  const std::optional<Endpoint> endpoint = waitForApp(startLimit);
  if (!endpoint) {
    return failure(
        "Quillmark could not be started. Open it once from Applications, then try again.");
  }
  return callResult(exchange(endpoint->port, appRequest(*endpoint, tool, arguments), callLimit));
}

CallResult callResult(Outcome outcome) {
  if (!outcome.ended) return failure("No response from Quillmark.");
  auto document = outcome.reply ? outcome.reply->document() : std::nullopt;
  if (!document || !document->root().isObject()) {
    return failure("Quillmark sent an unreadable reply.");
  }
  const json::Value reply = document->root();
  if (const auto ok = reply.member("ok"); ok && ok->isTrue()) {
    const json::Value result = reply.member("result").value_or(json::emptyObject());
    return AppResult(std::move(*outcome.reply), std::move(*document), result);
  }
  const auto error = reply.member("error");
  if (const auto message = error ? error->string() : std::nullopt) {
    // Strict hosts reject a whole line for an unpaired surrogate.
    return failure(utf8::replace_invalid(*message));
  }
  return failure("Quillmark refused the request.");
}

}  // namespace bridge
