#pragma once
// A terminal database with every table, in a scratch folder of its own that
// goes away with the object: the benchmarks' common ground.

#include <filesystem>
#include <functional>
#include <memory>
#include <random>
#include <string>

#include "vek/db/Connection.h"
#include "vek/schema/CreateDatabase.h"

namespace vek::bench {

class ScratchTerminal {
 public:
  // `fill` writes the benchmark's rows through the connection that made the
  // database, which is closed before any benchmark runs.
  explicit ScratchTerminal(const std::function<void(Connection&)>& fill = {}) {
    std::random_device random;
    folder_ = std::filesystem::temp_directory_path() / ("vek-bench-" + std::to_string(random()));
    std::filesystem::create_directories(folder_);
    file_ = (folder_ / "Vek.db").string();
    auto connection = std::make_shared<Connection>();  // connections are shared objects
    connection->Open(file_);
    schema::CreateDatabase(*connection);
    if (fill) fill(*connection);
    connection->Close();
  }
  ~ScratchTerminal() {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
  }
  ScratchTerminal(const ScratchTerminal&) = delete;
  ScratchTerminal& operator=(const ScratchTerminal&) = delete;

  const std::string& File() const { return file_; }

 private:
  std::filesystem::path folder_;
  std::string file_;
};

}  // namespace vek::bench
