// vek export dbf: the receivables issued in a period written into the ERP's
// title table (a .dbf file), as the closing screen's export does
// (cgdContasReceber::ExportarDBF), on the terminal of a folder.

#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "cli/BusScreens.h"
#include "cli/Commands.h"
#include "cli/ProgressBar.h"
#include "vek/vek.h"

namespace vek::cli {
namespace {

namespace fs = std::filesystem;

// A day as the terminal's people write it (dd/mm/yyyy) or as ISO (yyyy-mm-dd).
Date DayArgument(const std::string& text, const std::string& option) {
  int a = 0, b = 0, c = 0;
  char tail = 0;
  int year = 0, month = 0, day = 0;
  if (std::sscanf(text.c_str(), "%d/%d/%d%c", &a, &b, &c, &tail) == 3) {
    day = a, month = b, year = c;
  } else if (std::sscanf(text.c_str(), "%d-%d-%d%c", &a, &b, &c, &tail) == 3) {
    year = a, month = b, day = c;
  }
  if (year < 1900 || year > 9999 || month < 1 || month > 12 || day < 1 || day > DaysInMonth(year, month)) {
    throw CLI::ValidationError(option, "'" + text + "' is not a day (dd/mm/yyyy or yyyy-mm-dd)");
  }
  return DateSerial(year, month, day);
}

}  // namespace

void ExportDbf(const fs::path& terminal, Date from, Date to, const fs::path& folder, const std::string& table,
               std::ostream& out, bool progress_bar) {
  auto session = OpenTerminal(terminal);
  // The titles written are counted as their statements go by.
  int32_t written = 0;
  session->Ob_Conexao()->OnStatement([&written](const std::string& text) {
    if (text.starts_with("INSERT Into ")) ++written;
  });
  std::shared_ptr<TerminalProgressBar> bar;
  if (progress_bar) {
    bar = std::make_shared<TerminalProgressBar>();
    session->SetProgress(bar);
  }
  cgdContasReceber contas;
  contas.Ob_cgpSistema(session);
  const fs::path target = fs::absolute(folder).lexically_normal();
  try {
    contas.ExportarDBF(from, to, target.string(), table);
  } catch (...) {
    if (bar) bar->Close();
    session->Ob_Conexao()->Close();
    throw;
  }
  session->Ob_Conexao()->Close();
  out << written << (written == 1 ? " receivable" : " receivables") << " issued from "
      << Format(Variant(from), "dd/mm/yyyy") << " to " << Format(Variant(to), "dd/mm/yyyy") << " written into table "
      << table << " in " << target.string() << "\n";
}

void AddExportDbfCommand(CLI::App& export_group) {
  struct Arguments {
    std::vector<std::string> positionals;
    std::string from;
    std::string to;
  };
  auto arguments = std::make_shared<Arguments>();
  CLI::App* command = export_group.add_subcommand(
      "dbf", "Write the receivables issued in a period into the ERP's title table (FOLDER/TABLE.dbf), "
             "replacing the titles it held");
  command->add_option("paths", arguments->positionals,
                      "The terminal folder (holding Vek.ini; the current folder when left out), the folder of "
                      "the .dbf tables and the table (SE1: Modelos/SE1.dbf of vek init is an empty one)")
      ->type_name("[DIR] FOLDER TABLE")
      ->expected(2, 3)
      ->required();
  command->add_option("--from", arguments->from, "First day of issue (dd/mm/yyyy or yyyy-mm-dd)")->required();
  command->add_option("--to", arguments->to, "Last day of issue (dd/mm/yyyy or yyyy-mm-dd)")->required();
  command->callback([arguments] {
    const std::vector<std::string>& given = arguments->positionals;
    const bool with_dir = given.size() == 3;
    const Date from = DayArgument(arguments->from, "--from");
    const Date to = DayArgument(arguments->to, "--to");
    if (to < from) throw CLI::ValidationError("--to", "the last day comes before the first");
    ExportDbf(with_dir ? given[0] : ".", from, to, given[with_dir ? 1 : 0], given[with_dir ? 2 : 1], std::cout,
              ::isatty(STDOUT_FILENO) == 1);
  });
}

}  // namespace vek::cli
