#include "standin/demo/steps.h"

using nlohmann::json;

namespace demo {
namespace {

json request(const std::string& method, json params) {
  return {{"jsonrpc", "2.0"}, {"method", method}, {"params", std::move(params)}};
}

Step call(std::string heading, const std::string& tool, json arguments,
          std::vector<std::string> shows) {
  return {.heading = std::move(heading),
          .request = request("tools/call", {{"name", tool}, {"arguments", std::move(arguments)}}),
          .due = Due::ToolResult,
          .shows = std::move(shows)};
}

std::vector<Step> introduction() {
  const json host{{"protocolVersion", "2024-11-05"},
                  {"capabilities", json::object()},
                  {"clientInfo", {{"name", "demo"}, {"version", "1"}}}};
  return {{.heading = "The host introduces itself, and the server answers",
           .request = request("initialize", host),
           .due = Due::Result,
           .shows = {"2024-11-05", "quillmark"}},
          {.heading = "The host says that it is ready; nothing is due",
           .request = request("notifications/initialized", json::object()),
           .due = Due::Nothing,
           .shows = {}},
          {.heading = "The host asks which tools there are",
           .request = request("tools/list", json::object()),
           .due = Due::Result,
           .shows = {"search_drives", "list_directory", "get_file_info", "read_file", "write_file",
                     "find_duplicates", "storage_summary", "recent_changes", "transfer_file",
                     "propose_cleanup", "drive_status"}}};
}

std::vector<Step> lookingRound() {
  return {call("Which drives are there?", "drive_status", json::object(), {"Studio", "Archive"}),
          call("Where is the harbour plan?", "search_drives", {{"query", "HARBOUR"}},
               {"Harbour plan.md", "\"more\" : false"}),
          call("What is in the folder Plans?", "list_directory",
               {{"drive", "Studio"}, {"path", "Plans"}}, {"Harbour plan.md", "Roof garden.md"}),
          call("How large is the plan, and is it here?", "get_file_info",
               {{"drive", "Studio"}, {"path", "Plans/Harbour plan.md"}},
               {"\"downloaded\" : true", "\"bytes\""})};
}

std::vector<Step> writing() {
  const json plan{{"drive", "Studio"}, {"path", "Plans/Harbour plan.md"}};
  const std::string text = "# Harbour plan\n\nStart with the east quay \u2014 it floods first.\n";
  json rewrite = plan;
  rewrite["content"] = text;
  json rehearsal = rewrite;
  rehearsal["dry_run"] = true;
  return {call("Read the plan", "read_file", plan, {"Start with the west quay"}),
          call("What would a new version replace? (dry run)", "write_file", rehearsal,
               {"\"dry_run\" : true", R"("action" : "replace")"}),
          call("Write the new version; the old one is kept", "write_file", rewrite,
               {"\"dry_run\" : false", "kept_for_undo"}),
          call("Read it back", "read_file", plan, {"Start with the east quay \u2014"}),
          call("Copy it to the other drive", "transfer_file",
               {{"from_drive", "Studio"},
                {"path", "Plans/Harbour plan.md"},
                {"to_drive", "Archive"},
                {"to_folder", "Copies"}},
               {R"("action" : "copy")", "Harbour plan.md"})};
}

std::vector<Step> takingStock() {
  return {call("What has changed of late?", "recent_changes", {{"limit", 2}},
               {"Harbour plan.md", "\"more\" : true"}),
          call("What is there more than once?", "find_duplicates", json::object(),
               {"panorama.raw", "\"total_groups\" : 1"}),
          call("Where does the space go?", "storage_summary", {{"limit", 2}},
               {"panorama.raw", "capacity_bytes"}),
          call("What could go?", "propose_cleanup", json::object(),
               {"old recording.wav", "nothing was deleted"})};
}

std::vector<Step> refusals() {
  Step outside = call("A path out of the drive is refused", "read_file",
                      {{"drive", "Studio"}, {"path", "../elsewhere.txt"}}, {"must not contain"});
  outside.due = Due::ToolFailure;
  return {outside,
          {.heading = "A method that the server does not know",
           .request = request("resources/list", json::object()),
           .due = Due::MethodError,
           .shows = {"-32601", "Unknown method resources"}}};
}

}  // namespace

std::vector<Step> session() {
  std::vector<Step> steps;
  int id = 0;
  for (auto part : {introduction, lookingRound, writing, takingStock, refusals}) {
    for (Step& step : part()) {
      if (step.due != Due::Nothing) step.request["id"] = ++id;
      steps.push_back(std::move(step));
    }
  }
  return steps;
}

}  // namespace demo
