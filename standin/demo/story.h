#pragma once

#include <filesystem>
#include <string>

#include "standin/demo/transcript.h"

namespace demo {

/// Runs one session with this server and shows it in the transcript, chapter by chapter. Creates
/// what it needs in the folder, which must be empty. Throws std::exception if the server or the
/// application does not do what the story says.
void showSession(const std::string& server, const std::filesystem::path& folder,
                 Transcript& transcript);

}  // namespace demo
