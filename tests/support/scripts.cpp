#include "tests/support/scripts.h"

#include <utility>

ScriptedApp::Script reply(std::string text) {
  return [text = std::move(text)](AppConnection& connection) {
    connection.readRequest();
    connection.write(text);
  };
}

ScriptedApp::Script succeed(std::string_view result) {
  return reply(R"({"ok":true,"result":)" + std::string(result) + "}");
}

ScriptedApp::Script refuse(std::string_view error) {
  return reply(R"({"ok":false,"error":")" + std::string(error) + R"("})");
}

ScriptedApp::Script replyInTwoParts(std::string first, std::string second,
                                    ScriptedApp::Duration pause) {
  return [first = std::move(first), second = std::move(second), pause](AppConnection& connection) {
    connection.readRequest();
    connection.write(first);
    connection.pause(pause);
    connection.write(second);
  };
}

ScriptedApp::Script replyAfter(ScriptedApp::Duration pause, std::string text) {
  return [pause, text = std::move(text)](AppConnection& connection) {
    connection.readRequest();
    connection.pause(pause);
    connection.write(text);
  };
}

ScriptedApp::Script replyWhenReleased(std::string text) {
  return [text = std::move(text)](AppConnection& connection) {
    connection.readRequest();
    connection.waitForRelease();
    connection.write(text);
  };
}

ScriptedApp::Script replyAndHalfClose(std::string text) {
  return [text = std::move(text)](AppConnection& connection) {
    connection.readRequest();
    connection.write(text);
    connection.halfClose();
  };
}

ScriptedApp::Script silence() {
  return [](AppConnection& connection) { connection.readRequest(); };
}

ScriptedApp::Script closeUnread() {
  return [](AppConnection& connection) { connection.close(); };
}

ScriptedApp::Script resetUnread() {
  return [](AppConnection& connection) { connection.reset(); };
}

ScriptedApp::Script readAndClose() {
  return [](AppConnection& connection) {
    connection.readRequest();
    connection.close();
  };
}

ScriptedApp::Script readAndReset() {
  return [](AppConnection& connection) {
    connection.readRequest();
    connection.reset();
  };
}
