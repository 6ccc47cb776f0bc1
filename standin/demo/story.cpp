#include "standin/demo/story.h"

#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <optional>

#include "standin/demo/application.h"
#include "standin/demo/session.h"
#include "standin/file_content.h"

namespace fs = std::filesystem;

namespace demo {
namespace {

// What the chapters share. The application does not run at first.
struct Stage {
  fs::path folder;
  Transcript& show;
  Session host;
  std::optional<Application> application = std::nullopt;
};

const std::string planPath = "Plans/Harbour plan.md";
const Params plan{{"drive", "Studio"}, {"path", planPath}};

Params newPlan(const char* text, bool dryRun) {
  Params arguments = plan;
  arguments["content"] = text;
  if (dryRun) arguments["dry_run"] = true;
  return arguments;
}

constexpr const char* eastQuay = "# Harbour plan\n\nStart with the east quay.\n";

void startServer(Stage& stage) {
  stage.show.chapter("The host starts the server");
  stage.show.prose("Both say who they are and which revision of the protocol they speak.");
  const json result =
      stage.host.request("initialize", {{"protocolVersion", "2024-11-05"},
                                        {"capabilities", Params::object()},
                                        {"clientInfo", {{"name", "demo"}, {"version", "1"}}}});
  stage.show.message("server -> host", stage.host.lastReply());
  expect(result.at("serverInfo").at("name") == "quillmark", result.dump());
  stage.host.notify("notifications/initialized");
  stage.show.prose("That was a notification. It gets no reply.");
}

void listTools(Stage& stage) {
  stage.show.chapter("What can the agent do?");
  const json tools = stage.host.request("tools/list", {}).at("tools");
  expect(tools.size() == 11, "there are " + std::to_string(tools.size()) + " tools");
  stage.show.prose("The server lists eleven tools and describes them for the agent. In short:");
  std::vector<std::pair<std::string, std::string>> entries;
  for (const json& tool : tools) {
    const std::string text = tool.at("description");
    entries.emplace_back(tool.at("name"), text.substr(0, text.find_first_of(".,:")));
  }
  stage.show.list(entries);
}

// Only for systems without /usr/bin/open: elsewhere, this call would start the real application.
void callWithoutApplication(Stage& stage) {
  stage.show.chapter("Quillmark is not running yet");
  stage.show.prose(
      "The user asks: \"Where is my harbour plan?\" The agent calls a tool (->) and gets a result "
      "(<-). On a Mac the server would now start Quillmark with the system's open tool. This "
      "computer has no such tool, so the call fails:");
  const std::string message = stage.host.refusedCall("search_drives", {{"query", "harbour"}});
  expect(message.starts_with("Quillmark could not be started."), message);
}

void followOneCall(Stage& stage, bool secondAttempt) {
  stage.application.emplace(stage.folder / "home", stage.folder);
  stage.show.chapter("One call, from the host to Quillmark and back");
  stage.show.prose(secondAttempt
                       ? "The user opens Quillmark, and the agent tries again. The server needs no "
                         "restart."
                       : "The user asks: \"Where is my harbour plan?\" The agent calls a tool.");
  const json result = stage.host.request(
      "tools/call", {{"name", "search_drives"}, {"arguments", {{"query", "harbour"}}}});
  const auto exchanges = stage.application->takeExchanges();
  expect(exchanges.size() == 2,
         "the server made " + std::to_string(exchanges.size()) + " requests");
  stage.show.prose("First the server finds out whether Quillmark answers at all:");
  stage.show.message("server -> Quillmark", exchanges[0].request);
  stage.show.message("Quillmark -> server", exchanges[0].reply);
  stage.show.prose("It does. So the server passes the call on:");
  stage.show.message("server -> Quillmark", exchanges[1].request);
  stage.show.message("Quillmark -> server", exchanges[1].reply);
  stage.show.prose("What the agent gets is the same result. Here it is as an outline:");
  const json found = json::parse(textOf(result, false));
  stage.show.result(found);
  expect(found.at("results").at(0).at("path") == planPath, found.dump());
}

void showPermissions(Stage& stage) {
  stage.show.chapter("\"Which drives can you use?\"");
  stage.show.prose(
      "From here on you see only what the agent sees: its call (->) and the result (<-).");
  const json drives = stage.host.call("drive_status", Params::object()).at("drives");
  expect(drives.at(0).at("agent_may_write") == true, drives.dump());
  expect(drives.at(1).at("agent_may_write") == false, drives.dump());
  stage.show.prose("The user lets agents write on Studio, but only read Archive.");
}

void changePlan(Stage& stage) {
  stage.show.chapter("\"Start with the east quay. But show me first what you will do.\"");
  stage.show.prose("The agent reads the plan, and then tries the change with dry_run.");
  const json read = stage.host.call("read_file", plan);
  stage.host.call("write_file", newPlan(eastQuay, true));
  expect(standin::readContent(stage.folder / "Studio" / planPath, 1000) ==
             read.at("content").get<std::string>(),
         "the dry run changed the plan");
  stage.show.prose("Nothing has been changed so far. The user agrees, so the agent does it:");
  const json done = stage.host.call("write_file", newPlan(eastQuay, false));
  expect(fs::exists(stage.folder / "Studio" / done.at("kept_for_undo").get<std::string>()),
         done.dump());
  stage.show.prose("The previous plan was kept, so the user can undo this.");
}

void changeTheSameFile(Stage& stage) {
  stage.show.chapter("Meanwhile, somebody else works on the plan");
  std::ofstream(stage.folder / "Studio" / planPath, std::ios::app) << "Ask Ines about the crane.\n";
  stage.show.prose(
      "A colleague adds a line to the file. The agent doesn't know that and writes its own next "
      "version:");
  const std::string refusal =
      stage.host.refusedCall("write_file", newPlan("# Harbour plan\n\nEast quay first.\n", false));
  expect(refusal.contains("has changed since it was read"), refusal);
  stage.show.prose("The colleague's line is safe. The agent has to read the file again first.");
}

void writeOnReadOnlyDrive(Stage& stage) {
  stage.show.chapter("\"Put a copy of the plan into the archive.\"");
  const Params arguments{{"from_drive", "Studio"}, {"path", planPath}, {"to_drive", "Archive"}};
  const std::string refusal = stage.host.refusedCall("transfer_file", arguments);
  expect(refusal.contains("may only be read"), refusal);
  stage.show.prose("Quillmark decides what agents may do. The server passes its answer on.");
}

void findWaste(Stage& stage) {
  stage.show.chapter("\"What can I get rid of?\"");
  stage.show.prose("The same picture is on both drives:");
  const json duplicates = stage.host.call("find_duplicates", Params::object());
  stage.show.prose("And one recording has not been changed for years:");
  const json proposal = stage.host.call("propose_cleanup", Params::object());
  expect(duplicates.at("total_wasted_bytes") == proposal.at("duplicate_bytes"), proposal.dump());
  expect(proposal.at("total_stale_files") == 1, proposal.dump());
  stage.show.prose("These are only proposals; the user decides in Quillmark.");
}

void endSession(Stage& stage) {
  stage.show.chapter("The host ends the session");
  stage.host.finish();
  stage.show.prose("It closed the server's input, and the server ended with exit status 0.");
}

}  // namespace

void showSession(const std::string& server, const fs::path& folder, Transcript& transcript) {
  fs::create_directory(folder / "home");
  prepareDrives(folder);
  for (const char* home : {"HOME", "CFFIXED_USER_HOME"}) {
    ::setenv(home, (folder / "home").c_str(), 1);
  }
  Stage stage{.folder = folder, .show = transcript, .host = Session(server, transcript)};
  startServer(stage);
  listTools(stage);
  const bool startsApplications = ::access("/usr/bin/open", X_OK) == 0;
  if (!startsApplications) callWithoutApplication(stage);
  followOneCall(stage, !startsApplications);
  for (auto* chapter : {showPermissions, changePlan, changeTheSameFile, writeOnReadOnlyDrive,
                        findWaste, endSession}) {
    chapter(stage);
  }
}

}  // namespace demo
