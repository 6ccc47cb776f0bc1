#pragma once

#include <string>
#include <string_view>

#include "standin/drives.h"

namespace standin {

/// Names with this beginning are the stand-in's own: the folder that keeps replaced files, and
/// files that are being written. No tool shows or reaches them.
inline constexpr std::string_view hiddenPrefix = ".quillmark-undo";

/// Ignores case, as many volumes do.
bool isHidden(const std::string& name);

/// Copies a file that is about to be replaced into the drive's undo folder, so that the user can
/// restore it. Returns the path of the copy on the drive.
std::string keepForUndo(const Place& place);

}  // namespace standin
