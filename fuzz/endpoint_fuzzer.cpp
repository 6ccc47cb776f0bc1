// Loads an endpoint file with these bytes, judged by another JSON library.
//
// Input: the bytes.

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

#include "bridge/endpoint.h"
#include "fuzz/require.h"
#include "json/writer.h"
#include "tests/unit/published_home.h"
#include "tests/unit/reference.h"
#include "tests/unit/written.h"

namespace {

/// The integer that a member of reference::tree() spells, if it fits 64 bits with its sign.
std::optional<std::int64_t> integer(const nlohmann::json& value) {
  if (!value.is_string() || !value.get_ref<const std::string&>().starts_with('n')) {
    return std::nullopt;
  }
  const auto number = nlohmann::json::parse(value.get<std::string>().substr(1));
  if (!number.is_number_integer()) return std::nullopt;
  constexpr std::uint64_t most = std::numeric_limits<std::int64_t>::max();
  if (number.is_number_unsigned() && number.get<std::uint64_t>() > most) return std::nullopt;
  return number.get<std::int64_t>();
}

/// The file as judged: with "version" and "port" as numbers, or null if it is unusable.
nlohmann::json judged(std::string_view bytes) {
  if (reference::verdict(bytes) != reference::Verdict::wellFormed) return nullptr;
  const nlohmann::json tree = reference::tree(bytes);
  if (!tree.is_object()) return nullptr;
  const auto version = integer(tree.value("version", nlohmann::json()));
  const auto port = integer(tree.value("port", nlohmann::json()));
  const auto token = tree.value("token", nlohmann::json());
  const bool hasToken = token.is_string() && token.get_ref<const std::string&>().starts_with('s');
  if (!version || !port || !hasToken) return nullptr;
  return {{"version", *version}, {"port", *port}, {"token", token}};
}

/// The same of what was loaded.
nlohmann::json told(const std::optional<bridge::Endpoint>& endpoint) {
  if (!endpoint) return nullptr;
  return {{"version", endpoint->version},
          {"port", endpoint->port},
          {"token", reference::tree("[" + stringLiteral(endpoint->token) + "]").at(0)}};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const PublishedHome home;  // removed when the process exits
  home.file().remove();             // some file systems take long to write one anew
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  std::ofstream(home.file().path(), std::ios::binary) << bytes;

  const auto endpoint = bridge::Endpoint::load();
  if (reference::verdict(bytes) == reference::Verdict::none) return 0;
  require(told(endpoint) == judged(bytes), "the endpoint is what the file says",
          told(endpoint).dump(-1, ' ', true) + "\n" + judged(bytes).dump(-1, ' ', true));
  return 0;
}
