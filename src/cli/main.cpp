// The vek command-line tool: creates a terminal database and runs the
// terminal's work on it. Exit codes: 0 done, 1 failed, 2 bad usage.

#include <CLI/CLI.hpp>

#include <cstdio>
#include <iostream>

#include "vek/vek.h"

namespace {

int ReportError(const vek::VekError& error) {
  std::cerr << "vek: " << error.Description() << " (error " << error.Number();
  if (!error.Source().empty()) std::cerr << ", source:" << error.Source();
  std::cerr << ")\n";
  return 1;
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app{"vek - data-persistence layer of the bus-terminal administration suite", "vek"};
  app.set_version_flag("-V,--version", std::string("vek ") + vek::kVersion);
  app.require_subcommand(0, 1);

  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& e) {
    const int code = app.exit(e);
    return code == 0 ? 0 : 2;
  }

  try {
    if (app.get_subcommands().empty()) {
      std::cout << app.help();
    }
    return 0;
  } catch (const vek::VekError& error) {
    return ReportError(error);
  } catch (const std::exception& error) {
    std::cerr << "vek: " << error.what() << "\n";
    return 1;
  }
}
