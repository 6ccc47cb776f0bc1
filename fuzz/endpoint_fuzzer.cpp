// Loads an endpoint file with these bytes and compares the result with that of another JSON
// library.
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
#include "tests/unit/home_override.h"
#include "tests/unit/reference.h"
#include "tests/unit/written.h"

namespace {

/// The integer of a member of reference::tree(); none if it is not a signed 64-bit integer.
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

/// The expected endpoint, with "version" and "port" as numbers; null if there is none.
nlohmann::json expected(std::string_view bytes) {
  if (reference::validity(bytes) != reference::Validity::valid) return nullptr;
  const nlohmann::json tree = reference::tree(bytes);
  if (!tree.is_object()) return nullptr;
  const auto version = integer(tree.value("version", nlohmann::json()));
  const auto port = integer(tree.value("port", nlohmann::json()));
  const auto token = tree.value("token", nlohmann::json());
  const bool hasToken = token.is_string() && token.get_ref<const std::string&>().starts_with('s');
  if (!version || !port || !hasToken) return nullptr;
  return {{"version", *version}, {"port", *port}, {"token", token}};
}

/// The loaded endpoint in the same form.
nlohmann::json asJson(const std::optional<bridge::Endpoint>& endpoint) {
  if (!endpoint) return nullptr;
  return {{"version", endpoint->version},
          {"port", endpoint->port},
          {"token", reference::tree("[" + stringLiteral(endpoint->token) + "]").at(0)}};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const HomeOverride home;  // removed when the process exits
  home.file().remove();            // on some file systems, replacing it takes longer
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  std::ofstream(home.file().path(), std::ios::binary) << bytes;

  const auto endpoint = bridge::Endpoint::load();
  if (reference::validity(bytes) == reference::Validity::unknown) return 0;
  require(asJson(endpoint) == expected(bytes), "the endpoint is that of the file",
          asJson(endpoint).dump(-1, ' ', true) + "\n" + expected(bytes).dump(-1, ' ', true));
  return 0;
}
