#pragma once

#include <string>
#include <string_view>

#include "tests/support/scripted_app.h"

/// What the scripted application does with a connection, ready-made. Each but hangUp() and
/// reset() first reads the whole request, and leaves the connection open.

/// Writes this text at once.
ScriptedApp::Script reply(std::string text);
/// A success with an empty result: what a probe usually gets.
ScriptedApp::Script answer();
/// A success with this JSON text as its result.
ScriptedApp::Script succeed(std::string_view result);
/// A refusal with this text, which must need no escapes.
ScriptedApp::Script refuse(std::string_view error);
/// Writes two parts with a pause between them.
ScriptedApp::Script replyInTwoParts(std::string first, std::string second,
                                    ScriptedApp::Duration pause);
/// Writes the text when the test calls ScriptedApp::release().
ScriptedApp::Script replyWhenReleased(std::string text);
/// Says nothing for ever.
ScriptedApp::Script silence();
/// Closes without a word, the request unread.
ScriptedApp::Script hangUp();
/// Breaks the connection off, the request unread.
ScriptedApp::Script reset();
/// Reads the request, then closes without a word.
ScriptedApp::Script readAndHangUp();
