#include <optional>
#include <string>

#include "catalogue/tool_definitions.h"
#include "json/layout.h"
#include "server/reply_text.h"
#include "server/server.h"
#include "server/tool_call.h"

namespace server {
namespace {

json::Text initializeReply(const std::optional<json::Value>& id) {
  json::Text reply = openReply(id);
  reply.append(R"("result":{"protocolVersion":"2024-11-05","capabilities":{"tools":{}},)"
               R"("serverInfo":{"name":"quillmark","version":")" QUILLMARK_MCP_VERSION R"("}}})");
  return reply;
}

json::Text toolsListReply(const std::optional<json::Value>& id) {
  json::Text reply = openReply(id);
  reply.append(R"("result":{"tools":)").append(toolDefinitions()).append("}}");
  return reply;
}

json::Text methodErrorReply(const std::optional<json::Value>& id, const std::string& method) {
  json::Text reply = openReply(id);
  reply.append(R"("error":{"code":-32601,"message":)");
  json::appendQuoted(reply, "Unknown method " + method);
  reply.append("}}");
  return reply;
}

std::string stringOrEmpty(const std::optional<json::Value>& value) {
  return value ? value->string().value_or("") : "";
}

}  // namespace

void handle(json::Value request, const Surroundings& surroundings) {
  const std::string method = stringOrEmpty(request.member("method"));
  const std::optional<json::Value> id = request.member("id");
  if (method == "initialize") {
    surroundings.writeReply(initializeReply(id).view());
  } else if (method == "tools/list") {
    surroundings.writeReply(toolsListReply(id).view());
  } else if (method == "tools/call") {
    surroundings.writeReply(toolCallReply(request, id, surroundings.callApp).view());
  } else if (id) {
    surroundings.writeReply(methodErrorReply(id, method).view());
  }
}

}  // namespace server
