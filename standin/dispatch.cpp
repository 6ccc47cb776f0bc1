#include "standin/dispatch.h"

#include <algorithm>
#include <system_error>
#include <vector>

#include "standin/refusal.h"
#include "standin/tools.h"

using nlohmann::json;

namespace standin {
namespace {

struct ToolEntry {
  std::string name;
  std::vector<Parameter> parameters;
  Tool* run;
};

// The parameters and defaults are those that catalogue/tools.json announces to agents.
const std::vector<ToolEntry>& tools() {
  using enum Parameter::Type;
  static const std::vector<ToolEntry> table{
      {"search_drives", {{"query", Text}, {"limit", Number, 50}}, searchDrives},
      {"list_directory", {{"drive", Text}, {"path", Text, ""}}, listDirectory},
      {"get_file_info", {{"drive", Text}, {"path", Text}}, getFileInfo},
      {"read_file", {{"drive", Text}, {"path", Text}, {"max_bytes", Number, 1048576}}, readFile},
      {"write_file",
       {{"drive", Text}, {"path", Text}, {"content", Text}, {"dry_run", Flag, false}},
       writeFile},
      {"find_duplicates",
       {{"minimum_bytes", Number, 65536}, {"limit", Number, 25}},
       findDuplicates},
      {"storage_summary", {{"drive", Text, ""}, {"limit", Number, 10}}, storageSummary},
      {"recent_changes", {{"drive", Text, ""}, {"limit", Number, 25}}, recentChanges},
      {"transfer_file",
       {{"from_drive", Text},
        {"path", Text},
        {"to_drive", Text},
        {"to_folder", Text, ""},
        {"move", Flag, false},
        {"dry_run", Flag, false}},
       transferFile},
      {"propose_cleanup",
       {{"stale_after_days", Number, 365}, {"minimum_bytes", Number, 10485760}},
       proposeCleanup},
      {"drive_status", {}, driveStatus}};
  return table;
}

// File names need not be UTF-8, but replies must be.
std::string compact(const json& reply) {
  return reply.dump(-1, ' ', false, json::error_handler_t::replace);
}

std::string refused(const std::string& sentence) {
  return compact({{"ok", false}, {"error", sentence}});
}

}  // namespace

std::string Dispatch::answer(std::string_view request) const try {
  std::string reply =
      compact({{"ok", true}, {"result", run(json::parse(request, nullptr, false))}});
  if (reply.size() <= maxReplyBytes) return reply;
  return refused("The answer is longer than a reply may be (" + std::to_string(maxReplyBytes) +
                 " bytes); ask for less.");
} catch (const Refusal& refusal) {
  return refused(refusal.what());
} catch (const std::system_error& failure) {
  return refused("Quillmark could not finish this call: " + failure.code().message() + ".");
} catch (const std::exception& failure) {
  return refused("Quillmark could not finish this call: " + std::string(failure.what()) + ".");
}

json Dispatch::run(const json& request) const {
  if (!request.is_object()) throw Refusal("The request is not a JSON object.");
  if (request.value("token", json()) != token_) {
    throw Refusal("The access token is not the one that Quillmark has published.");
  }
  if (request.value("version", json()) != wireVersion) {
    throw Refusal("The request is not of version " + std::to_string(wireVersion) + ".");
  }
  const json name = request.value("tool", json());
  if (!name.is_string()) throw Refusal("The request names no tool.");
  const auto tool =
      std::ranges::find(tools(), name.get_ref<const std::string&>(), &ToolEntry::name);
  if (tool == tools().end()) {
    throw Refusal("There is no tool " + inQuotes(name.get_ref<const std::string&>()) + ".");
  }
  const auto arguments = request.find("arguments");
  if (arguments == request.end() || !arguments->is_object()) {
    throw Refusal("The arguments are not a JSON object.");
  }
  return tool->run(drives_, Arguments(tool->name, tool->parameters, *arguments));
}

}  // namespace standin
