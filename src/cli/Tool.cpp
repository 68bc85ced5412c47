// The tool's frame around the commands: parsing, and how each outcome
// becomes an exit code.

#include <cstdio>
#include <iostream>
#include <streambuf>
#include <string>
#include <string_view>

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

// A message on one line: a database's text may run over several (psqlODBC
// adds a hint on a second line), and a person reads one line per failure.
std::string OneLine(std::string_view text) {
  std::string line;
  bool blank = false;
  for (char c : text) {
    const bool space = c == '\n' || c == '\r' || c == '\t' || c == ' ';
    if (space) {
      blank = !line.empty();
      continue;
    }
    if (blank) line += ' ';
    blank = false;
    line += c;
  }
  return line;
}

// Bad usage in one line, with where to read more.
std::string UsageFailure(const CLI::App* app, const CLI::Error& error) {
  std::string command = app->get_name();
  for (const CLI::App* parent = app->get_parent(); parent != nullptr; parent = parent->get_parent()) {
    command = parent->get_name() + " " + command;
  }
  return "vek: " + OneLine(error.what()) + " (see " + command + " --help)\n";
}

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
  app.failure_message(UsageFailure);
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
  AddServeCommand(app);
  AddBackupCommand(app);

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
    err << "vek: " << OneLine(error.Description()) << " (error " << number;
    if (!error.Source().empty()) err << ", source: " << error.Source();
    err << ")\n";
    return 1;
  } catch (const std::exception& error) {
    err << "vek: " << OneLine(error.what()) << "\n";
    return 1;
  }
}

}  // namespace vek::cli
