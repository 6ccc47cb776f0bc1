#include "server/reply_text.h"

#include "json/layout.h"

namespace server {

json::Text openReply(const std::optional<json::Value>& id) {
  json::Text reply;
  reply.append(R"({"jsonrpc":"2.0","id":)");
  if (id) {
    json::appendCompact(reply, *id);
  } else {
    reply.append("null");
  }
  reply.append(',');
  return reply;
}

}  // namespace server
