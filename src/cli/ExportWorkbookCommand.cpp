// vek export workbook: the monthly movement workbook of a terminal, written
// as its programs write it (cgdApuracaoReceita_Tarifas.ExportarExcel2000),
// one day at a time so that a bar shows how far it has gone. A FILE that is
// not there yet is made from the folder's template Modelos/MovimentoMensal.xlsx.

#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>
#include <string>

#include "cli/BusScreens.h"
#include "cli/Commands.h"
#include "vek/vek.h"
#include "vek/platform/FileModes.h"

namespace vek::cli {
namespace fs = std::filesystem;
namespace {

struct ExportWorkbookOptions {
  std::vector<std::string> paths;  // [DIR] FILE
  std::string from;
  std::string to;
};

// dd/mm/yyyy, as the terminal writes days, or yyyy-mm-dd.
std::optional<Date> ParseDay(const std::string& text) {
  int a = 0, b = 0, c = 0;
  char s1 = 0, s2 = 0, rest = 0;
  if (std::sscanf(text.c_str(), "%d%c%d%c%d%c", &a, &s1, &b, &s2, &c, &rest) != 5) return std::nullopt;
  int day = a, month = b, year = c;
  if (s1 == '-' && s2 == '-') {
    year = a;
    day = c;
  } else if (s1 != '/' || s2 != '/') {
    return std::nullopt;
  }
  if (month < 1 || month > 12 || day < 1 || year < 1900 || year > 9999) return std::nullopt;
  const Date date = DateSerial(year, month, day);
  if (Day(date) != day) return std::nullopt;  // 31/04 is no day
  return date;
}

// A one-line bar on stderr, redrawn in place, only on a terminal.
void DrawBar(double percentage, const std::string& label) {
  constexpr int kWidth = 30;
  const int done = static_cast<int>(percentage * kWidth / 100.0);
  std::fprintf(stderr, "\r\033[K[%s%s] %3d%%  %s", std::string(done, '#').c_str(), std::string(kWidth - done, ' ').c_str(),
               static_cast<int>(percentage), label.c_str());
  std::fflush(stderr);
}

}  // namespace

void ExportMonthlyWorkbook(const fs::path& folder, Date from, Date to, const fs::path& file, bool progress_bar,
                           std::ostream& out) {
  if (!fs::is_regular_file(folder / "Vek.ini")) {
    throw VekError(kBusinessError, "vek export workbook",
                   "A pasta " + folder.string() + " não é de um terminal: não tem Vek.ini (use vek init)");
  }
  const fs::path terminal = fs::canonical(folder);
  SetAppPath(terminal);
  struct AppPathRestorer {
    ~AppPathRestorer() { SetAppPath({}); }
  } restore_app_path;
  std::shared_ptr<cgpSistema> session = OpenTerminal(terminal);

  const fs::path workbook = fs::absolute(file);
  if (!fs::exists(workbook)) {
    const fs::path model = terminal / "Modelos" / "MovimentoMensal.xlsx";
    if (!fs::is_regular_file(model)) {
      throw VekError(kBusinessError, "vek export workbook",
                     "Nem " + workbook.string() + " nem o modelo " + model.string() + " existem (use vek init)");
    }
    fs::copy_file(model, workbook);
    detail::KeepOthersFromWriting(workbook);
    out << "workbook  " << workbook.string() << " (made from " << model.string() << ")\n";
  }

  cgdApuracaoReceita_Tarifas tarifas;
  tarifas.Ob_cgpSistema(session);
  const int32_t days = static_cast<int32_t>(to - from) + 1;
  for (int32_t i = 0; i < days; ++i) {
    const Date day = from + static_cast<double>(i);
    if (progress_bar) DrawBar(100.0 * i / days, Format(Variant(day), "dd/mm/yyyy"));
    tarifas.ExportarExcel2000(day, day, workbook.string());
  }
  if (progress_bar) std::fputs("\r\033[K", stderr);
  session->Ob_Conexao()->Close();
  out << "exported  " << Format(Variant(from), "dd/mm/yyyy") << " to " << Format(Variant(to), "dd/mm/yyyy") << ": "
      << days << (days == 1 ? " day" : " days") << " into " << workbook.string() << "\n";
}

void AddExportWorkbookCommand(CLI::App& export_group) {
  auto options = std::make_shared<ExportWorkbookOptions>();
  CLI::App* command = export_group.add_subcommand(
      "workbook", "Write the monthly movement workbook (sheet DADOS, one row per day) of the days --from to --to");
  command->add_option("paths", options->paths, "[DIR] FILE: the terminal folder (default .) and the .xlsx to write "
                                               "(made from DIR/Modelos/MovimentoMensal.xlsx when missing)")
      ->required()
      ->expected(1, 2);
  command->add_option("--from", options->from, "The first day, dd/mm/yyyy")->required();
  command->add_option("--to", options->to, "The last day, dd/mm/yyyy, in the same month")->required();
  command->callback([options] {
    const std::optional<Date> from = ParseDay(options->from);
    const std::optional<Date> to = ParseDay(options->to);
    if (!from || !to) throw CLI::ValidationError("--from/--to", "a day is written dd/mm/yyyy");
    if (*to < *from || Month(*from) != Month(*to) || Year(*from) != Year(*to)) {
      throw CLI::ValidationError("--from/--to", "the days must run forward within one month (a row per day of the month)");
    }
    const fs::path folder = options->paths.size() == 2 ? options->paths[0] : ".";
    ExportMonthlyWorkbook(folder, *from, *to, options->paths.back(), ::isatty(STDOUT_FILENO) == 1, std::cout);
  });
}

}  // namespace vek::cli
