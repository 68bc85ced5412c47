#pragma once
// The vek tool run in-process, as main runs it, with what it printed.

#include <sstream>
#include <string>
#include <vector>

#include "cli/Commands.h"

namespace vek::testing {

struct ToolRun {
  int code;
  std::string out;
  std::string err;
};

inline ToolRun RunTool(const std::vector<std::string>& args) {
  std::vector<const char*> argv{"vek"};
  for (const std::string& arg : args) argv.push_back(arg.c_str());
  std::ostringstream out;
  std::ostringstream err;
  const int code = cli::RunTool(static_cast<int>(argv.size()), argv.data(), out, err);
  return {code, out.str(), err.str()};
}

}  // namespace vek::testing
