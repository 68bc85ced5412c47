#pragma once
// Helpers shared by the data-access tests: a fresh database and error capture.

#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <random>
#include <string>

#include "vek/db/Connection.h"
#include "vek/db/Recordset.h"
#include "vek/foundation/VekError.h"

namespace vek::testing {

inline std::shared_ptr<Connection> OpenMemoryDatabase() {
  auto connection = std::make_shared<Connection>();
  connection->Open("Driver=SQLite3;Database=:memory:");
  return connection;
}

// The error a body raises; a VekError with number 0 when it raises none.
inline VekError ErrorOf(const std::function<void()>& body) {
  try {
    body();
  } catch (const VekError& error) {
    return error;
  }
  return VekError(0, "", "nothing was raised");
}

// A folder of its own for a test, removed afterwards.
class ScratchFolder {
 public:
  ScratchFolder() {
    std::random_device random;
    path_ = std::filesystem::temp_directory_path() / ("vek-test-" + std::to_string(random()));
    std::filesystem::create_directories(path_);
  }
  ~ScratchFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  const std::filesystem::path& Path() const { return path_; }

 private:
  std::filesystem::path path_;
};

}  // namespace vek::testing
