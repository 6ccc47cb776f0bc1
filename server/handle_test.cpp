#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

#include "catalogue/tool_definitions.h"
#include "server/server.h"
#include "tests/unit/reply_of.h"
#include "tests/unit/written.h"

namespace {

/// handle() with an application that always sends the same reply.
class Handle : public testing::Test {
 protected:
  /// All replies to the message.
  std::vector<std::string> replies(std::string_view message) {
    const auto document = json::read(message);
    std::vector<std::string> written;
    server::handle(document.value().root(),
                   {.callApp =
                        [this](std::string_view tool, json::Value arguments) {
                          common::Bytes text;
                          json::appendCompact(text, arguments);
                          calls.push_back(std::string(tool) + std::string(text.view()));
                          return bridge::callResult(outcomeWith(appReply));
                        },
                    .writeReply = [&](std::string_view reply) { written.emplace_back(reply); }});
    return written;
  }

  /// The only reply to the message.
  std::string reply(std::string_view message) {
    const auto written = replies(message);
    return written.size() == 1 ? written.front() : std::to_string(written.size()) + " replies";
  }

  /// The text of the tool result in the reply to the message.
  std::string toolText(std::string_view message) {
    return nlohmann::json::parse(reply(message)).at("result").at("content").at(0).at("text");
  }

  std::string appReply = R"({"ok":true})";
  std::vector<std::string> calls;  ///< name and arguments of each
};

using Calls = std::vector<std::string>;

constexpr std::string_view initialized =
    R"("result":{"protocolVersion":"2024-11-05","capabilities":{"tools":{}},)"
    R"("serverInfo":{"name":"quillmark","version":"1.0.0"}}})";

TEST_F(Handle, AnswersInitialize) {
  EXPECT_EQ(reply(R"({"jsonrpc":"2.0","id":1,"method":"initialize","params":{}})"),
            R"({"jsonrpc":"2.0","id":1,)" + std::string(initialized));
}

TEST_F(Handle, IgnoresTheParametersOfInitialize) {
  EXPECT_EQ(reply(R"({"jsonrpc":7,"id":1,"method":"initialize","params":[{"protocolVersion":3}]})"),
            R"({"jsonrpc":"2.0","id":1,)" + std::string(initialized));
}

TEST_F(Handle, AnswersSupportedMethodsWithoutIdWithIdNull) {
  EXPECT_EQ(reply(R"({"method":"initialize"})"),
            R"({"jsonrpc":"2.0","id":null,)" + std::string(initialized));
  for (const char* method : {"tools/list", "tools/call"}) {
    const auto answer = reply(R"({"method":")" + std::string(method) + R"("})");
    EXPECT_TRUE(nlohmann::json::parse(answer).at("id").is_null()) << method;
    EXPECT_TRUE(nlohmann::json::parse(answer).contains("result")) << method;
  }
}

TEST_F(Handle, RepeatsAnyIdUnchanged) {
  for (const char* id :
       {"1", "-1.50", "1e400", "12345678901234567890123", R"("abc")", R"("")", R"("a\/b\n")",
        "null", "true", "[]", R"([1,{"a":null}])", R"({"b":1,"a":2})"}) {
    EXPECT_EQ(reply(R"({"method":"initialize","id":)" + std::string(id) + "}"),
              R"({"jsonrpc":"2.0","id":)" + std::string(id) + "," + std::string(initialized));
  }
}

TEST_F(Handle, AnswersToolsListWithTheCatalogue) {
  EXPECT_EQ(
      reply(R"({"id":"x","method":"tools/list","params":{"cursor":"y"}})"),
      R"({"jsonrpc":"2.0","id":"x","result":{"tools":)" + std::string(toolDefinitions()) + "}}");
  EXPECT_EQ(calls, Calls{});
}

TEST_F(Handle, UnknownMethodIsAnError) {
  EXPECT_EQ(reply(R"({"id":1,"method":"ping"})"),
            R"({"jsonrpc":"2.0","id":1,"error":{"code":-32601,"message":"Unknown method ping"}})");
  EXPECT_EQ(reply(R"({"id":1,"method":"a\/b\n\u00e9\ud800"})"),
            "{\"jsonrpc\":\"2.0\",\"id\":1,\"error\":{\"code\":-32601,"
            "\"message\":\"Unknown method a\\/b\\n\xC3\xA9\\ud800\"}}");
}

TEST_F(Handle, MethodsMustMatchExactly) {
  for (const std::string method :
       {"Initialize", "initialize ", "tools", "tools/List", "tools/lists", "tools/call/x", ""}) {
    const auto answer = nlohmann::json::parse(reply(R"({"id":1,"method":")" + method + R"("})"));
    EXPECT_EQ(answer.at("error").at("message"), "Unknown method " + method);
  }
}

TEST_F(Handle, EscapedMethodNameIsTheSameMethod) {
  EXPECT_EQ(reply(R"({"\u0069d":1,"method":"\u0069nitialize"})"),
            R"({"jsonrpc":"2.0","id":1,)" + std::string(initialized));
  EXPECT_EQ(replies(R"({"id":1,"method":"tools\/list"})").size(), 1U);
}

TEST_F(Handle, MissingMethodOrOneOfAnotherTypeIsUnknown) {
  for (const char* message :
       {R"({"id":null})", R"({"id":null,"method":1})", R"({"id":null,"method":null})",
        R"({"id":null,"method":["initialize"]})", R"({"id":null,"result":{}})"}) {
    EXPECT_EQ(reply(message),
              R"({"jsonrpc":"2.0","id":null,"error":{"code":-32601,"message":"Unknown method "}})")
        << message;
  }
}

TEST_F(Handle, UnknownMethodWithoutAnIdIsIgnored) {
  for (const char* message : {R"({"method":"notifications/initialized"})", R"({"method":"ping"})",
                              "{}", R"({"method":1})", R"({"Id":1,"method":"ping"})"}) {
    EXPECT_EQ(replies(message), Calls{}) << message;
  }
}

TEST_F(Handle, ForwardsNameAndArguments) {
  reply(
      R"({"id":1,"method":"tools/call","params":{"name":"read_file","arguments":{"path":"a/b","n":1.0}}})");
  EXPECT_EQ(calls, Calls{R"(read_file{"path":"a\/b","n":1.0})"});
}

TEST_F(Handle, MissingParametersOrThoseOfAnotherTypeAreEmpty) {
  for (const char* params :
       {"null", "[]", R"("name")", "{}", R"({"name":1,"arguments":"x"})",
        R"({"name":["a"],"arguments":[{"a":1}]})", R"({"name":null,"arguments":null})",
        R"({"Name":"a","Arguments":{"a":1}})"}) {
    calls.clear();
    reply(R"({"id":1,"method":"tools/call","params":)" + std::string(params) + "}");
    EXPECT_EQ(calls, Calls{"{}"}) << params;
  }
  calls.clear();
  reply(R"({"id":1,"method":"tools/call"})");
  EXPECT_EQ(calls, Calls{"{}"});
}

TEST_F(Handle, ForwardsCallsOfUnknownTools) {
  reply(R"({"id":1,"method":"tools/call","params":{"name":"no/such\ttool"}})");
  EXPECT_EQ(calls, Calls{"no/such\ttool{}"});
}

TEST_F(Handle, ResultIsPrettyTextWithSortedNames) {
  appReply = R"({"ok":true,"result":{"b":[1.0],"a":"x\/y\n"}})";
  EXPECT_EQ(reply(R"({"id":1,"method":"tools/call"})"),
            R"({"jsonrpc":"2.0","id":1,"result":{"content":[{"type":"text","text":)"
            R"("{\n  \"a\" : \"x\\\/y\\n\",\n  \"b\" : [\n    1.0\n  ]\n}"}]}})");
}

