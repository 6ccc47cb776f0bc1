#include "bridge/app_request.h"

#include <string>

#include "json/writer.h"

namespace bridge {

common::Bytes appRequest(const Endpoint& endpoint, std::string_view tool, json::Value arguments) {
  common::Bytes request;
  request.append(R"({"version":)").append(std::to_string(endpoint.version));
  request.append(R"(,"token":)");
  json::appendQuoted(request, endpoint.token);
  request.append(R"(,"tool":)");
  json::appendQuoted(request, tool);
  request.append(R"(,"arguments":)");
  json::appendCompact(request, arguments);
  request.append('}');
  return request;
}

}  // namespace bridge
