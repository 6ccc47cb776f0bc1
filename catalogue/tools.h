#pragma once

#include "catalogue/agent_protocol.h"

namespace AgentProtocol {

// Agents choose a tool and fill in its arguments by these texts, so the texts are the interface.
// Each tool has its own, even where two tools have nearly the same.

/// The catalogue: eleven tools, in the order in which they are announced.
inline const Tool tools[] = {
    {.name = "search_drives",
     .description = "Search file and folder names across every connected cloud drive at once. "
                    "Uses locally held metadata, so it returns instantly and downloads nothing.",
     .properties = {{"query", {"string", "What to search for. Matches anywhere in the name."}},
                    {"limit", {"integer", "Maximum results. Defaults to 50."}}},
     .required = {"query"}},
    {.name = "list_directory",
     .description = "List the contents of a folder on a connected drive.",
     .properties = {{"drive", {"string", "The drive's name, as shown in Finder."}},
                    {"path", {"string", "Folder path within the drive. Empty for the top level."}}},
     .required = {"drive"}},
    {.name = "get_file_info",
     .description = "Details for one file: size, dates, which drive it is on, and crucially "
                    "whether it is already downloaded to this Mac or still a placeholder — "
                    "reading a placeholder means transferring it.",
     .properties = {{"drive", {"string", "The drive's name."}},
                    {"path", {"string", "Path to the file within the drive."}}},
     .required = {"drive", "path"}},
    {.name = "read_file",
     .description = "Read a file's contents as text. Downloads it first if it is not already on "
                    "this Mac, so check get_file_info for large files.",
     .properties = {{"drive", {"string", "The drive's name."}},
                    {"path", {"string", "Path to the file within the drive."}},
                    {"max_bytes",
                     {"integer", "Refuse to read beyond this size. Defaults to 1048576."}}},
     .required = {"drive", "path"}},
    {.name = "write_file",
     .description =
         "Write text to a file on a drive. Requires write access for that drive, and refuses to "
         "overwrite a file that changed remotely since it was read. What it replaces is kept so "
         "the user can undo it. Pass dry_run to plan without writing.",
     .properties = {{"drive", {"string", "The drive's name."}},
                    {"path", {"string", "Path to the file within the drive."}},
                    {"content", {"string", "The text to write."}},
                    {"dry_run",
                     {"boolean",
                      "Report what would happen without doing it. Use this to show the user a "
                      "plan first."}}},
     .required = {"drive", "path", "content"}},
    {.name = "find_duplicates",
     .description =
         "Find files that appear more than once across the connected drives, matched on size and "
         "name. Answers \"what is wasting space\" without downloading anything. Results are "
         "candidates: Quillmark confirms contents by fingerprint before it will delete anything.",
     .properties = {{"minimum_bytes",
                     {"integer", "Ignore files smaller than this. Defaults to 65536."}},
                    {"limit", {"integer", "Maximum groups to return. Defaults to 25."}}},
     .required = {}},
    {.name = "storage_summary",
     .description = "Where the space goes: per drive, the largest files and folders known "
                    "locally, plus the provider's own total where it reports one. Uses held "
                    "metadata, so it downloads nothing.",
     .properties = {{"drive",
                     {"string", "Limit to one drive by name. Omit for all permitted drives."}},
                    {"limit", {"integer", "Largest files to list per drive. Defaults to 10."}}},
     .required = {}},
    {.name = "recent_changes",
     .description = "What has changed recently across the connected drives, newest first — "
                    "useful for \"what did I touch this week\" without opening each one.",
     .properties = {{"drive",
                     {"string", "Limit to one drive by name. Omit for all permitted drives."}},
                    {"limit", {"integer", "Maximum items. Defaults to 25."}}},
     .required = {}},
    {.name = "transfer_file",
     .description =
         "Copy or move a file from one connected drive to another. Requires write access to the "
         "destination, and to the source as well when moving, since a move deletes the original.",
     .properties = {{"from_drive", {"string", "The drive the file is on now."}},
                    {"path", {"string", "Path to the file within that drive."}},
                    {"to_drive", {"string", "The drive to send it to."}},
                    {"to_folder", {"string", "Destination folder. Empty for the top level."}},
                    {"move", {"boolean", "Remove the original after copying. Defaults to false."}},
                    {"dry_run", {"boolean", "Report what would happen without doing it."}}},
     .required = {"from_drive", "path", "to_drive"}},
    {.name = "propose_cleanup",
     .description = "One call that answers \"what can I safely get rid of\": duplicate copies, "
                    "and large files that have not changed in a long time. Proposes only — "
                    "nothing is deleted, and the user acts on it in Quillmark.",
     .properties = {{"stale_after_days",
                     {"integer", "Treat files untouched for this long as stale. Defaults to 365."}},
                    {"minimum_bytes",
                     {"integer", "Ignore files smaller than this. Defaults to 10485760."}}},
     .required = {}},
    {.name = "drive_status",
     .description = "Which drives are connected, whether each is healthy, how much each keeps on "
                    "this Mac, and what the agent is permitted to do with it.",
     .properties = {},
     .required = {}},
};

}  // namespace AgentProtocol
