#include "tests/support/temporary_home.h"

#include <cerrno>
#include <cstdlib>
#include <string>
#include <system_error>

TemporaryHome::TemporaryHome(std::string_view homeName) {
  std::string pattern = (std::filesystem::temp_directory_path() / "quillmark-XXXXXX").string();
  if (::mkdtemp(pattern.data()) == nullptr) {
    throw std::system_error(errno, std::generic_category(), "mkdtemp " + pattern);
  }
  folder_ = pattern;
  home_ = folder_ / homeName;
  std::filesystem::create_directory(home_);
}

TemporaryHome::~TemporaryHome() {
  std::error_code ignored;
  std::filesystem::remove_all(folder_, ignored);
}
