// The boarding maps' part of the demo day: the day's trips turned into map
// items per bus company and destination city (a departed bus's boardings
// shared over the cities it goes to, an arrived bus's passengers counted
// under the city they came from), the map read back by reach, each
// company's boardings apportioned over its cities, and the month's boarding
// and alighting maps written into the report file of the terminal's folder.

#include <filesystem>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "cli/demo/Day.h"

namespace vek::cli::demo {
namespace {

using Align = TextTable::Align;

// Progress states of a trip, as the bus part sets them.
constexpr int32_t kDeparted = 2;
constexpr int32_t kArrived = 3;
// The terminal is in Goiânia: its own state decides the reach.
constexpr const char* kLocalState = "GO";

struct MapCount {
  int32_t boardings = 0;
  int32_t alightings = 0;
};
using MapKey = std::pair<int32_t, int32_t>;  // Cd_EmpresaOnibus, Cd_Cidade

Date Today(const DayContext& day) {
  return Date(static_cast<double>(static_cast<int64_t>(day.session->Now().Serial())));
}
std::string Count(int32_t value) { return Format(Variant(value), "###,###,##0"); }

// The cities a timetable calls at on the way, from its stops' grid.
std::vector<int32_t> StopsOf(const DayContext& day, const cgp& trip) {
  ListGrid grid;
  day.Use<cgdEscalasHorarioLinha>().CarregarMSFlexGrid(
      grid, "A.Cd_EmpresaUsuariaSistema = " + std::to_string(day.facts.company) +
                " And A.Cd_Linha = " + CStr(trip.Get("Cd_Linha")) +
                " And A.Cd_HorarioLinha = " + CStr(trip.Get("Cd_HorarioLinha")));
  std::vector<int32_t> cities;
  for (const auto& cells : GridRows(grid)) cities.push_back(CLng(Variant(cells[0])));
  return cities;
}

// The day's passengers per company and city, from the trips the bus part ran.
std::map<MapKey, MapCount> CountTrips(DayContext& day) {
  std::map<MapKey, MapCount> counts;
  ListGrid trips;
  TextBox found;
  day.Use<cgdViagemOnibus>().CarregarMSFlexGridDeBusca(
      trips, found, "A.Cd_EmpresaUsuariaSistema = " + std::to_string(day.facts.company));
  for (const auto& cells : GridRows(trips)) {
    auto trip = day.Use<cgdViagemOnibus>();
    trip.Ob_cgp()->Let("Cd_EmpresaUsuariaSistema", day.facts.company);
    trip.Ob_cgp()->Let("Cd_ViagemOnibus", CLng(Variant(cells[0])));
    auto record = trip.Consultar();
    const int32_t state = CLng(record->Get("No_Andamento"));
    if (state != kDeparted && state != kArrived) continue;
    auto timetable = day.Use<cgdHorariosLinha>();
    timetable.Ob_cgp()->Let("Cd_EmpresaUsuariaSistema", day.facts.company);
    timetable.Ob_cgp()->Let("Cd_Linha", record->Get("Cd_Linha"));
    timetable.Ob_cgp()->Let("Cd_HorarioLinha", record->Get("Cd_HorarioLinha"));
    auto t = timetable.Consultar();
    auto line = day.Use<cgdLinha>();
    line.Ob_cgp()->Let("Cd_Linha", record->Get("Cd_Linha"));
    auto l = line.Consultar();
    const int32_t company = CLng(t->Get("Cd_EmpresaOnibus"));
    if (state == kDeparted) {
      // A quarter of the passengers for each stop on the way, the rest for
      // the end of the line.
      int32_t boardings = CLng(record->Get("Qt_EmbarquesComPassagem")) + CLng(record->Get("Qt_EmbarquesSemPassagem"));
      for (int32_t stop : StopsOf(day, *record)) {
        counts[{company, stop}].boardings += boardings / 4;
        boardings -= boardings / 4;
      }
      counts[{company, CLng(l->Get("Cd_CidadeDestino"))}].boardings += boardings;
    }
    if (CBool(t->Get("Ic_TemDesembarque"))) {
      // The trips keep no alighting count: the platform staff's tally.
      counts[{company, CLng(l->Get("Cd_CidadeOrigem"))}].alightings +=
          8 + static_cast<int32_t>(day.random() % 28);
    }
  }
  return counts;
}

// ---- the steps -------------------------------------------------------------

void MapItems(DayContext& day) {
  const Date today = Today(day);
  const auto counts = CountTrips(day);
  for (const auto& [key, count] : counts) {
    auto item = day.Use<cgdItemMapaMovimentoED>();
    auto record = item.Ob_cgp();
    record->Let("Cd_EmpresaUsuariaSistema", day.facts.company);
    record->Let("Cd_EmpresaOnibus", key.first);
    record->Let("Dt_Movimento", today);
    record->Let("Cd_Cidade", key.second);
    record->Let("Qt_Embarques", count.boardings);
    record->Let("Qt_Desembarques", count.alightings);
    item.Salvar();
  }
  auto mapa = day.Use<cgdItensMapaMovimentoED>();
  day.out << "  " << counts.size() << " map items of " << Format(Variant(today), "dd/mm/yyyy")
          << " from the departed and arrived trips (cgdItemMapaMovimentoED.Salvar); "
          << mapa.ConsultarItensMapaPorEmpresa(today)->RecordCount()
          << " read back (ConsultarItensMapaPorEmpresa)\n\n";

  day.out << "  Boardings by company and destination (ConsultarEmpresasComEmbarque, ConsultarEmbarques):\n";
  TextTable boardings({{"Cd", Align::Right}, {"Empresa"}, {"Cidade"}, {"Embarques", Align::Right}});
  for (auto rows = mapa.ConsultarEmpresasComEmbarque(today, today, AbrangenciaGeral, kLocalState); !rows->Eof();
       rows->MoveNext()) {
    Fields& f = rows->Fields();
    const int32_t company = CLng(f.Item("Cd_EmpresaOnibus").Value());
    const int32_t city = CLng(f.Item("Cd_Cidade").Value());
    boardings.AddRow({std::to_string(company), CStr(f.Item("Nm_EmpresaOnibus").Value()),
                      CStr(f.Item("Nm_Cidade").Value()) + "-" + CStr(f.Item("Sg_UF").Value()),
                      Count(mapa.ConsultarEmbarques(company, city, today))});
  }
  boardings.Print(day.out);

  day.out << "\n  Alightings by company and city of origin (ConsultarEmpresasComDesembarque, ConsultarDesembarques):\n";
  TextTable alightings({{"Cd", Align::Right}, {"Empresa (pessoa)"}, {"Cidade"}, {"Desembarques", Align::Right}});
  for (auto rows = mapa.ConsultarEmpresasComDesembarque(today, today, AbrangenciaGeral, kLocalState); !rows->Eof();
       rows->MoveNext()) {
    Fields& f = rows->Fields();
    const int32_t company = CLng(f.Item("Cd_EmpresaOnibus").Value());
    const int32_t city = CLng(f.Item("Cd_Cidade").Value());
    alightings.AddRow({std::to_string(company), CStr(f.Item("Nm_Pessoa").Value()),
                       CStr(f.Item("Nm_Cidade").Value()) + "-" + CStr(f.Item("Sg_UF").Value()),
                       Count(mapa.ConsultarDesembarques(company, city, today))});
  }
  alightings.Print(day.out);

  day.out << "\n  By reach, the terminal being in " << kLocalState << ":\n";
  PrintFacts(day.out,
             {{"Boarding pairs within the state",
               std::to_string(mapa.ConsultarEmpresasComEmbarque(today, today, AbrangenciaIntermunicipal, kLocalState)
                                  ->RecordCount())},
              {"Boarding pairs to other states",
               std::to_string(mapa.ConsultarEmpresasComEmbarque(today, today, AbrangenciaInterestadual, kLocalState)
                                  ->RecordCount())},
              {"Companies bringing passengers in (ConsultarEmpresasComDesembarque2)",
               std::to_string(mapa.ConsultarEmpresasComDesembarque2(today, today, AbrangenciaGeral, kLocalState)
                                  ->RecordCount())}});
}

void Apportionment(DayContext& day) {
  const Date today = Today(day);
  auto mapa = day.Use<cgdItensMapaMovimentoED>();
  std::map<int32_t, std::string> companies;
  for (auto rows = mapa.ConsultarEmpresasComEmbarque(today, today, AbrangenciaGeral, kLocalState); !rows->Eof();
       rows->MoveNext()) {
    Fields& f = rows->Fields();
    const int32_t company = CLng(f.Item("Cd_EmpresaOnibus").Value());
    const int32_t city = CLng(f.Item("Cd_Cidade").Value());
    companies[company] = CStr(f.Item("Nm_EmpresaOnibus").Value());
    auto line = day.Use<cgdItemRateioMovimentoED>();
    auto record = line.Ob_cgp();
    record->Let("Cd_EmpresaUsuariaSistema", day.facts.company);
    record->Let("Cd_EmpresaOnibus", company);
    record->Let("Cd_Cidade", city);
    record->Let("Qt_Embarques", mapa.ConsultarEmbarques(company, city, today));
    line.Salvar();
  }
  auto rateio = day.Use<cgdItensRateioMovimentoED>();
  for (const auto& [company, name] : companies) {
    ListGrid grid;
    TextBox total;
    rateio.CarregarMSFlexGrid(grid, total,
                              "A.Cd_EmpresaUsuariaSistema = " + std::to_string(day.facts.company) +
                                  " And A.Cd_EmpresaOnibus = " + std::to_string(company));
    day.out << "  " << name << " (cgdItensRateioMovimentoED.CarregarMSFlexGrid, header \"" << grid.FormatString()
            << "\"):\n";
    TextTable table({{"Cod", Align::Right}, {"Nome Cidade"}, {"Embarques", Align::Right}});
    for (auto& row : GridRows(grid)) table.AddRow(std::move(row));
    table.Print(day.out, 4);
    day.out << "    Total: " << total.Text() << "\n";
    auto fewest = rateio.ConsultarRateioPorEmpresa(company);
    day.out << "    Fewest boardings first (ConsultarRateioPorEmpresa): city "
            << CStr(fewest->Fields().Item("Cd_Cidade").Value()) << " with "
            << Count(CLng(fewest->Fields().Item("Qt_Embarques").Value())) << "\n\n";
  }
}

// The month so far into the report file, read back as the report writer
// reads it.
void MonthlyMaps(DayContext& day) {
  const Date today = Today(day);
  const Date first = DateSerial(Year(today), Month(today), 1);
  auto mapa = day.Use<cgdItensMapaMovimentoED>();
  mapa.GerarArqTempMapaEmbarqueMensal(first, today, AbrangenciaGeral, kLocalState);
  mapa.GerarArqTempMapaDesembarqueMensal(first, today, AbrangenciaGeral, kLocalState);
  const std::filesystem::path file = std::filesystem::path(ApplicationFolder(*day.session)) / "bdTemp.db";
  auto report = std::make_shared<Connection>();
  report->Open(PrepareReportDatabase(*day.session));
  std::vector<std::string> days;
  for (Date d = first; d <= today; d = d + 1.0) days.push_back("Qt_Dia" + Format(Variant(Day(d)), "00"));
  for (const auto& [table, title] : {std::pair{"cgrMapaControleEmbarque1", "Boarding map"},
                                     std::pair{"cgrMapaControleDesembarque1", "Alighting map"}}) {
    day.out << "  " << title << " " << Format(Variant(first), "dd/mm") << " to " << Format(Variant(today), "dd/mm")
            << " (" << table << "):\n";
    std::vector<TextTable::Column> columns = {{"Empresa"}, {"Cidade"}};
    for (const std::string& field : days) columns.push_back({field, Align::Right});
    columns.push_back({"Qt_Total", Align::Right});
    TextTable rows(columns);
    for (auto read = report->Execute("SELECT * FROM " + std::string(table) + " ORDER BY Cd_EmpresaOnibus, Cd_Cidade");
         !read->Eof(); read->MoveNext()) {
      Fields& f = read->Fields();
      std::vector<std::string> cells = {Format(f.Item("Nm_EmpresaOnibus").Value()), CStr(f.Item("Nm_Cidade").Value())};
      for (const std::string& field : days) cells.push_back(Format(f.Item(field).Value()));
      cells.push_back(Format(f.Item("Qt_Total").Value()));
      rows.AddRow(std::move(cells));
    }
    rows.Print(day.out);
    day.out << "\n";
  }
  report->Close();
  day.out << "  Written to " << file.string() << "\n";
}

}  // namespace

std::vector<DayStep> MapsDay() {
  return {
      {"Boarding and alighting map", MapItems},
      {"Apportionment of boardings", Apportionment},
      {"Monthly boarding and alighting maps", MonthlyMaps},
  };
}

}  // namespace vek::cli::demo
