#include "standin/demo/call_log.h"

#include <algorithm>
#include <ostream>
#include <string>

#include <nlohmann/json.hpp>

#include "standin/demo/text_layout.h"

using nlohmann::json;

namespace demo {
namespace {

// An error repeats what the agent sent; no part of it may control the terminal.
std::string printable(std::string text) {
  std::ranges::replace_if(
      text, [](unsigned char byte) { return byte < 0x20 || byte == 0x7F; }, '?');
  return text;
}

}  // namespace

void CallLog::add(std::string_view request, std::string_view reply) {
  const json call = json::parse(request, nullptr, false);
  const json answer = json::parse(reply, nullptr, false);
  if (!call.is_object() || !answer.is_object()) return;
  const json tool = call.value("tool", json());
  const std::scoped_lock lock(mutex_);
  probed_ = !probed_ && tool == "drive_status";
  if (probed_ || !tool.is_string()) return;
  const std::string error = answer.value("error", "");
  print("", tool.get<std::string>() + " " + call.value("arguments", json()).dump());
  print("  ", error.empty() ? "answered with " + std::to_string(reply.size()) + " bytes"
                            : "refused: " + error);
  out_.flush();
}

void CallLog::print(std::string_view indent, std::string_view text) {
  const std::size_t width = terminal_.width - indent.size();
  for (const std::string& line : wrapped(printable(shortened(text, 2 * width)), width)) {
    out_ << indent << line << '\n';
  }
}

}  // namespace demo
