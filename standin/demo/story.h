#pragma once

#include <filesystem>
#include <string>

#include "standin/demo/transcript.h"

namespace demo {

/// Holds one session with this server and shows it in the transcript, chapter by chapter. What it
/// needs, it makes in the folder, which is empty at first. Throws std::exception if the server or
/// the application does anything else than the story says.
void showSession(const std::string& server, const std::filesystem::path& folder,
                 Transcript& transcript);

}  // namespace demo
