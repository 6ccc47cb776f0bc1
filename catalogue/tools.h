#pragma once

#include <span>
#include <string_view>

#include "catalogue/agent_protocol.h"

// The texts are the interface: agents choose a tool and fill in its arguments by them. Each
// tool has texts of its own, even where those of two tools nearly agree.

namespace AgentProtocol {
namespace parameters {

inline constexpr NamedProperty searchDrivesProperties[] = {
    {"query", {"string", "What to search for. Matches anywhere in the name."}},
    {"limit", {"integer", "Maximum results. Defaults to 50."}},
};
inline constexpr std::string_view searchDrivesRequired[] = {"query"};

inline constexpr NamedProperty listDirectoryProperties[] = {
    {"drive", {"string", "The drive's name, as shown in Finder."}},
    {"path", {"string", "Folder path within the drive. Empty for the top level."}},
};
inline constexpr std::string_view listDirectoryRequired[] = {"drive"};

inline constexpr NamedProperty getFileInfoProperties[] = {
    {"drive", {"string", "The drive's name."}},
    {"path", {"string", "Path to the file within the drive."}},
};
inline constexpr std::string_view getFileInfoRequired[] = {"drive", "path"};

inline constexpr NamedProperty readFileProperties[] = {
    {"drive", {"string", "The drive's name."}},
    {"path", {"string", "Path to the file within the drive."}},
    {"max_bytes", {"integer", "Refuse to read beyond this size. Defaults to 1048576."}},
};
inline constexpr std::string_view readFileRequired[] = {"drive", "path"};

inline constexpr NamedProperty writeFileProperties[] = {
    {"drive", {"string", "The drive's name."}},
    {"path", {"string", "Path to the file within the drive."}},
    {"content", {"string", "The text to write."}},
    {"dry_run",
     {"boolean",
      "Report what would happen without doing it. Use this to show the user a plan first."}},
};
inline constexpr std::string_view writeFileRequired[] = {"drive", "path", "content"};

inline constexpr NamedProperty findDuplicatesProperties[] = {
    {"minimum_bytes", {"integer", "Ignore files smaller than this. Defaults to 65536."}},
    {"limit", {"integer", "Maximum groups to return. Defaults to 25."}},
};

inline constexpr NamedProperty storageSummaryProperties[] = {
    {"drive", {"string", "Limit to one drive by name. Omit for all permitted drives."}},
    {"limit", {"integer", "Largest files to list per drive. Defaults to 10."}},
};

inline constexpr NamedProperty recentChangesProperties[] = {
    {"drive", {"string", "Limit to one drive by name. Omit for all permitted drives."}},
    {"limit", {"integer", "Maximum items. Defaults to 25."}},
};

inline constexpr NamedProperty transferFileProperties[] = {
    {"from_drive", {"string", "The drive the file is on now."}},
    {"path", {"string", "Path to the file within that drive."}},
    {"to_drive", {"string", "The drive to send it to."}},
    {"to_folder", {"string", "Destination folder. Empty for the top level."}},
    {"move", {"boolean", "Remove the original after copying. Defaults to false."}},
    {"dry_run", {"boolean", "Report what would happen without doing it."}},
};
inline constexpr std::string_view transferFileRequired[] = {"from_drive", "path", "to_drive"};

inline constexpr NamedProperty proposeCleanupProperties[] = {
    {"stale_after_days",
     {"integer", "Treat files untouched for this long as stale. Defaults to 365."}},
    {"minimum_bytes", {"integer", "Ignore files smaller than this. Defaults to 10485760."}},
};

}  // namespace parameters

/// The catalogue: eleven tools, in the order in which they are announced.
inline constexpr Tool tools[] = {
    {.name = "search_drives",
     .description = "Search file and folder names across every connected cloud drive at once. Uses "
                    "locally held metadata, so it returns instantly and downloads nothing.",
     .properties = parameters::searchDrivesProperties,
     .required = parameters::searchDrivesRequired},
    {.name = "list_directory",
     .description = "List the contents of a folder on a connected drive.",
     .properties = parameters::listDirectoryProperties,
     .required = parameters::listDirectoryRequired},
    {.name = "get_file_info",
     .description =
         "Details for one file: size, dates, which drive it is on, and crucially whether "
         "it is already downloaded to this Mac or still a placeholder — reading a "
         "placeholder means transferring it.",
     .properties = parameters::getFileInfoProperties,
     .required = parameters::getFileInfoRequired},
    {.name = "read_file",
     .description =
         "Read a file's contents as text. Downloads it first if it is not already on this "
         "Mac, so check get_file_info for large files.",
     .properties = parameters::readFileProperties,
     .required = parameters::readFileRequired},
    {.name = "write_file",
     .description =
         "Write text to a file on a drive. Requires write access for that drive, and "
         "refuses to overwrite a file that changed remotely since it was read. What it "
         "replaces is kept so the user can undo it. Pass dry_run to plan without writing.",
     .properties = parameters::writeFileProperties,
     .required = parameters::writeFileRequired},
    {.name = "find_duplicates",
     .description =
         "Find files that appear more than once across the connected drives, matched on "
         "size and name. Answers \"what is wasting space\" without downloading anything. "
         "Results are candidates: Quillmark confirms contents by fingerprint before it "
         "will delete anything.",
     .properties = parameters::findDuplicatesProperties,
     .required = {}},
    {.name = "storage_summary",
     .description = "Where the space goes: per drive, the largest files and folders known locally, "
                    "plus the provider's own total where it reports one. Uses held metadata, so it "
                    "downloads nothing.",
     .properties = parameters::storageSummaryProperties,
     .required = {}},
    {.name = "recent_changes",
     .description =
         "What has changed recently across the connected drives, newest first — useful for "
         "\"what did I touch this week\" without opening each one.",
     .properties = parameters::recentChangesProperties,
     .required = {}},
    {.name = "transfer_file",
     .description =
         "Copy or move a file from one connected drive to another. Requires write access "
         "to the destination, and to the source as well when moving, since a move deletes "
         "the original.",
     .properties = parameters::transferFileProperties,
     .required = parameters::transferFileRequired},
    {.name = "propose_cleanup",
     .description = "One call that answers \"what can I safely get rid of\": duplicate copies, and "
                    "large files that have not changed in a long time. Proposes only — nothing is "
                    "deleted, and the user acts on it in Quillmark.",
     .properties = parameters::proposeCleanupProperties,
     .required = {}},
    {.name = "drive_status",
     .description =
         "Which drives are connected, whether each is healthy, how much each keeps on this "
         "Mac, and what the agent is permitted to do with it.",
     .properties = {},
     .required = {}},
};

}  // namespace AgentProtocol
