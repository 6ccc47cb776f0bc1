#include "benchmarks/driver/payloads.h"

#include <array>
#include <cstdio>

#include <nlohmann/json.hpp>

namespace {

constexpr std::string_view readArguments = R"({"drive":"Field Work","path":"notes/long.txt"})";

constexpr std::array<std::string_view, 10> textLines{
    "## Notes from the review of all drives, first part",
    "The archive on \"Field Work\" is still a placeholder; ask before reading it.",
    "",
    "\tif (path == \"/Shared/Reports\") { return entry.bytes + overhead; }",
    "Café menu, second draft: crème brûlée, Gemüse — 東京 📁",
    "2024-03-17T09:41:05Z\t48113\tInvoices/2023/March.pdf\tsynced",
    "She said that nothing had been lost, and that the rest could wait until the summer.",
    "Kept on this Mac: 18 of 240 files; the others are read when somebody needs them",
    R"(C:\Users\old\Desktop\scan.tif was moved; see https://files.example/scan?id=7)",
    "name,size,modified,drive,path,kind,owner,checksum,downloaded,shared"};

void escapeSlashes(std::string& json) {
  for (std::size_t at = json.find('/'); at != std::string::npos; at = json.find('/', at + 2)) {
    json.insert(at, 1, '\\');
  }
}

// The inside of a JSON string of exactly this many bytes. Applications of this platform spell a
// slash with a backslash before it, agent hosts without.
std::string longText(std::size_t bytes, bool slashesEscaped) {
  std::array<std::string, textLines.size()> spelt;
  for (std::size_t i = 0; i < spelt.size(); ++i) {
    const std::string quoted = nlohmann::json(textLines[i]).dump();
    spelt[i] = quoted.substr(1, quoted.size() - 2) + "\\n";
    if (slashesEscaped) escapeSlashes(spelt[i]);
  }
  std::string text;
  text.reserve(bytes);
  for (std::size_t number = 0;; ++number) {
    const std::string line = std::to_string(number) + ' ' + spelt[number % spelt.size()];
    if (text.size() + line.size() > bytes) break;
    text += line;
  }
  return text.append(bytes - text.size(), '.');
}

ToolCall makeCall(std::string_view tool, std::string arguments, std::string result) {
  ToolCall call;
  call.tool = tool;
  call.line = R"({"jsonrpc":"2.0","id":7,"method":"tools/call","params":{"name":")" + call.tool +
              R"(","arguments":)" + arguments + "}}\n";
  call.reply = R"({"result":)" + result + R"(,"ok":true})";
  call.arguments = std::move(arguments);
  call.result = std::move(result);
  return call;
}

std::string listedFile(int number) {
  char text[256];
  std::snprintf(text, sizeof text,
                R"({"path":"Reports\/%d\/Tax\/scan-%05d.pdf","size":%d,"name":"scan-%05d.pdf",)"
                R"("modified":"2024-%02d-%02dT09:41:%02dZ","downloaded":%s})",
                1990 + number % 35, number, 4096 + 131 * number, number, 1 + number % 12,
                1 + number % 28, number % 60, number % 5 == 0 ? "true" : "false");
  return text;
}

}  // namespace

ToolCall smallCall() {
  return makeCall("get_file_info", std::string(readArguments),
                  R"({"path":"notes\/long.txt","name":"long.txt","drive":"Field Work",)"
                  R"("size":481,"created":"2023-11-02T16:20:44Z",)"
                  R"("modified":"2024-03-17T09:41:05Z","downloaded":true,"shared":false,)"
                  R"("kind":"Plain text — “UTF-8”","tags":["notes","review"],)"
                  R"("permissions":{"write":true,"read":true}})");
}

ToolCall longTextReply(std::size_t bytes) {
  const auto call = [](std::string_view content) {
    return makeCall("read_file", std::string(readArguments),
                    R"({"path":"notes\/long.txt","drive":"Field Work","truncated":false,)"
                    R"("content":")" +
                        std::string(content) + R"("})");
  };
  return call(longText(bytes - call("").replyBytes(), true));
}

ToolCall listingReply() {
  std::string entries;
  for (int number = 0; number < 29'000; ++number) {
    if (number > 0) entries += ',';
    entries += listedFile(number);
  }
  return makeCall("list_directory", R"({"drive":"Field Work"})",
                  R"({"entries":[)" + entries + R"(],"drive":"Field Work","truncated":false})");
}

ToolCall longArgument(std::size_t bytes) {
  const auto call = [](std::string_view content) {
    return makeCall("write_file",
                    R"({"drive":"Field Work","path":"notes/long.txt","content":")" +
                        std::string(content) + R"("})",
                    R"({"path":"notes\/long.txt","written":true})");
  };
  return call(longText(bytes - call("").lineBytes(), false));
}
