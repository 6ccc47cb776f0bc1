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

// Tools take no lists and objects. An agent may send them all the same, nested very deeply.
std::string argumentText(const json& arguments) {
  std::string text;
  for (const auto& [name, value] : arguments.items()) {
    text += (text.empty() ? "" : ", ") + name + ": " +
            (value.is_structured() ? value.type_name() : value.dump());
  }
  return text;
}

}  // namespace

void CallLog::add(std::string_view request, std::string_view reply) {
  const json call = json::parse(request, nullptr, false);
  const json answer = json::parse(reply, nullptr, false);
  if (!call.is_object() || !answer.is_object()) return;
  const auto tool = call.find("tool");
  const auto arguments = call.find("arguments");
  if (tool == call.end() || !tool->is_string() || arguments == call.end()) return;
  const std::scoped_lock lock(mutex_);
  probed_ = !probed_ && *tool == "drive_status";
  if (probed_) return;
  const std::string error = answer.value("error", "");
  print("", tool->get<std::string>() + "  " + argumentText(*arguments));
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