TEST_F(Handle, ScalarResultIsItsText) {
  for (const char* scalar : {"null", "true", "-1.50", R"("text")"}) {
    appReply = R"({"ok":true,"result":)" + std::string(scalar) + "}";
    EXPECT_EQ(toolText(R"({"id":1,"method":"tools/call"})"), scalar);
  }
}

TEST_F(Handle, FailureIsATextMarkedAsAnError) {
  appReply = R"({"ok":false,"error":"No \"drive\" at a\/b.\n"})";
  EXPECT_EQ(reply(R"({"id":1,"method":"tools/call"})"),
            R"({"jsonrpc":"2.0","id":1,"result":{"content":[{"type":"text",)"
            R"("text":"No \"drive\" at a\/b.\n"}],"isError":true}})");
}

TEST_F(Handle, UnpairedSurrogatesAreKeptInAnIdAndReplacedInAMessage) {
  appReply = R"({"ok":false,"error":"\ud800"})";
  EXPECT_EQ(reply(R"({"id":"\udfff","method":"tools/call"})"),
            R"({"jsonrpc":"2.0","id":"\udfff","result":{"content":[{"type":"text",)"
            "\"text\":\"\xEF\xBF\xBD\"}],\"isError\":true}}");
}

TEST_F(Handle, EveryReplyIsOneLine) {
  appReply = R"({"ok":true,"result":{"a":"1\n2","b":{"c":[]}}})";
  for (const char* method : {"initialize", "tools/list", "tools/call", "x\\ny"}) {
    EXPECT_EQ(reply(R"({"id":"a\nb","method":")" + std::string(method) + R"("})").find('\n'),
              std::string::npos);
  }
}

}  // namespace
