#include "tests/support/conversation.h"
#include "tests/support/protocol_schema.h"

namespace {

using nlohmann::json;

// Numbers that a parser would change or reject if it converted them.
constexpr std::string_view oddNumbers =
    "[1e+21,123456789012345678901234567890,-0,1E400,1.10,0.1e-7,-0.0,1e5,100000000000000000000.5]";

// Values arrive as they were written. The tests compare the text, because the JSON library of the
// other tests rejects some of these values.
class PassThrough : public Conversation {
 protected:
  // The next line, which must be a reply by the protocol's schema and contain this text.
  std::string receiveLineWith(std::string_view text) {
    const std::string line = receiveUncheckedLine();
    const std::size_t begin = line.find(text);
    if (begin == std::string::npos) throw std::runtime_error(line + " lacks " + std::string(text));
    EXPECT_EQ(schemaViolation(std::string(line).replace(begin, text.size(), "0")), "");
    return line;
  }
};

TEST_F(PassThrough, NumbersInAnIdAreKeptAsWritten) {
  for (const std::string_view number :
       {"1e+21", "123456789012345678901234567890", "-0", "1E400", "1.0", "9223372036854775808",
        "0.1e-7", oddNumbers.data()}) {
    const std::string id(number);
    sendLine(request("ping", id));
    const std::string line = receiveLineWith(id);
    EXPECT_TRUE(contains(line, "\"id\":" + id + ",") || contains(line, "\"id\":" + id + "}"));
  }
}

TEST_F(PassThrough, NumbersInArgumentsAreKeptAsWritten) {
  sendLine(toolCall(R"({"name":"x","arguments":{"n":)" + std::string(oddNumbers) + "}}"));
  receive();
  EXPECT_TRUE(contains(app.record(1).received, "{\"n\":" + std::string(oddNumbers) + "}"));
}

TEST_F(PassThrough, NumbersInAResultAreKeptAsWritten) {
  std::string expected = "[\n  ";
  for (const char letter : oddNumbers.substr(1, oddNumbers.size() - 2)) {
    expected += letter == ',' ? ",\n  " : std::string(1, letter);
  }
  expected += "\n]";
  const std::string reply = R"({"ok":true,"result":)" + std::string(oddNumbers) + "}";
  EXPECT_EQ(callText(reply), expected);
}

TEST_F(PassThrough, UnpairedSurrogatesInAnIdAreKept) {
  for (const std::string id : {R"("\ud800")", R"("a\udfffb")", R"("\udc00\ud800")"}) {
    sendLine(request("ping", id));
    EXPECT_TRUE(contains(receiveLineWith(id), "\"id\":" + id));
  }
}

TEST_F(PassThrough, UnpairedSurrogatesInAMethodAreKept) {
  sendLine(request(R"(pi\ud800ng/\udc01)"));
  const std::string line = receiveLineWith(R"(pi\ud800ng\/\udc01)");
  EXPECT_TRUE(contains(line, R"("Unknown method pi\ud800ng\/\udc01")"));
}

TEST_F(PassThrough, UnpairedSurrogatesInNameAndArgumentsAreForwarded) {
  sendLine(toolCall(R"({"name":"t\ud800","arguments":{"k\udc00":["x\udbff","\ud83d\ude00"]}})"));
  receive();
  const std::string sent = app.record(1).received;
  EXPECT_TRUE(contains(sent, R"("tool":"t\ud800")"));
  EXPECT_TRUE(contains(sent, R"({"k\udc00":["x\udbff","😀"]})"));
}

TEST_F(PassThrough, UnpairedSurrogatesInAResultAreKept) {
  EXPECT_EQ(callText(R"({"ok":true,"result":{"b\udfff":"\ud800x","a":"\ud800\ud800"}})"),
            "{\n  \"a\" : \"\\ud800\\ud800\",\n  \"b\\udfff\" : \"\\ud800x\"\n}");
}

TEST_F(PassThrough, UnpairedSurrogatesInAnErrorAreReplaced) {
  app.script({succeed(), refuse(R"(bad name \ud800/\udc00!)")});
  sendLine(toolCall(R"({"name":"x"})"));
  EXPECT_TRUE(contains(receiveLine(), "\"text\":\"bad name \xEF\xBF\xBD\\/\xEF\xBF\xBD!\""));
}

TEST_F(PassThrough, UnpairedSurrogatesInTheTokenAreForwarded) {
  endpointFile.write(R"({"version":1,"token":"s\ud800t","port":)" + std::to_string(app.port()) +
                     "}");
  callTool("x");
  EXPECT_TRUE(contains(app.record(0).received, R"("token":"s\ud800t")"));
  EXPECT_TRUE(contains(app.record(1).received, R"("token":"s\ud800t")"));
}

}  // namespace
