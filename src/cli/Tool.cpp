// The tool's frame around the commands: parsing, and how each outcome
// becomes an exit code.

#include <cstdio>
#include <iostream>
#include <streambuf>

#include "cli/Commands.h"
#include "vek/vek.h"

namespace vek::cli {
namespace {

// Sends std::cout to another stream for a scope: the commands print there.
class CoutRedirect {
 public:
  explicit CoutRedirect(std::ostream& out) : saved_(std::cout.rdbuf(out.rdbuf())) {}
  ~CoutRedirect() { std::cout.rdbuf(saved_); }
  CoutRedirect(const CoutRedirect&) = delete;
  CoutRedirect& operator=(const CoutRedirect&) = delete;

 private:
  std::streambuf* saved_;
};

}  // namespace

CLI::App& AddExportGroup(CLI::App& app) {
  CLI::App* group = app.add_subcommand("export", "Write the terminal's exports (the monthly workbook, the ERP's dBase table)");
  group->require_subcommand(1);
  return *group;
}

int RunTool(int argc, const char* const* argv, std::ostream& out, std::ostream& err) {
  CLI::App app{"vek - data-persistence layer of the bus-terminal administration suite", "vek"};
  app.set_version_flag("-V,--version", std::string("vek ") + kVersion);
  app.require_subcommand(0, 1);
  AddSqlCommand(app);
  AddInitCommand(app);
  AddDemoCommand(app);
  AddBoardCommand(app);
  AddTimetableCommand(app);
  AddYardCommand(app);
  AddReportCommand(app);
  CLI::App& exports = AddExportGroup(app);
  AddExportDbfCommand(exports);
  AddExportWorkbookCommand(exports);
  AddRestoreCommand(app);

  const bool redirect = &out != &std::cout;
  try {
    if (redirect) {
      CoutRedirect to_out(out);
      app.parse(argc, argv);
    } else {
      app.parse(argc, argv);
    }
    if (app.get_subcommands().empty()) out << app.help();
    return 0;
  } catch (const CLI::ParseError& e) {
    const int code = app.exit(e, out, err);
    return code == 0 ? 0 : 2;
  } catch (const VekError& error) {
    char number[16];
    // Object and database errors read best in hexadecimal (0x80040E14).
    std::snprintf(number, sizeof number, error.Number() < 0 ? "0x%08X" : "%d",
                  static_cast<unsigned>(error.Number()));
    err << "vek: " << error.Description() << " (error " << number;
    if (!error.Source().empty()) err << ", source: " << error.Source();
    err << ")\n";
    return 1;
  } catch (const std::exception& error) {
    err << "vek: " << error.what() << "\n";
    return 1;
  }
}

}  // namespace vek::cli
