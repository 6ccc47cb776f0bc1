// quillmark-demo: shows a session of an agent's host with the server.
#include <unistd.h>

#include <cstdlib>
#include <exception>
#include <iostream>

#include "standin/demo/story.h"
#include "standin/demo/terminal.h"
#include "standin/demo/transcript.h"

int main(int count, char** words) try {
  if (count != 3) {
    std::cerr << "Usage: quillmark-demo SERVER EMPTY_FOLDER\n";
    return 2;
  }
  demo::Transcript transcript(std::cout, demo::terminalOf(STDOUT_FILENO));
  demo::tellStory(words[1], words[2], transcript);
  return EXIT_SUCCESS;
} catch (const std::exception& failure) {
  std::cerr << "quillmark-demo: " << failure.what() << '\n';
  return EXIT_FAILURE;
}
