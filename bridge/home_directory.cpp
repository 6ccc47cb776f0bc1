#include "bridge/home_directory.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>

namespace bridge {

std::string homeDirectory(const char* variable) {
  if (const char* home = std::getenv(variable); home != nullptr && *home != '\0') return home;
  const passwd* user = getpwuid(getuid());
  return user != nullptr ? user->pw_dir : "";
}

}  // namespace bridge
