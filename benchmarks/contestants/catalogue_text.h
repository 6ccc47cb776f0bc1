#pragma once

#include <string_view>

/// The result of tools/list as one line of compact JSON, for programs that only have to hand it
/// out. As a value it is what every server here must answer, so the driver compares answers with
/// it; the order of members is free.
inline constexpr std::string_view catalogueText =
    R"({"tools":[{"name":"search_drives",)"
    R"("description":"Search file and folder names across every connected cloud drive at once. Uses locally held metadata, so it returns instantly and downloads nothing.",)"
    R"("inputSchema":{"type":"object","properties":{)"
    R"("query":{"type":"string","description":"What to search for. Matches anywhere in the name."},)"
    R"("limit":{"type":"integer","description":"Maximum results. Defaults to 50."}},)"
    R"("required":["query"]}},)"

    R"({"name":"list_directory",)"
    R"("description":"List the contents of a folder on a connected drive.",)"
    R"("inputSchema":{"type":"object","properties":{)"
    R"("drive":{"type":"string","description":"The drive's name, as shown in Finder."},)"
    R"("path":{"type":"string","description":"Folder path within the drive. Empty for the top level."}},)"
    R"("required":["drive"]}},)"

    R"({"name":"get_file_info",)"
    R"("description":"Details for one file: size, dates, which drive it is on, and crucially whether it is already downloaded to this Mac or still a placeholder — reading a placeholder means transferring it.",)"
    R"("inputSchema":{"type":"object","properties":{)"
    R"("drive":{"type":"string","description":"The drive's name."},)"
    R"("path":{"type":"string","description":"Path to the file within the drive."}},)"
    R"("required":["drive","path"]}},)"

    R"({"name":"read_file",)"
    R"("description":"Read a file's contents as text. Downloads it first if it is not already on this Mac, so check get_file_info for large files.",)"
    R"("inputSchema":{"type":"object","properties":{)"
    R"("drive":{"type":"string","description":"The drive's name."},)"
    R"("path":{"type":"string","description":"Path to the file within the drive."},)"
    R"("max_bytes":{"type":"integer","description":"Refuse to read beyond this size. Defaults to 1048576."}},)"
    R"("required":["drive","path"]}},)"

    R"({"name":"write_file",)"
    R"("description":"Write text to a file on a drive. Requires write access for that drive, and refuses to overwrite a file that changed remotely since it was read. What it replaces is kept so the user can undo it. Pass dry_run to plan without writing.",)"
    R"("inputSchema":{"type":"object","properties":{)"
    R"("drive":{"type":"string","description":"The drive's name."},)"
    R"("path":{"type":"string","description":"Path to the file within the drive."},)"
    R"("content":{"type":"string","description":"The text to write."},)"
    R"("dry_run":{"type":"boolean","description":"Report what would happen without doing it. Use this to show the user a plan first."}},)"
    R"("required":["drive","path","content"]}},)"

    R"({"name":"find_duplicates",)"
    R"("description":"Find files that appear more than once across the connected drives, matched on size and name. Answers \"what is wasting space\" without downloading anything. Results are candidates: Quillmark confirms contents by fingerprint before it will delete anything.",)"
    R"("inputSchema":{"type":"object","properties":{)"
    R"("minimum_bytes":{"type":"integer","description":"Ignore files smaller than this. Defaults to 65536."},)"
    R"("limit":{"type":"integer","description":"Maximum groups to return. Defaults to 25."}},)"
    R"("required":[]}},)"

    R"({"name":"storage_summary",)"
    R"("description":"Where the space goes: per drive, the largest files and folders known locally, plus the provider's own total where it reports one. Uses held metadata, so it downloads nothing.",)"
    R"("inputSchema":{"type":"object","properties":{)"
    R"("drive":{"type":"string","description":"Limit to one drive by name. Omit for all permitted drives."},)"
    R"("limit":{"type":"integer","description":"Largest files to list per drive. Defaults to 10."}},)"
    R"("required":[]}},)"

    R"({"name":"recent_changes",)"
    R"("description":"What has changed recently across the connected drives, newest first — useful for \"what did I touch this week\" without opening each one.",)"
    R"("inputSchema":{"type":"object","properties":{)"
    R"("drive":{"type":"string","description":"Limit to one drive by name. Omit for all permitted drives."},)"
    R"("limit":{"type":"integer","description":"Maximum items. Defaults to 25."}},)"
    R"("required":[]}},)"

    R"({"name":"transfer_file",)"
    R"("description":"Copy or move a file from one connected drive to another. Requires write access to the destination, and to the source as well when moving, since a move deletes the original.",)"
    R"("inputSchema":{"type":"object","properties":{)"
    R"("from_drive":{"type":"string","description":"The drive the file is on now."},)"
    R"("path":{"type":"string","description":"Path to the file within that drive."},)"
    R"("to_drive":{"type":"string","description":"The drive to send it to."},)"
    R"("to_folder":{"type":"string","description":"Destination folder. Empty for the top level."},)"
    R"("move":{"type":"boolean","description":"Remove the original after copying. Defaults to false."},)"
    R"("dry_run":{"type":"boolean","description":"Report what would happen without doing it."}},)"
    R"("required":["from_drive","path","to_drive"]}},)"

    R"({"name":"propose_cleanup",)"
    R"("description":"One call that answers \"what can I safely get rid of\": duplicate copies, and large files that have not changed in a long time. Proposes only — nothing is deleted, and the user acts on it in Quillmark.",)"
    R"("inputSchema":{"type":"object","properties":{)"
    R"("stale_after_days":{"type":"integer","description":"Treat files untouched for this long as stale. Defaults to 365."},)"
    R"("minimum_bytes":{"type":"integer","description":"Ignore files smaller than this. Defaults to 10485760."}},)"
    R"("required":[]}},)"

    R"({"name":"drive_status",)"
    R"("description":"Which drives are connected, whether each is healthy, how much each keeps on this Mac, and what the agent is permitted to do with it.",)"
    R"("inputSchema":{"type":"object","properties":{},"required":[]}}]})";
