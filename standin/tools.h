#pragma once

#include <nlohmann/json.hpp>

#include "standin/arguments.h"
#include "standin/drives.h"
#include "standin/outcome.h"

/// The eleven tools. Each takes the drives and arguments that were checked against its
/// parameters, and returns its result, always a JSON object, or a refusal. All of them may
/// run at the same time on different threads.
namespace standin {

using Tool = Outcome<nlohmann::json>(Drives& drives, const Arguments& call);

Tool searchDrives;  // tools_browse.cpp
Tool listDirectory;
Tool getFileInfo;
Tool recentChanges;
Tool readFile;  // tools_text.cpp
Tool writeFile;
Tool transferFile;    // tools_transfer.cpp
Tool findDuplicates;  // tools_space.cpp
Tool storageSummary;
Tool proposeCleanup;
Tool driveStatus;  // tools_status.cpp

}  // namespace standin
