#include "bridge/call_app.h"

#include <gtest/gtest.h>

#include <csignal>
#include <string>
#include <string_view>

#include "json/reader.h"
#include "json/writer.h"
#include "tests/support/scripts.h"
#include "tests/unit/home_override.h"
#include "tests/unit/reply_of.h"

namespace {

constexpr std::string_view unreadable = "Quillmark sent an unreadable reply.";
constexpr std::string_view refused = "Quillmark refused the request.";

/// The result as text: the compact value, or "failure: " and the message.
std::string toText(const bridge::CallResult& result) {
  if (!result) return "failure: " + result.error().message;
  common::Bytes text;
  json::appendCompact(text, result->value());
  return std::string(text.view());
}

std::string resultOf(std::string_view reply) {
  return toText(bridge::callResult(outcomeWith(reply)));
}

std::string failure(std::string_view message) {
  return "failure: " + std::string(message);
}

TEST(CallResult, WithoutReplyInTimeIsNoResponse) {
  EXPECT_EQ(toText(bridge::callResult({.ended = false, .reply = std::nullopt})),
            failure("No response from Quillmark."));
}

TEST(CallResult, EndWithoutBytesIsUnreadable) {
  EXPECT_EQ(toText(bridge::callResult({.ended = true, .reply = std::nullopt})),
            failure(unreadable));
}

TEST(CallResult, ReplyThatIsNotAnObjectIsUnreadable) {
  for (const char* reply : {"[]", R"([{"ok":true}])", R"("ok")", "true", "1", "null", "no JSON",
                            " ", R"({"ok":true)", R"({"ok":true}x)", R"({"ok":true}{"ok":true})",
                            R"({"ok":true,"result":01})", "{\"ok\":true,\"result\":\"\xFF\"}"}) {
    EXPECT_EQ(resultOf(reply), failure(unreadable)) << reply;
  }
}

TEST(CallResult, OkWithAResultIsTheResult) {
  EXPECT_EQ(resultOf(R"({"ok":true,"result":{"a":[1,2]}})"), R"({"a":[1,2]})");
  EXPECT_EQ(resultOf(R"( { "result" : [ ] , "ok" : true } )"), "[]");
}

TEST(CallResult, OkWithoutAResultIsAnEmptyObject) {
  EXPECT_EQ(resultOf(R"({"ok":true})"), "{}");
}

TEST(CallResult, ResultMayBeAnyValue) {
  for (const char* value : {"null", "false", "0", "-1.50", R"("text")", "[]", "{}"}) {
    EXPECT_EQ(resultOf(R"({"ok":true,"result":)" + std::string(value) + "}"), value);
  }
}

TEST(CallResult, OkWithAnErrorIsTheResult) {
  EXPECT_EQ(resultOf(R"({"ok":true,"error":"ignored","result":{"a":1}})"), R"({"a":1})");
  EXPECT_EQ(resultOf(R"({"ok":true,"error":"ignored"})"), "{}");
}

TEST(CallResult, ErrorIsTheMessageUnchanged) {
  EXPECT_EQ(resultOf(R"({"error":"The drive is gone."})"), failure("The drive is gone."));
  EXPECT_EQ(resultOf(R"({"ok":false,"error":" a\/b\n\u00e9 "})"), failure(" a/b\n\xC3\xA9 "));
  EXPECT_EQ(resultOf(R"({"ok":null,"error":"x","result":{}})"), failure("x"));
}

TEST(CallResult, UnpairedSurrogatesInAnErrorBecomeReplacementCharacters) {
  EXPECT_EQ(resultOf(R"({"error":"a\ud800\udbff\udfff\udc00b\ud83d\ude00"})"),
            failure("a\xEF\xBF\xBD\xF4\x8F\xBF\xBF\xEF\xBF\xBD"
                    "b\xF0\x9F\x98\x80"));
}

TEST(CallResult, EmptyErrorIsAnEmptyMessage) {
  EXPECT_EQ(resultOf(R"({"ok":false,"error":""})"), failure(""));
}

TEST(CallResult, WithoutErrorTextIsARefusal) {
  for (const char* reply : {"{}", R"({"ok":false})", R"({"ok":false,"result":{"a":1}})",
                            R"({"ok":false,"error":null})", R"({"ok":false,"error":{"error":"x"}})",
                            R"({"ok":"true","error":1})", R"({"OK":true,"Error":"x"})"}) {
    EXPECT_EQ(resultOf(reply), failure(refused)) << reply;
  }
}

TEST(CallResult, OnlyTrueIsOk) {
  for (const char* ok : {"1", R"("true")", "[true]", "null", "false"}) {
    EXPECT_EQ(resultOf(R"({"result":{},"ok":)" + std::string(ok) + "}"), failure(refused)) << ok;
  }
}

TEST(CallResult, OwnsTheBytesOfItsValue) {
  auto result = bridge::callResult(outcomeWith(R"({"ok":true,"result":{"a":"b"}})"));
  const bridge::CallResult moved = std::move(result);
  EXPECT_EQ(toText(moved), R"({"a":"b"})");
}

class CallApp : public testing::Test {
 protected:
  void SetUp() override {
    std::signal(SIGPIPE, SIG_IGN);  // for the application
    home.file().publish(app.port(), "secret", 3);
  }

  HomeOverride home;
  ScriptedApp app;
};

TEST_F(CallApp, SendsAProbeAndThenTheCall) {
  app.script({reply("any bytes answer a probe"), succeed(R"({"found":[]})")});
  const auto arguments = json::read(R"({"query":"a/b","limit":1.0})");
  EXPECT_EQ(toText(bridge::callApp("search_drives", arguments->root())), R"({"found":[]})");
  ASSERT_EQ(app.connectionCount(), 2U);
  EXPECT_EQ(app.record(0).received,
            R"({"version":3,"token":"secret","tool":"drive_status","arguments":{}})");
  EXPECT_EQ(app.record(1).received, R"({"version":3,"token":"secret","tool":"search_drives",)"
                                    R"("arguments":{"query":"a\/b","limit":1.0}})");
}

TEST_F(CallApp, ForwardsAnyToolNameAndReturnsTheError) {
  app.script({succeed(), refuse("There is no such tool.")});
  EXPECT_EQ(toText(bridge::callApp("", json::emptyObject())), failure("There is no such tool."));
  EXPECT_EQ(app.record(1).received, R"({"version":3,"token":"secret","tool":"","arguments":{}})");
}

}  // namespace
