#include <optional>
#include <string>

#include "catalogue/tool_definitions.h"
#include "common/bytes.h"
#include "json/writer.h"
#include "server/server.h"

namespace server {
namespace {

using common::Bytes;
using Member = std::optional<json::Value>;

std::string stringOrEmpty(const Member& member) {
  return member ? member->string().value_or("") : "";
}

json::Value objectOrEmpty(const Member& member) {
  return member && member->isObject() ? *member : json::emptyObject();
}

/// The start of every reply; the "result" or "error" member and a closing brace follow.
Bytes openReply(const Member& id) {
  Bytes reply;
  reply.append(R"({"jsonrpc":"2.0","id":)");
  if (id) {
    json::appendCompact(reply, *id);
  } else {
    reply.append("null");
  }
  reply.append(',');
  return reply;
}

Bytes initializeReply(const Member& id) {
  Bytes reply = openReply(id);
  reply.append(R"("result":{"protocolVersion":"2024-11-05","capabilities":{"tools":{}},)"
               R"("serverInfo":{"name":"quillmark","version":")" QUILLMARK_MCP_VERSION R"("}}})");
  return reply;
}

Bytes toolsListReply(const Member& id) {
  Bytes reply = openReply(id);
  reply.append(R"("result":{"tools":)").append(toolDefinitions()).append("}}");
  return reply;
}

Bytes toolCallReply(const Member& id, const bridge::CallResult& result) {
  Bytes reply = openReply(id);
  reply.append(R"("result":{"content":[{"type":"text","text":)");
  if (result) {
    json::appendPrettyQuoted(reply, result->value());
    reply.append("}]}}");
  } else {
    json::appendQuoted(reply, result.error().message);
    reply.append(R"(}],"isError":true}})");
  }
  return reply;
}

Bytes methodErrorReply(const Member& id, const std::string& method) {
  Bytes reply = openReply(id);
  reply.append(R"("error":{"code":-32601,"message":)");
  json::appendQuoted(reply, "Unknown method " + method);
  reply.append("}}");
  return reply;
}

}  // namespace

void handle(json::Value request, const HandleDependencies& dependencies) {
  const std::string method = stringOrEmpty(request.member("method"));
  const Member id = request.member("id");
  if (method == "initialize") {
    dependencies.writeReply(initializeReply(id).view());
  } else if (method == "tools/list") {
    dependencies.writeReply(toolsListReply(id).view());
  } else if (method == "tools/call") {
    const json::Value params = objectOrEmpty(request.member("params"));
    const std::string tool = stringOrEmpty(params.member("name"));
    const json::Value arguments = objectOrEmpty(params.member("arguments"));
    dependencies.writeReply(toolCallReply(id, dependencies.callApp(tool, arguments)).view());
  } else if (id) {
    dependencies.writeReply(methodErrorReply(id, method).view());
  }
}

}  // namespace server
