// The vek command-line tool: creates a terminal database and runs the
// terminal's work on it. Exit codes: 0 done, 1 failed, 2 bad usage.

#include <CLI/CLI.hpp>

#include <cstdio>
#include <iostream>

#include "cli/Commands.h"
#include "vek/vek.h"

int main(int argc, char** argv) {
  CLI::App app{"vek - data-persistence layer of the bus-terminal administration suite", "vek"};
  app.set_version_flag("-V,--version", std::string("vek ") + vek::kVersion);
  app.require_subcommand(0, 1);
  vek::cli::AddSqlCommand(app);
  vek::cli::AddInitCommand(app);

  try {
    app.parse(argc, argv);
    if (app.get_subcommands().empty()) std::cout << app.help();
    return 0;
  } catch (const CLI::ParseError& e) {
    const int code = app.exit(e);
    return code == 0 ? 0 : 2;
  } catch (const vek::VekError& error) {
    char number[16];
    // Object and database errors read best in hexadecimal (0x80040E14).
    std::snprintf(number, sizeof number, error.Number() < 0 ? "0x%08X" : "%d",
                  static_cast<unsigned>(error.Number()));
    std::cerr << "vek: " << error.Description() << " (error " << number;
    if (!error.Source().empty()) std::cerr << ", source: " << error.Source();
    std::cerr << ")\n";
    return 1;
  } catch (const std::exception& error) {
    std::cerr << "vek: " << error.what() << "\n";
    return 1;
  }
}
