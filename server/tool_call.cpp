#include "server/tool_call.h"

#include <string>

#include "json/layout.h"
#include "server/reply_text.h"

namespace server {
namespace {

json::Value objectOrEmpty(const std::optional<json::Value>& value) {
  return value && value->isObject() ? *value : json::emptyObject();
}

}  // namespace

json::Text toolCallReply(json::Value request, const std::optional<json::Value>& id,
                         const std::function<bridge::CallResult(std::string_view tool,
                                                                json::Value arguments)>& callApp) {
  const json::Value params = objectOrEmpty(request.member("params"));
  const std::optional<json::Value> name = params.member("name");
  const std::string tool = name ? name->string().value_or("") : "";
  const json::Value arguments = objectOrEmpty(params.member("arguments"));

  const bridge::CallResult result = callApp(tool, arguments);

  json::Text reply = openReply(id);
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

}  // namespace server
