// quillmark-demo: shows a session of an agent's host with the server.
#include <unistd.h>

#include <cstdlib>
#include <exception>
#include <iostream>

#include "standin/demo/story.h"
#include "standin/demo/terminal.h"
#include "standin/demo/transcript.h"

namespace {

void introduce(demo::Transcript& show) {
  show.title("An AI agent works with two cloud drives");
  show.prose(
      "An AI agent runs inside a program, its host. The host starts quillmark-mcp and sends it "
      "one line of JSON for each request. quillmark-mcp passes the agent's calls on to Quillmark, "
      "the desktop application that has the drives.");
  show.prose("host  <- pipes ->  quillmark-mcp  <- TCP ->  Quillmark");
  show.prose(
      "Here quillmark-mcp is the real program. The host is this demo, and a stand-in takes the "
      "place of Quillmark: it serves two prepared folders as the drives Studio and Archive.");
}

void lookBack(demo::Transcript& show) {
  show.title("What you have seen");
  show.prose(
      "quillmark-mcp passed on every call unchanged, and every answer. It found Quillmark by "
      "itself, needed no settings and wrote no files. The drives, the permissions and the undo "
      "copies are Quillmark's.");
  show.title("What to try next");
  show.list({{"scripts/demo FOLDER...", "let your own agent read your own folders"},
             {"scripts/test", "build everything and run all tests"},
             {"README.md", "how to install the server for your agent's host"}});
}

}  // namespace

int main(int count, char** words) try {
  if (count != 3) {
    std::cerr << "Usage: quillmark-demo SERVER EMPTY_FOLDER\n";
    return 2;
  }
  demo::Transcript transcript(std::cout, demo::terminalOf(STDOUT_FILENO));
  introduce(transcript);
  demo::showSession(words[1], words[2], transcript);
  lookBack(transcript);
  return EXIT_SUCCESS;
} catch (const std::exception& failure) {
  std::cerr << "quillmark-demo: " << failure.what() << '\n';
  return EXIT_FAILURE;
}
