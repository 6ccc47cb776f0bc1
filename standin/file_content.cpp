#include "standin/file_content.h"

#include <array>
#include <cerrno>
#include <fstream>

#include "standin/hidden_names.h"
#include "standin/random_hex.h"

namespace fs = std::filesystem;

namespace standin {
namespace {

// A name beside `file`, on the same volume, that no listing shows.
fs::path unfinished(const fs::path& file) {
  return file.parent_path() / (std::string(hiddenPrefix) + "-part-" + randomHex(8));
}

std::error_code lastError() {
  return {errno != 0 ? errno : EIO, std::generic_category()};
}

// Gives the finished part the file's name, or removes it when a step before went wrong.
std::error_code putInPlace(const fs::path& part, const fs::path& file, std::error_code failure) {
  if (!failure) fs::rename(part, file, failure);
  std::error_code ignored;
  if (failure) fs::remove(part, ignored);
  return failure;
}

}  // namespace

std::expected<std::string, std::error_code> readContent(const fs::path& file,
                                                        std::uint64_t atMost) {
  errno = 0;
  std::ifstream in(file, std::ios::binary);
  if (!in) return std::unexpected(lastError());
  std::string content;
  std::array<char, 65536> block{};
  while (in && content.size() <= atMost) {
    in.read(block.data(), block.size());
    content.append(block.data(), static_cast<std::size_t>(in.gcount()));
  }
  if (in.bad()) return std::unexpected(lastError());
  return content;
}

std::error_code writeContent(const fs::path& file, std::string_view content) {
  const fs::path part = unfinished(file);
  errno = 0;
  std::ofstream out(part, std::ios::binary);
  out.write(content.data(), static_cast<std::streamsize>(content.size()));
  out.close();
  std::error_code failure = out ? std::error_code() : lastError();
  std::error_code missing;
  const fs::file_status replaced = fs::status(file, missing);
  if (!failure && fs::exists(replaced)) fs::permissions(part, replaced.permissions(), failure);
  return putInPlace(part, file, failure);
}

std::error_code copyFile(const fs::path& from, const fs::path& to) {
  const fs::path part = unfinished(to);
  std::error_code failure;
  const fs::file_time_type date = fs::last_write_time(from, failure);
  if (!failure) fs::copy_file(from, part, failure);
  if (!failure) fs::last_write_time(part, date, failure);
  return putInPlace(part, to, failure);
}

}  // namespace standin
