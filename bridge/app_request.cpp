#include "bridge/app_request.h"

#include <string>

#include "json/layout.h"

namespace bridge {

json::Text appRequest(const Endpoint& endpoint, std::string_view tool, json::Value arguments) {
  json::Text request;
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
