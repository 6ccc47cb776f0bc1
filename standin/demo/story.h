#pragma once

#include <filesystem>
#include <string>

#include "standin/demo/transcript.h"

namespace demo {

/// Tells the story of one session with this server, and shows it in the transcript. The folder is
/// empty at first and takes what the story needs. Throws if anything is not as the story says.
void tellStory(const std::string& server, const std::filesystem::path& folder,
               Transcript& transcript);

}  // namespace demo
