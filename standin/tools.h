#pragma once

#include <nlohmann/json.hpp>

#include "standin/arguments.h"
#include "standin/drives.h"

/// The eleven tools. Each returns its result, a JSON object, or throws Refusal or std::system_error
/// if it can't carry out the call. Any number of them may run at the same time.
namespace standin {

using Tool = nlohmann::json(Drives& drives, const Arguments& call);

Tool searchDrives;  // tools_browse.cpp
Tool listDirectory;
Tool getFileInfo;
Tool recentChanges;
Tool readFile;  // tools_read_write.cpp
Tool writeFile;
Tool transferFile;
Tool findDuplicates;  // tools_space.cpp
Tool storageSummary;
Tool proposeCleanup;
Tool driveStatus;  // tools_status.cpp

}  // namespace standin
