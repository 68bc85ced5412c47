#include "vek/platform/FileModes.h"

#include <system_error>

namespace vek::detail {

bool KeepOthersFromWriting(const std::filesystem::path& file) noexcept {
  namespace fs = std::filesystem;
  std::error_code error;
  fs::permissions(file, fs::perms::group_write | fs::perms::others_write, fs::perm_options::remove, error);
  return !error;
}

}  // namespace vek::detail
