#include "benchmarks/driver/calls.h"

#include <cstdio>
#include <fstream>
#include <iterator>
#include <string_view>

namespace {

constexpr std::string_view lines =
    R"(## Notes from the review of all drives, first part\n)"
    R"(The archive on \"Field Work\" is still a placeholder; ask before reading it.\n\n)"
    R"(\tif (path == \"/Shared/Reports\") { return entry.bytes + overhead; }\n)"
    R"(Café menu, second draft: crème brûlée, Gemüse — 東京 📁\n)"
    R"(2024-03-17T09:41:05Z\t48113\tInvoices/2023/March.pdf\tsynced\n)"
    R"(She said that nothing had been lost, and that the rest could wait until the summer.\n)"
    R"(Kept on this Mac: 18 of 240 files; the others are read when somebody needs them\n)"
    R"(C:\\Users\\old\\Desktop\\scan.tif was moved; see https://files.example/scan?id=7\n)"
    R"(name,size,modified,drive,path,kind,owner,checksum,downloaded,shared\n)";

// The inside of a JSON string of exactly this many bytes.
std::string longText(std::size_t bytes, std::string_view slash) {
  std::string paragraph;
  for (const char byte : lines) byte == '/' ? paragraph += slash : paragraph += byte;
  std::string text;
  text.reserve(bytes);
  while (text.size() + paragraph.size() <= bytes) text += paragraph;
  return text.append(bytes - text.size(), '.');
}

Call request(const std::string& method, const std::string& parameters, const std::string& result) {
  return {R"({"jsonrpc":"2.0","id":7,"method":")" + method + R"(","params":)" + parameters + "}\n",
          result, ""};
}

Call toolCall(const std::string& tool, const std::string& arguments, const std::string& result) {
  Call call =
      request("tools/call", R"({"name":")" + tool + R"(","arguments":)" + arguments + "}", result);
  call.reply = R"({"result":)" + result + R"(,"ok":true})";
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

Call initialize() {
  return request("initialize", R"({"protocolVersion":"2024-11-05","capabilities":{}})",
                 R"({"protocolVersion":"2024-11-05","capabilities":{"tools":{}},)"
                 R"("serverInfo":{"name":"quillmark","version":"1.0.0"}})");
}

Call toolsList() {
  std::ifstream catalogue(QUILLMARK_CATALOGUE);
  return request("tools/list", "{}", {std::istreambuf_iterator(catalogue), {}});
}

Call smallCall() {
  return toolCall("get_file_info", R"({"drive":"Field Work","path":"notes/long.txt"})",
                  R"({"path":"notes\/long.txt","name":"long.txt","drive":"Field Work",)"
                  R"("size":481,"created":"2023-11-02T16:20:44Z",)"
                  R"("modified":"2024-03-17T09:41:05Z","downloaded":true,"shared":false,)"
                  R"("kind":"Plain text — “UTF-8”","tags":["notes","review"],)"
                  R"("permissions":{"write":true,"read":true}})");
}

// Applications of this platform write a slash as \/, agent hosts do not.
Call longTextReply(std::size_t bytes) {
  const auto call = [](const std::string& content) {
    return toolCall("read_file", R"({"drive":"Field Work","path":"notes/long.txt"})",
                    R"({"path":"notes\/long.txt","drive":"Field Work","truncated":false,)"
                    R"("content":")" +
                        content + R"("})");
  };
  return call(longText(bytes - call("").reply.size(), R"(\/)"));
}

Call listingReply() {
  std::string entries = listedFile(0);
  for (int number = 1; number < 29'000; ++number) entries += ',' + listedFile(number);
  return toolCall("list_directory", R"({"drive":"Field Work"})",
                  R"({"entries":[)" + entries + R"(],"drive":"Field Work","truncated":false})");
}

Call longArgument(std::size_t bytes) {
  const auto call = [](const std::string& content) {
    return toolCall(
        "write_file",
        R"({"drive":"Field Work","path":"notes/long.txt","content":")" + content + R"("})",
        R"({"path":"notes\/long.txt","written":true})");
  };
  return call(longText(bytes - call("").line.size(), "/"));
}
