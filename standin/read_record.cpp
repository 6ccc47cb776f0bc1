#include "standin/read_record.h"

#include <functional>
#include <optional>

#include "standin/file_content.h"

namespace standin {

ReadRecord::Mark ReadRecord::markOf(std::string_view content) {
  return {.bytes = content.size(), .hash = std::hash<std::string_view>()(content)};
}

void ReadRecord::remember(const std::filesystem::path& file, std::string_view content) {
  const Mark mark = markOf(content);
  const std::scoped_lock lock(mutex_);
  marks_.insert_or_assign(file, mark);
}

void ReadRecord::forget(const std::filesystem::path& file) {
  const std::scoped_lock lock(mutex_);
  marks_.erase(file);
}

bool ReadRecord::hasChanged(const std::filesystem::path& file) const {
  std::optional<Mark> then;
  {
    const std::scoped_lock lock(mutex_);
    if (const auto found = marks_.find(file); found != marks_.end()) then = found->second;
  }
  if (!then) return false;
  const auto content = readContent(file, then->bytes);
  return !content || markOf(*content) != *then;
}

}  // namespace standin
