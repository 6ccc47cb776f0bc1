#pragma once

#include <string>
#include <string_view>

#include "tests/support/scripted_app.h"

// Ready-made scripts. Unless the name ends in "Unread", a script first reads the whole request. It
// leaves the connection open unless it closes or resets it.

/// Writes this text.
ScriptedApp::Script reply(std::string text);
/// A success with this JSON text as its result. With an empty object it is the usual answer to a
/// probe.
ScriptedApp::Script succeed(std::string_view result = "{}");
/// An error with this message, which must need no escapes.
ScriptedApp::Script refuse(std::string_view error);
/// Writes two parts with a pause between them.
ScriptedApp::Script replyInTwoParts(std::string first, std::string second,
                                    ScriptedApp::Duration pause);
/// Writes the text after a pause.
ScriptedApp::Script replyAfter(ScriptedApp::Duration pause, std::string text);
/// Writes the text when the test calls ScriptedApp::release().
ScriptedApp::Script replyWhenReleased(std::string text);
/// Writes the text, then ends the stream.
ScriptedApp::Script replyAndHalfClose(std::string text);
/// Never replies.
ScriptedApp::Script silence();
ScriptedApp::Script closeUnread();
ScriptedApp::Script resetUnread();
ScriptedApp::Script readAndClose();
ScriptedApp::Script readAndReset();
