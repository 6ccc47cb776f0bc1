#include "standin/dispatch.h"

#include <exception>
#include <functional>
#include <map>

#include "standin/tools.h"

using nlohmann::json;

namespace standin {
namespace {

struct Offer {
  std::vector<Parameter> parameters;
  Tool* run;
};

// What the agent was promised of each tool, defaults included.
const std::map<std::string, Offer, std::less<>>& offers() {
  static const std::map<std::string, Offer, std::less<>> table{
      {"search_drives", {.parameters = {text("query"), count("limit", 50)}, .run = searchDrives}},
      {"list_directory", {.parameters = {drive("drive"), text("path", "")}, .run = listDirectory}},
      {"get_file_info", {.parameters = {drive("drive"), text("path")}, .run = getFileInfo}},
      {"read_file",
       {.parameters = {drive("drive"), text("path"), amount("max_bytes", 1048576)},
        .run = readFile}},
      {"write_file",
       {.parameters = {drive("drive"), text("path"), text("content"), flag("dry_run")},
        .run = writeFile}},
      {"find_duplicates",
       {.parameters = {amount("minimum_bytes", 65536), count("limit", 25)}, .run = findDuplicates}},
      {"storage_summary",
       {.parameters = {anyDrive("drive"), count("limit", 10)}, .run = storageSummary}},
      {"recent_changes",
       {.parameters = {anyDrive("drive"), count("limit", 25)}, .run = recentChanges}},
      {"transfer_file",
       {.parameters = {drive("from_drive"), text("path"), drive("to_drive"), text("to_folder", ""),
                       flag("move"), flag("dry_run")},
        .run = transferFile}},
      {"propose_cleanup",
       {.parameters = {amount("stale_after_days", 365), amount("minimum_bytes", 10485760)},
        .run = proposeCleanup}},
      {"drive_status", {.parameters = {}, .run = driveStatus}}};
  return table;
}

// A member of the request, or null when it is missing.
const json& member(const json& request, const char* name) {
  static const json none;
  const auto found = request.find(name);
  return found == request.end() ? none : *found;
}

// File names need not be UTF-8; a reply must be.
std::string compact(const json& reply) {
  return reply.dump(-1, ' ', false, json::error_handler_t::replace);
}

std::string refused(const std::string& sentence) {
  return compact({{"ok", false}, {"error", sentence}});
}

}  // namespace

std::string Dispatch::answer(std::string_view request) const {
  try {
    auto result = carryOut(json::parse(request, nullptr, false));
    if (!result) return refused(result.error().sentence);
    std::string reply = compact({{"ok", true}, {"result", std::move(*result)}});
    if (reply.size() <= mostReplyBytes) return reply;
    return refused("The answer would be larger than the " + std::to_string(mostReplyBytes) +
                   " bytes that fit into one reply; ask for less.");
  } catch (const std::exception& failure) {
    return refused(std::string("Quillmark could not finish this call: ") + failure.what() + ".");
  }
}

Outcome<json> Dispatch::carryOut(const json& request) const {
  if (!request.is_object()) return refuse("The request is not a JSON object.");
  if (member(request, "token") != token_) {
    return refuse("The access token is not the one that Quillmark has published.");
  }
  if (member(request, "version") != wireVersion) {
    return refuse("The request is not of version " + std::to_string(wireVersion) + ".");
  }
  const json& tool = member(request, "tool");
  const json& arguments = member(request, "arguments");
  if (!tool.is_string()) return refuse("The request names no tool.");
  if (!arguments.is_object()) return refuse("The arguments are not a JSON object.");
  const auto& name = tool.get_ref<const std::string&>();
  const auto offer = offers().find(name);
  if (offer == offers().end()) return refuse("There is no tool " + inQuotes(name) + ".");
  const auto call = Arguments::check(offer->second.parameters, arguments, drives_);
  if (!call) return std::unexpected(call.error());
  return offer->second.run(drives_, *call);
}

}  // namespace standin
