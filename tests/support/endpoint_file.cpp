#include "tests/support/endpoint_file.h"

#include <fstream>

#include <nlohmann/json.hpp>

EndpointFile::EndpointFile(const TemporaryHome& home)
    : path_(home.home() / "Library/Application Support/Quillmark/agent.json") {
  std::filesystem::create_directories(path_.parent_path());
}

std::string EndpointFile::text(int port, std::string_view token, std::int64_t version) {
  return nlohmann::json{{"version", version}, {"port", port}, {"token", token}}.dump();
}

void EndpointFile::publish(int port, std::string_view token, std::int64_t version) const {
  write(text(port, token, version));
}

void EndpointFile::write(std::string_view bytes) const {
  std::filesystem::path fresh = path_;
  fresh += ".new";
  {
    std::ofstream out(fresh, std::ios::binary | std::ios::trunc);
    out << bytes;
  }
  std::filesystem::rename(fresh, path_);
}

void EndpointFile::remove() const {
  std::filesystem::remove(path_);
}
