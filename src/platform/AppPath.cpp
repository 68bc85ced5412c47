#include "vek/platform/AppPath.h"

#include <cstdlib>
#include <mutex>
#include <system_error>
#include <utility>

namespace vek {
namespace {

namespace fs = std::filesystem;

std::mutex& AppPathMutex() {
  static std::mutex mutex;
  return mutex;
}

fs::path& AppPathOverride() {
  static fs::path path;
  return path;
}

}  // namespace

fs::path AppPath() {
  {
    const std::lock_guard<std::mutex> lock(AppPathMutex());
    if (!AppPathOverride().empty()) return AppPathOverride();
  }
  if (const char* home = std::getenv("VEK_HOME"); home != nullptr && *home != '\0') {
    return fs::path(home);
  }
  std::error_code error;
  const fs::path executable = fs::read_symlink("/proc/self/exe", error);
  if (!error && executable.has_parent_path()) return executable.parent_path();
  fs::path current = fs::current_path(error);
  return error ? fs::path(".") : current;
}

void SetAppPath(fs::path path) {
  const std::lock_guard<std::mutex> lock(AppPathMutex());
  AppPathOverride() = std::move(path);
}

}  // namespace vek
