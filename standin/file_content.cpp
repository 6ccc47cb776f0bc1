#include "standin/file_content.h"

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <functional>
#include <system_error>

#include "standin/undo_folder.h"

namespace fs = std::filesystem;

namespace standin {
namespace {

[[noreturn]] void failWithLastError() {
  throw std::system_error(errno != 0 ? errno : EIO, std::generic_category());
}

// Lets `fill` write a hidden file, and then gives that file its real name.
void putInPlace(const fs::path& file, const std::function<void(const fs::path& part)>& fill) {
  const fs::path part = file.parent_path() / (std::string(hiddenPrefix) + "-part");
  try {
    fill(part);
    fs::rename(part, file);
  } catch (const std::exception&) {
    std::error_code ignored;
    fs::remove(part, ignored);
    throw;
  }
}

}  // namespace

std::string readContent(const fs::path& file, std::uintmax_t limit) {
  const std::uintmax_t wanted = std::min(limit, fs::file_size(file)) + 1;
  std::string content(wanted, '\0');
  errno = 0;
  std::ifstream in(file, std::ios::binary);
  in.read(content.data(), static_cast<std::streamsize>(wanted));
  if (!in.is_open() || in.bad()) failWithLastError();
  content.resize(static_cast<std::size_t>(in.gcount()));
  return content;
}

void writeContent(const fs::path& file, std::string_view content) {
  putInPlace(file, [&](const fs::path& part) {
    errno = 0;
    std::ofstream out(part, std::ios::binary);
    out.write(content.data(), static_cast<std::streamsize>(content.size()));
    out.close();
    if (!out) failWithLastError();
    if (fs::exists(file)) fs::permissions(part, fs::status(file).permissions());
  });
}

void copyFile(const fs::path& from, const fs::path& to) {
  putInPlace(to, [&](const fs::path& part) {
    fs::copy_file(from, part, fs::copy_options::overwrite_existing);
  });
}

}  // namespace standin
