#include "standin/agent_file.h"

#include <cerrno>
#include <fstream>
#include <iterator>
#include <random>
#include <system_error>

#include <nlohmann/json.hpp>

#include "standin/dispatch.h"

namespace fs = std::filesystem;

namespace standin {

std::string newToken() {
  std::random_device source;
  std::string token;
  for (int i = 0; i < 4; ++i) token += std::to_string(source());
  return token;
}

AgentFile::AgentFile(const fs::path& home, std::uint16_t port, std::string_view token)
    : path_(home / "Library/Application Support/Quillmark/agent.json"),
      content_(
          nlohmann::json({{"version", wireVersion}, {"port", port}, {"token", token}}).dump()) {
  const fs::path unfinished = path_.native() + ".new";
  fs::create_directories(path_.parent_path());
  std::ofstream out(unfinished);
  fs::permissions(unfinished, fs::perms::owner_read | fs::perms::owner_write);
  out << content_;
  out.close();
  if (!out) throw std::system_error(errno, std::generic_category(), unfinished.native());
  fs::rename(unfinished, path_);
}

AgentFile::~AgentFile() {
  std::ifstream in(path_);
  const std::string current{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  std::error_code ignored;
  if (current == content_) fs::remove(path_, ignored);
}

}  // namespace standin
