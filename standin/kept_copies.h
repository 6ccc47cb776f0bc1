#pragma once

#include <filesystem>
#include <string>

#include "standin/drive.h"
#include "standin/outcome.h"

namespace standin {

/// Copies a file of the drive, about to be replaced, into the drive's hidden undo folder,
/// under the time and its own path, so that the user can bring it back. Returns where the
/// copy is, relative to the drive.
Outcome<std::string> keepCopy(const Drive& drive, const std::filesystem::path& file);

}  // namespace standin
