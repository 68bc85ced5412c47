// vek board and vek timetable: the viewer's board and the passengers'
// timetable search on an existing terminal folder.

#include <algorithm>
#include <fstream>
#include <iostream>
#include <memory>
#include <string>

#include "cli/BusScreens.h"
#include "cli/Commands.h"
#include "cli/demo/Day.h"

namespace vek::cli {
namespace {

namespace fs = std::filesystem;
using Align = demo::TextTable::Align;

std::string HourMinute(const Variant& value) { return value.IsNull() ? std::string() : Format(value, "hh:Nn"); }

// "CITY/UF" split at its last slash; a text without one is a city alone.
std::pair<std::string, std::string> CityAndState(const std::string& text) {
  const size_t slash = text.rfind('/');
  if (slash == std::string::npos) return {text, std::string()};
  return {text.substr(0, slash), text.substr(slash + 1)};
}

}  // namespace

bool IsSqliteFile(const fs::path& file) {
  static constexpr char kHeader[] = "SQLite format 3";  // and its NUL
  std::ifstream in(file, std::ios::binary);
  char start[sizeof kHeader] = {};
  return in.read(start, sizeof start) && std::equal(start, start + sizeof start, kHeader);
}

std::shared_ptr<cgpSistema> OpenTerminal(const fs::path& folder) {
  if (!fs::is_regular_file(folder / "Vek.ini")) {
    throw VekError(kBusinessError, std::string(),
                   folder.string() + " holds no terminal: there is no Vek.ini (make one with vek init)");
  }
  SetAppPath(fs::absolute(folder));
  cgdSistema sistema;
  std::shared_ptr<cgpSistema> session;
  try {
    session = sistema.Consultar();
  } catch (const VekError& error) {
    // Say which file: a person mends Vek.ini, not cgdSistema.
    throw VekError(error.Number(), error.Source(),
                   (folder / "Vek.ini").string() + " does not load (a key is missing or not of its kind): " +
                       error.Description());
  }
  const int32_t kind = CLng(session->Get("Cd_DB"));
  if (kind == 0 || kind == BancoDadosSQLite3) {
    const std::string database = CStr(session->Get("Ds_CaminhoDB"));
    if (database != ":memory:" && (!fs::is_regular_file(database) || !IsSqliteFile(database))) {
      throw VekError(kBusinessError, std::string(),
                     folder.string() + " holds no terminal: its database " + database + " is not there");
    }
  }
  session->AbrirConexao();
  return session;
}

std::string TripStateName(int32_t state) {
  switch (state) {
    case kTripAtPlatform: return "Embarque";
    case kTripDeparted: return "Partiu";
    case kTripArrived: return "Chegou";
    default: return "Previsto";
  }
}

void PrintBoard(std::ostream& out, Recordset& rows, std::string (*state_name)(int32_t)) {
  demo::TextTable table({{"Previsto"}, {"Origem"}, {"Destino"}, {"Empresa"}, {"Plat.", Align::Right},
                         {state_name ? "Situação" : "Andamento", state_name ? Align::Left : Align::Right}});
  Fields& f = rows.Fields();
  while (!rows.Eof()) {
    const Variant state = f.Item("No_Andamento").Value();
    table.AddRow({HourMinute(f.Item("Hr_Previsto").Value()), Format(f.Item("Nm_CidadeOrigem").Value()),
                  Format(f.Item("Nm_CidadeDestino").Value()), Format(f.Item("Nm_EmpresaOnibus").Value()),
                  Format(f.Item("No_Plataforma").Value()),
                  state_name && !state.IsNull() ? state_name(CLng(state)) : Format(state)});
    rows.MoveNext();
  }
  table.Print(out);
}

void PrintTimetables(std::ostream& out, Recordset& rows) {
  demo::TextTable table({{"Hora"}, {"Origem"}, {"Destino"}, {"Empresa"}, {"Tipo"}, {"Plat.", Align::Right},
                         {"Embarque"}, {"Dias"}});
  Fields& f = rows.Fields();
  static constexpr const char* kWeekdayFlags[] = {"Ic_ViagemNoDomingo", "Ic_ViagemNaSegunda", "Ic_ViagemNaTerca",
                                                  "Ic_ViagemNaQuarta",  "Ic_ViagemNaQuinta",  "Ic_ViagemNaSexta",
                                                  "Ic_ViagemNoSabado"};
  while (!rows.Eof()) {
    std::string days;
    for (int32_t i = 0; i < 7; ++i) {
      const Variant flag = f.Item(kWeekdayFlags[i]).Value();
      days += !flag.IsNull() && CBool(flag) ? "DSTQQSS"[i] : '-';
    }
    table.AddRow({HourMinute(f.Item("Hr_SaidaRodoviaria").Value()),
                  Format(f.Item("Nm_CidadeOrigem").Value()) + "/" + Format(f.Item("Sg_UFOrigem").Value()),
                  Format(f.Item("Nm_CidadeDestino").Value()) + "/" + Format(f.Item("Sg_UFDestino").Value()),
                  Format(f.Item("Nm_EmpresaOnibus").Value()), Format(f.Item("Ds_TipoOnibus").Value()),
                  Format(f.Item("No_Plataforma").Value()), Format(f.Item("Ds_TemEmbarque").Value()), days});
    rows.MoveNext();
  }
  table.Print(out);
}

void AddBoardCommand(CLI::App& app) {
  struct BoardArguments {
    std::string folder = ".";
    int32_t rows = 10;
  };
  auto arguments = std::make_shared<BoardArguments>();
  CLI::App* command = app.add_subcommand(
      "board", "Print the terminal's board: the latest arrivals and departures, up to the viewer's look-ahead");
  command->add_option("folder", arguments->folder, "The terminal folder (holding Vek.ini)")->capture_default_str();
  command->add_option("-r,--rows", arguments->rows, "Trips on each board")
      ->capture_default_str()
      ->check(CLI::Range(0, 1000));
  command->callback([arguments] {
    auto session = OpenTerminal(arguments->folder);
    cgdEmpresaUsuariaSistema company;
    company.Ob_cgpSistema(session);
    company.Ob_cgp()->Let("Cd_EmpresaUsuariaSistema", session->Get("Cd_EmpresaUsuariaSistema"));
    std::cout << "Board at " << Format(Variant(session->Now()), "dd/mm/yyyy hh:Nn") << ", trips due up to "
              << CLng(session->Get("Qt_TempoAntecedenciaMostrarViagensVisualizador")) << " minutes ahead\n\nCHEGADAS\n";
    PrintBoard(std::cout, *company.rsUltimasChegadas(arguments->rows));
    std::cout << "\nPARTIDAS\n";
    PrintBoard(std::cout, *company.rsUltimasPartidas(arguments->rows));
    session->Ob_Conexao()->Close();
  });
}

void AddTimetableCommand(CLI::App& app) {
  struct TimetableArguments {
    std::string folder = ".";
    std::string from;
    std::string to;
    bool stops = false;
  };
  auto arguments = std::make_shared<TimetableArguments>();
  CLI::App* command = app.add_subcommand(
      "timetable", "Search the timetables valid today from one city to another, as the passengers' screen does");
  command->add_option("folder", arguments->folder, "The terminal folder (holding Vek.ini)")->capture_default_str();
  command->add_option("--from", arguments->from, "Origin: part of a city's name, optionally /UF")->required();
  command->add_option("--to", arguments->to, "Destination: part of a city's name, optionally /UF")->required();
  command->add_flag("--stops", arguments->stops, "Match the intermediate stops too, on both sides");
  command->callback([arguments] {
    auto session = OpenTerminal(arguments->folder);
    const auto [from_city, from_state] = CityAndState(arguments->from);
    const auto [to_city, to_state] = CityAndState(arguments->to);
    cgdHorariosLinha horarios;
    horarios.Ob_cgpSistema(session);
    auto rows = horarios.adoRsHorariosLinha(from_city, from_state, to_city, to_state, arguments->stops,
                                            arguments->stops);
    std::cout << rows->RecordCount() << (rows->RecordCount() == 1 ? " timetable" : " timetables") << " from \""
              << arguments->from << "\" to \"" << arguments->to << "\"" << (arguments->stops ? ", stops included" : "")
              << "\n";
    PrintTimetables(std::cout, *rows);
    session->Ob_Conexao()->Close();
  });
}

}  // namespace vek::cli
