#pragma once
// The subcommands of the vek tool. Each adds itself to the application; its
// callback raises VekError on failure, which main reports with exit code 1.

#include <CLI/CLI.hpp>

namespace vek::cli {

void AddSqlCommand(CLI::App& app);

}  // namespace vek::cli
