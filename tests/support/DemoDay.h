#pragma once

#include <filesystem>
#include <memory>
#include <sstream>
#include <string>

#include "cli/Commands.h"
#include "support/TestSupport.h"
#include "vek/vek.h"

namespace vek::testing {

// The first column of the first row a statement returns, as text.
inline std::string FirstValue(Connection& connection, const std::string& statement) {
  auto rows = connection.Execute(statement);
  return rows->Eof() ? "(no row)" : CStr(rows->Fields().Item(0).Value());
}

// A terminal after the demo's whole day, in a scratch application folder:
// what the day printed and its database, for the tests that read what it left.
class DemoDay {
 public:
  DemoDay() {
    std::ostringstream captured;
    cli::RunDemo(folder_, {}, captured);
    out_ = captured.str();
    db_->Open("Driver=SQLite3;Database=" + (folder_ / "Vek.db").string());
  }

  const std::string& Out() const { return out_; }
  const std::filesystem::path& Folder() const { return folder_; }
  Connection& Db() { return *db_; }
  std::string Value(const std::string& statement) { return FirstValue(*db_, statement); }

 private:
  ScratchApp app_;
  std::filesystem::path folder_ = app_.Path() / "terminal";
  std::string out_;
  std::shared_ptr<Connection> db_ = std::make_shared<Connection>();
};

}  // namespace vek::testing
