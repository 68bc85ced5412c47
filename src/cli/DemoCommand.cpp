// vek demo: makes a fresh terminal folder and lives one day at the terminal
// through the library, as the terminal's desktop programs would, printing
// what it does step by step.

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <ostream>
#include <sstream>
#include <string>

#include "cli/Commands.h"
#include "cli/ProgressBar.h"
#include "cli/demo/Day.h"
#include "vek/vek.h"

namespace vek::cli {
namespace {

namespace fs = std::filesystem;

// Left in every folder the demo makes: only such a folder is made anew, so
// that the demo never wipes a terminal it did not make.
constexpr std::string_view kDemoMark = ".vek-demo";
// The day the demo lives, unless --now: Monday 2 March 2026, 06:00.
constexpr int32_t kDemoYear = 2026, kDemoMonth = 3, kDemoDay = 2, kDemoHour = 6;
constexpr uint32_t kDemoSeed = 20260302;

// Puts the process-wide separators back when the day is over.
class LocaleRestorer {
 public:
  LocaleRestorer() : saved_(CurrentLocale()) {}
  ~LocaleRestorer() { SetLocale(saved_); }
  LocaleRestorer(const LocaleRestorer&) = delete;
  LocaleRestorer& operator=(const LocaleRestorer&) = delete;

 private:
  Locale saved_;
};

// Empties a folder the demo made before; refuses one that holds a terminal
// database the demo did not make.
void ClearDemoFolder(const fs::path& folder) {
  if (!fs::exists(folder)) return;
  if (fs::exists(folder / kDemoMark)) {
    for (const auto& entry : fs::directory_iterator(folder)) fs::remove_all(entry.path());
    return;
  }
  if (fs::exists(folder / "Vek.db") || fs::exists(folder / "Vek.ini")) {
    throw VekError(kBusinessError, std::string(),
                   (folder / "Vek.db").string() +
                       " is a terminal the demo did not make; give the demo a folder of its own");
  }
}

void Heading(std::ostream& out, size_t number, size_t total, const std::string& title) {
  const std::string text = std::to_string(number) + "/" + std::to_string(total) + "  " + title;
  out << "\n" << text << "\n" << String(Len(text), "=") << "\n";
}

}  // namespace

void RunDemo(const fs::path& folder, const DemoOptions& options, std::ostream& out) {
  // The terminal's machines are set up for Brazil: "4,50", "1.234".
  LocaleRestorer locale;
  SetLocale(Locale{",", "."});

  ClearDemoFolder(fs::absolute(folder).lexically_normal());
  std::ostringstream init_lines;
  InitTerminalFolder(folder, true, init_lines);
  const fs::path terminal = fs::canonical(folder);
  std::ofstream(terminal / kDemoMark) << "made by vek demo; vek demo makes this folder anew\n";

  // As a desktop program of the terminal starts: the settings from the
  // folder's Vek.ini, then the connection they name.
  SetAppPath(terminal);
  cgdSistema sistema;
  std::shared_ptr<cgpSistema> session = sistema.Consultar();
  std::shared_ptr<FixedClock> clock;
  if (!options.system_clock) {
    clock = std::make_shared<FixedClock>(DateSerial(kDemoYear, kDemoMonth, kDemoDay) +
                                         TimeSerial(kDemoHour, 0, 0));
    session->SetClock(clock);
  }
  std::shared_ptr<TerminalProgressBar> bar;
  std::unique_ptr<BarAwareOutput> bar_aware;
  std::ostream day_out(out.rdbuf());
  if (options.progress_bar) {
    bar = std::make_shared<TerminalProgressBar>();
    session->SetProgress(bar);
    bar_aware = std::make_unique<BarAwareOutput>(out.rdbuf(), *bar);
    day_out.rdbuf(bar_aware.get());
  }
  // A failing step leaves no bar behind for the error line.
  struct BarCloser {
    TerminalProgressBar* bar;
    ~BarCloser() {
      if (bar) bar->Close();
    }
  } bar_closer{bar.get()};
  session->AbrirConexao();

  const std::vector<demo::DayStep> steps = demo::DaySteps();
  day_out << "A day at the terminal, " << Format(Variant(session->Now()), "dd/mm/yyyy hh:Nn") << "\n";
  day_out << "Terminal folder " << terminal.string() << " (Vek.ini, Vek.db, MDESTACIONAMENTO.db, Modelos)\n";

  demo::DayContext day{session, day_out, {}, clock, std::mt19937(kDemoSeed)};
  for (size_t i = 0; i < steps.size(); ++i) {
    Heading(day_out, i + 1, steps.size(), steps[i].title);
    if (bar) {
      bar->Caption(steps[i].title);
      bar->Percentage(100.0 * static_cast<double>(i) / static_cast<double>(steps.size()));
      bar->Show();
    }
    steps[i].run(day);
  }
  if (bar) bar->Close();
  session->Ob_Conexao()->Close();
  day_out << "\nThe day is over: " << steps.size() << " steps, " << Format(Variant(session->Now()), "hh:Nn")
      << ". The terminal is in " << terminal.string() << "\n";
}

void AddDemoCommand(CLI::App& app) {
  struct DemoArguments {
    std::string folder = "demo-terminal";
    bool now = false;
    bool serve = false;
    ServeArguments serving;
  };
  auto arguments = std::make_shared<DemoArguments>();
  CLI::App* command = app.add_subcommand(
      "demo", "Make a fresh terminal folder and live one day at the terminal through the library, printing each step");
  command->add_option("folder", arguments->folder,
                      "The folder (made when missing; a folder the demo made before is made anew)")
      ->capture_default_str();
  command->add_flag("--now", arguments->now,
                    "Run on the system clock (by default the day is 02/03/2026 from 06:00, the same every run)");
  command->add_flag("--serve", arguments->serve,
                    "When the day is over, serve the folder's board and yard as web pages (as vek serve does)");
  command->add_option("--listen", arguments->serving.listen, "With --serve: address and port to listen on")
      ->capture_default_str();
  command->callback([arguments] {
    DemoOptions options;
    options.system_clock = arguments->now;
    options.progress_bar = ::isatty(STDOUT_FILENO) == 1;
    RunDemo(arguments->folder, options, std::cout);
    if (arguments->serve) {
      std::cout << "\n";
      ServeFolder(arguments->folder, arguments->serving, std::cout);
    }
  });
}

}  // namespace vek::cli
