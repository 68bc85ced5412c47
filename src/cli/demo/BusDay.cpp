// The bus side of the demo day: the bus companies with their buses, the
// lines and timetables that leave from and arrive at the terminal, the
// day's trips made from the timetables, the buses coming and going through
// the morning, the board and the announcements, a passenger's timetable
// search and the cities the announcements can name.

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "cli/BusScreens.h"
#include "cli/demo/Day.h"

namespace vek::cli::demo {
namespace {

using Align = TextTable::Align;
using Values = std::initializer_list<std::pair<std::string_view, Variant>>;

constexpr int32_t kExpected = kTripExpected, kAtPlatform = kTripAtPlatform, kDeparted = kTripDeparted,
                  kArrived = kTripArrived;

// What the bus part registers for its later steps.
struct BusFacts {
  std::map<std::string, int32_t> companies;  // Nm_EmpresaOnibus -> Cd_EmpresaOnibus
  std::map<std::string, int32_t> bus_types;  // Ds_TipoOnibus -> Cd_TipoOnibus
  std::map<std::string, int32_t> lines;      // "Origin > Destination" -> Cd_Linha
};
BusFacts& Facts() {
  static BusFacts facts;
  return facts;
}

template <class Manager>
auto Save(const DayContext& day, Values values) {
  auto manager = day.Use<Manager>();
  auto record = manager.Ob_cgp();
  for (const auto& [name, value] : values) record->Let(name, value);
  manager.Salvar();
  return record;
}

Date Today(const DayContext& day) { return Date(static_cast<double>(static_cast<int64_t>(day.session->Now().Serial()))); }
// The time of day of a date, on the day given.
Date OnDay(Date day, const Variant& moment) {
  const double serial = CDate(moment).Serial();
  return day + (serial - static_cast<double>(static_cast<int64_t>(serial)));
}
// Moves the demo's clock forward to `when` (never back; nothing on the system clock).
void ClockTo(const DayContext& day, Date when) {
  if (day.clock && when > day.session->Now()) day.clock->Set(when);
}
std::string HourMinute(const Variant& value) { return value.IsNull() ? "" : Format(value, "hh:Nn"); }

// ---- the steps -------------------------------------------------------------

void CompaniesAndBuses(DayContext& day) {
  BusFacts& facts = Facts();
  facts = {};
  struct Company {
    const char* person;
    const char* cnpj;
    const char* name;
  };
  const Company companies[] = {
      {"Viação Araguarina Ltda.", "01.543.032/0001-04", "Araguarina"},
      {"Real Expresso Ltda.", "00.074.451/0001-60", "Real Expresso"},
      {"Expresso Itamarati S/A", "60.397.211/0001-43", "Itamarati"},
  };
  for (const Company& company : companies) {
    auto person = Save<cgdPessoa>(day, {{"Nm_Pessoa", company.person}, {"No_TipoPessoa", 2}});
    const int32_t code = CLng(person->Get("Cd_Pessoa"));
    Save<cgdPessoaJuridica>(day, {{"Cd_Pessoa", code}, {"No_CNPJ", company.cnpj}, {"Nm_Fantasia", company.name}});
    // A bus company's code is its person's code.
    Save<cgdEmpresaOnibus>(day, {{"Cd_EmpresaOnibus", code}, {"Cd_Pessoa", code}, {"Nm_EmpresaOnibus", company.name}});
    facts.companies[company.name] = code;
  }
  for (const char* type : {"Convencional", "Executivo", "Leito"}) {
    auto saved = Save<cgdTipoOnibus>(day, {{"Ds_TipoOnibus", type}});
    facts.bus_types[type] = CLng(saved->Get("Cd_TipoOnibus"));
  }
  const std::tuple<const char*, const char*, int32_t> buses[] = {
      {"NKT4B12", "Araguarina", 2301}, {"NKT4B13", "Araguarina", 2302}, {"OGA7C41", "Araguarina", 2410},
      {"FRE2D88", "Real Expresso", 41}, {"FRE2D89", "Real Expresso", 42}, {"ITM9E05", "Itamarati", 7105}};
  for (const auto& [plate, company, fleet] : buses) {
    Save<cgdVeiculoOnibus>(day, {{"Cd_Placa", plate}, {"Cd_EmpresaOnibus", facts.companies.at(company)}, {"No_Frota", fleet}});
  }

  day.out << "  Bus companies' search grid (cgdEmpresasOnibus.CarregarMSFlexGridDeBusca):\n";
  ListGrid grid;
  TextBox count;
  day.Use<cgdEmpresasOnibus>().CarregarMSFlexGridDeBusca(grid, count);
  PrintGrid(day.out, grid, {{"Cd_EmpresaOnibus", Align::Right}, {"Nm_Pessoa"}, {"Nm_EmpresaOnibus"}}, count);

  auto buses_rs = day.Use<cgdEmpresaUsuariaSistema>().rsOnibus();
  day.out << "\n  Buses (cgdEmpresaUsuariaSistema.rsOnibus), " << buses_rs->RecordCount() << " rows:\n";
  TextTable table({{"Cd_Placa"}, {"Cd_EmpresaOnibus", Align::Right}, {"No_Frota", Align::Right}});
  while (!buses_rs->Eof()) {
    table.AddRow({Format(buses_rs->Fields().Item("Cd_Placa").Value()), Format(buses_rs->Fields().Item("Cd_EmpresaOnibus").Value()),
                  Format(buses_rs->Fields().Item("No_Frota").Value())});
    buses_rs->MoveNext();
  }
  table.Print(day.out);

  // A bus found by company and fleet number, as the garage asks for it.
  auto bus = day.Use<cgdVeiculoOnibus>();
  bus.Ob_cgp()->Let("Cd_EmpresaOnibus", facts.companies.at("Real Expresso"));
  bus.Ob_cgp()->Let("No_Frota", 42);
  day.out << "\n  Real Expresso's bus 42 (cgdVeiculoOnibus.Consultar by company and fleet number): plate "
          << CStr(bus.Consultar()->Get("Cd_Placa")) << "\n";

  day.out << "\n  Bus types' pick list (cgdTipoOnibus.CarregarComboBox):\n";
  ListComboBox types;
  day.Use<cgdTipoOnibus>().CarregarComboBox(types);
  PrintComboBox(day.out, types, "Ds_TipoOnibus");
}

struct TimetableDef {
  const char* line;
  const char* company;
  const char* bus_type;
  int32_t departs_h, departs_m, arrives_h, arrives_m;
  bool boards, alights;
  int32_t platform;
  const char* weekdays;  // Sunday first, 'x' where it runs
  int32_t valid_from_day, valid_until_day;  // of March 2026 (until: 0 open; negative: February)
};

void LinesAndTimetables(DayContext& day) {
  BusFacts& facts = Facts();
  // Two more cities: a line's end and a stop on the way to São Paulo.
  for (const auto& [name, abbreviation, distance] :
       {std::tuple{"Campinas", "CPQ", 830}, std::tuple{"Santa Bárbara d'Oeste", "SBO", 880}}) {
    auto city = Save<cgdCidade>(day, {{"Nm_Cidade", name},
                                     {"Sg_Cidade", abbreviation},
                                     {"Sg_UF", "SP"},
                                     {"Cd_UF", day.facts.states.at("SP")},
                                     {"Qt_DistanciaEmKm", distance}});
    day.facts.cities[name] = CLng(city->Get("Cd_Cidade"));
  }
  const std::pair<const char*, const char*> lines[] = {
      {"Goiânia", "São Paulo"},    {"Goiânia", "Brasília"},  {"Caldas Novas", "Goiânia"},
      {"Brasília", "Uberlândia"},  {"Goiânia", "Santa Bárbara d'Oeste"}, {"Anápolis", "Goiânia"}};
  for (const auto& [origin, destination] : lines) {
    auto line = Save<cgdLinha>(day, {{"Cd_CidadeOrigem", day.facts.cities.at(origin)},
                                     {"Cd_CidadeDestino", day.facts.cities.at(destination)}});
    facts.lines[std::string(origin) + " > " + destination] = CLng(line->Get("Cd_Linha"));
  }

  const TimetableDef timetables[] = {
      {"Goiânia > São Paulo", "Araguarina", "Executivo", 7, 0, 21, 30, true, false, 3, "xxxxxxx", 1, 0},
      {"Goiânia > São Paulo", "Real Expresso", "Leito", 21, 0, 11, 0, true, false, 4, "-xxxxx-", 1, 0},
      {"Goiânia > Brasília", "Real Expresso", "Convencional", 8, 30, 11, 45, true, false, 5, "-xxxxxx", 1, 0},
      {"Goiânia > Brasília", "Araguarina", "Convencional", 11, 0, 14, 15, true, false, 5, "xxxxxxx", -1, -28},
      {"Caldas Novas > Goiânia", "Araguarina", "Convencional", 7, 0, 9, 40, false, true, 8, "xxxxxxx", 1, 0},
      {"Brasília > Uberlândia", "Real Expresso", "Executivo", 7, 0, 10, 15, true, true, 6, "-x-x-x-", 1, 0},
      {"Goiânia > Santa Bárbara d'Oeste", "Itamarati", "Leito", 10, 45, 23, 50, true, false, 2, "xx-x-x-", 1, 31},
      {"Anápolis > Goiânia", "Araguarina", "Convencional", 6, 15, 7, 20, false, true, 7, "-xxxxx-", 1, 0},
      {"Goiânia > Brasília", "Itamarati", "Executivo", 9, 0, 12, 10, true, false, 1, "------x", 1, 0},
  };
  const char* flags[] = {"Ic_ViagemNoDomingo", "Ic_ViagemNaSegunda", "Ic_ViagemNaTerca", "Ic_ViagemNaQuarta",
                         "Ic_ViagemNaQuinta",  "Ic_ViagemNaSexta",   "Ic_ViagemNoSabado"};
  // Times of day are kept on the first day of validity: a time alone would be stored empty.
  const Date base = DateSerial(2026, 3, 1);
  std::vector<std::pair<int32_t, int32_t>> keys;  // line, timetable
  for (const TimetableDef& t : timetables) {
    auto manager = day.Use<cgdHorariosLinha>();
    auto record = manager.Ob_cgp();
    record->Let("Cd_EmpresaUsuariaSistema", day.facts.company);
    record->Let("Cd_Linha", facts.lines.at(t.line));
    record->Let("Cd_EmpresaOnibus", facts.companies.at(t.company));
    record->Let("Cd_TipoOnibus", facts.bus_types.at(t.bus_type));
    record->Let("Hr_Saida", base + TimeSerial(t.departs_h, t.departs_m, 0));
    record->Let("Hr_Chegada", base + (t.arrives_h < t.departs_h ? 1.0 : 0.0) + TimeSerial(t.arrives_h, t.arrives_m, 0));
    record->Let("Ic_TemEmbarques", t.boards);
    record->Let("Ic_TemDesembarque", t.alights);
    record->Let("No_Plataforma", t.platform);
    for (int32_t i = 0; i < 7; ++i) record->Let(flags[i], t.weekdays[i] == 'x');
    auto day_of = [](int32_t d) { return d < 0 ? DateSerial(2026, 2, -d) : DateSerial(2026, 3, d); };
    record->Let("Dt_Inicial", day_of(t.valid_from_day));
    if (t.valid_until_day != 0) record->Let("Dt_Final", day_of(t.valid_until_day));
    manager.Salvar();
    keys.emplace_back(facts.lines.at(t.line), CLng(record->Get("Cd_HorarioLinha")));
  }
  // The stops of the long lines, in any order: they are listed by distance.
  const std::pair<size_t, std::vector<const char*>> stops[] = {
      {0, {"Campinas", "Uberlândia"}}, {1, {"Uberlândia"}}, {6, {"Campinas", "Uberlândia"}}};
  for (const auto& [index, cities] : stops) {
    for (const char* city : cities) {
      Save<cgdEscalasHorarioLinha>(day, {{"Cd_EmpresaUsuariaSistema", day.facts.company},
                                        {"Cd_Linha", keys[index].first},
                                        {"Cd_HorarioLinha", keys[index].second},
                                        {"Cd_Cidade", day.facts.cities.at(city)}});
    }
  }
  day.out << "  " << std::size(lines) << " lines (cgdLinha), " << std::size(timetables)
          << " timetables (cgdHorariosLinha) with weekdays, validity and platforms, 5 stops (cgdEscalasHorarioLinha)\n\n";

  day.out << "  Lines' search grid (cgdLinhas.CarregarMSFlexGridDeBusca):\n";
  ListGrid grid;
  TextBox count;
  day.Use<cgdLinhas>().CarregarMSFlexGridDeBusca(grid, count);
  PrintGrid(day.out, grid, {{"Cd_Linha", Align::Right}, {"Nm_CidadeOrigem"}, {"Nm_CidadeDestino"}}, count);

  const int32_t brasilia = facts.lines.at("Goiânia > Brasília");
  day.out << "\n  Timetables of Goiânia > Brasília, terminal time and bus type (cgdHorariosLinha.CarregarComboBox):\n";
  ListComboBox combo;
  day.Use<cgdHorariosLinha>().CarregarComboBox(
      combo, "TbHorariosLinha.Cd_EmpresaUsuariaSistema = " + std::to_string(day.facts.company) +
                 " And TbHorariosLinha.Cd_Linha = " + std::to_string(brasilia));
  PrintComboBox(day.out, combo, "terminal time - bus type");

  day.out << "\n  Stops of the 07:00 to São Paulo, nearest first (cgdEscalasHorarioLinha.CarregarMSFlexGrid):\n";
  ListGrid stops_grid;
  day.Use<cgdEscalasHorarioLinha>().CarregarMSFlexGrid(
      stops_grid, "A.Cd_EmpresaUsuariaSistema = " + std::to_string(day.facts.company) + " And A.Cd_Linha = " +
                      std::to_string(keys[0].first) + " And A.Cd_HorarioLinha = " + std::to_string(keys[0].second));
  TextTable table({{"Codigo", Align::Right}, {"Cidade"}, {"Distancia", Align::Right}});
  for (auto& row : GridRows(stops_grid)) table.AddRow(std::move(row));
  table.Print(day.out);
}

// Creates the trips of today's timetables, each looked up first by line,
// timetable and expected time; returns how many it created.
int32_t CreateTrips(DayContext& day, int32_t& timetables) {
  const Date today = Today(day);
  auto rows = day.Use<cgdEmpresaUsuariaSistema>().rsViagensDoDia(today);
  timetables = rows->RecordCount();
  int32_t created = 0;
  Fields& f = rows->Fields();
  while (!rows->Eof()) {
    const bool boards = CBool(f.Item("Ic_TemEmbarques").Value());
    const bool alights = CBool(f.Item("Ic_TemDesembarque").Value());
    // The bus is here at its departure when the trip starts here, else at its arrival.
    const Date expected = OnDay(today, f.Item(boards && !alights ? "Hr_Saida" : "Hr_Chegada").Value());
    auto trip = day.Use<cgdViagemOnibus>();
    auto record = trip.Ob_cgp();
    record->Let("Cd_EmpresaUsuariaSistema", f.Item("Cd_EmpresaUsuariaSistema").Value());
    record->Let("Cd_Linha", f.Item("Cd_Linha").Value());
    record->Let("Cd_HorarioLinha", f.Item("Cd_HorarioLinha").Value());
    record->Let("Hr_Previsto", expected);
    if (CLng(trip.Consultar()->Get("Cd_ViagemOnibus")) == 0) {
      record->Let("Cd_EmpresaUsuariaSistema", f.Item("Cd_EmpresaUsuariaSistema").Value());
      record->Let("Cd_Linha", f.Item("Cd_Linha").Value());
      record->Let("Cd_HorarioLinha", f.Item("Cd_HorarioLinha").Value());
      record->Let("Hr_Previsto", expected);
      record->Let("No_Plataforma", f.Item("No_Plataforma").Value());
      record->Let("No_Andamento", kExpected);
      trip.Incluir();
      ++created;
      // Departures are announced ten minutes before they leave.
      if (boards) {
        Save<cgdAgendaSom>(day, {{"Cd_EmpresaUsuariaSistema", day.facts.company},
                                 {"Cd_ViagemOnibus", record->Get("Cd_ViagemOnibus")},
                                 {"Dt_Agendamento", DateAdd("n", -10, expected)},
                                 {"Ic_Feito", false}});
      }
    }
    rows->MoveNext();
  }
  return created;
}

void TripsOfTheDay(DayContext& day) {
  int32_t timetables = 0;
  const int32_t first = CreateTrips(day, timetables);
  day.out << "  " << timetables << " timetables run on " << Format(Variant(Today(day)), "dd/mm/yyyy")
          << " (cgdEmpresaUsuariaSistema.rsViagensDoDia): " << first
          << " trips created (cgdViagemOnibus.Incluir), each looked up first by line, timetable and expected time\n";
  const int32_t second = CreateTrips(day, timetables);
  day.out << "  The same step run again: " << timetables << " timetables, " << second
          << " trips created: every trip was found\n\n";

  day.out << "  Trips' search grid (cgdViagemOnibus.CarregarMSFlexGridDeBusca):\n";
  ListGrid grid;
  TextBox count;
  day.Use<cgdViagemOnibus>().CarregarMSFlexGridDeBusca(
      grid, count, "A.Cd_EmpresaUsuariaSistema = " + std::to_string(day.facts.company));
  PrintGrid(day.out, grid, {{"Cd_ViagemOnibus", Align::Right}, {"Nm_CidadeOrigem"}, {"Nm_CidadeDestino"}, {"Hr_Previsto"}},
            count);
}

struct TripEvent {
  Date when;
  int32_t trip;
  int32_t platform;
  enum Kind { ToPlatform, Departs, Arrives } kind;
  std::string route;
};

// The morning until 10:30: buses arrive, board at their platform and leave.
void ComingAndGoing(DayContext& day) {
  const Date until = Today(day) + TimeSerial(10, 30, 0);
  std::vector<TripEvent> events;
  ListGrid grid;
  TextBox count;
  auto trips = day.Use<cgdViagemOnibus>();
  trips.CarregarMSFlexGridDeBusca(grid, count, "A.Cd_EmpresaUsuariaSistema = " + std::to_string(day.facts.company));
  for (const auto& cells : GridRows(grid)) {
    auto trip = day.Use<cgdViagemOnibus>();
    trip.Ob_cgp()->Let("Cd_EmpresaUsuariaSistema", day.facts.company);
    trip.Ob_cgp()->Let("Cd_ViagemOnibus", CLng(Variant(cells[0])));
    auto record = trip.Consultar();
    auto timetable = day.Use<cgdHorariosLinha>();
    timetable.Ob_cgp()->Let("Cd_EmpresaUsuariaSistema", day.facts.company);
    timetable.Ob_cgp()->Let("Cd_Linha", record->Get("Cd_Linha"));
    timetable.Ob_cgp()->Let("Cd_HorarioLinha", record->Get("Cd_HorarioLinha"));
    auto t = timetable.Consultar();
    const Date expected = CDate(record->Get("Hr_Previsto"));
    const int32_t platform = CLng(record->Get("No_Plataforma"));
    const std::string route = cells[1] + " > " + cells[2];
    const int32_t code = CLng(record->Get("Cd_ViagemOnibus"));
    const bool boards = CBool(t->Get("Ic_TemEmbarques"));
    if (!boards) {
      events.push_back({expected + TimeSerial(0, static_cast<int32_t>(day.random() % 6), 0), code, platform, TripEvent::Arrives, route});
    } else {
      // A bus that starts here is at its platform 15 minutes early; one
      // passing through arrives on time and stays 10 minutes.
      const bool passing = CBool(t->Get("Ic_TemDesembarque"));
      events.push_back({passing ? expected : expected - TimeSerial(0, 15, 0).Serial(), code, platform, TripEvent::ToPlatform, route});
      events.push_back({passing ? expected + TimeSerial(0, 10, 0) : expected + TimeSerial(0, static_cast<int32_t>(day.random() % 4), 0),
                        code, platform, TripEvent::Departs, route});
    }
  }
  std::sort(events.begin(), events.end(), [](const TripEvent& a, const TripEvent& b) { return a.when < b.when; });
  TextTable log({{"Hora"}, {"Viagem", Align::Right}, {"Linha"}, {"Plataforma", Align::Right}, {"Evento"}});
  for (const TripEvent& event : events) {
    if (event.when > until) break;
    ClockTo(day, event.when);
    const Variant now(day.session->Now());
    auto trip = day.Use<cgdViagemOnibus>();
    auto record = trip.Ob_cgp();
    record->Let("Cd_EmpresaUsuariaSistema", day.facts.company);
    std::string what;
    if (event.kind == TripEvent::Departs) {
      // The dispatcher finds the bus boarding at the platform.
      record->Let("No_Plataforma", event.platform);
      record->Let("No_Andamento", kAtPlatform);
      trip.Consultar();
      const int32_t with_ticket = 12 + static_cast<int32_t>(day.random() % 30);
      const int32_t without = static_cast<int32_t>(day.random() % 4);
      record->Let("Hr_SaidaRodoviaria", now);
      record->Let("No_Andamento", kDeparted);
      record->Let("Qt_EmbarquesComPassagem", with_ticket);
      record->Let("Qt_EmbarquesSemPassagem", without);
      trip.Alterar();
      what = "partiu: " + std::to_string(with_ticket) + " embarques com passagem, " + std::to_string(without) + " sem";
    } else {
      record->Let("Cd_ViagemOnibus", event.trip);
      trip.Consultar();
      record->Let("Hr_ChegadaRodoviaria", now);
      record->Let("No_Andamento", event.kind == TripEvent::Arrives ? kArrived : kAtPlatform);
      trip.Alterar();
      what = event.kind == TripEvent::Arrives ? "chegou, desembarque" : "na plataforma, embarque";
    }
    log.AddRow({Format(now, "hh:Nn"), std::to_string(event.trip), event.route, std::to_string(event.platform), what});
  }
  ClockTo(day, until);
  log.Print(day.out);
}

void Board(DayContext& day) {
  // The viewer's look-ahead: trips show from 30 minutes before they are due.
  day.session->Let("Qt_TempoAntecedenciaMostrarViagensVisualizador", 30);
  auto company = day.Use<cgdEmpresaUsuariaSistema>();
  company.Ob_cgp()->Let("Cd_EmpresaUsuariaSistema", day.facts.company);
  day.out << "  The viewer at " << Format(Variant(day.session->Now()), "hh:Nn")
          << ", trips due up to 30 minutes ahead (Qt_TempoAntecedenciaMostrarViagensVisualizador):\n\n";
  day.out << "  CHEGADAS (cgdEmpresaUsuariaSistema.rsUltimasChegadas(6))\n";
  PrintBoard(day.out, *company.rsUltimasChegadas(6), TripStateName);
  day.out << "\n  PARTIDAS (cgdEmpresaUsuariaSistema.rsUltimasPartidas(6))\n";
  PrintBoard(day.out, *company.rsUltimasPartidas(6), TripStateName);
}

void Announcements(DayContext& day) {
  day.Advance(10);
  auto company = day.Use<cgdEmpresaUsuariaSistema>();
  company.Ob_cgp()->Let("Cd_EmpresaUsuariaSistema", day.facts.company);
  auto due = company.rsAgendaSom();
  day.out << "  At " << Format(Variant(day.session->Now()), "hh:Nn") << ", announcements due in the last 10 minutes "
          << "(cgdEmpresaUsuariaSistema.rsAgendaSom): " << due->RecordCount()
          << "; older ones not played are no longer offered\n";
  while (!due->Eof()) {
    auto trip = day.Use<cgdViagemOnibus>();
    trip.Ob_cgp()->Let("Cd_EmpresaUsuariaSistema", day.facts.company);
    trip.Ob_cgp()->Let("Cd_ViagemOnibus", due->Fields().Item("Cd_ViagemOnibus").Value());
    auto record = trip.Consultar();
    auto agenda = day.Use<cgdAgendaSom>();
    agenda.Ob_cgp()->Let("Cd_EmpresaUsuariaSistema", day.facts.company);
    agenda.Ob_cgp()->Let("Cd_AgendaSom", due->Fields().Item("Cd_AgendaSom").Value());
    agenda.Consultar();
    agenda.Ob_cgp()->Let("Ic_Feito", true);
    agenda.Salvar();
    day.out << "    " << HourMinute(due->Fields().Item("Dt_Agendamento").Value()) << "  trip "
            << CLng(record->Get("Cd_ViagemOnibus")) << ", departure " << HourMinute(record->Get("Hr_Previsto"))
            << " at platform " << CLng(record->Get("No_Plataforma")) << ": played, marked done (cgdAgendaSom.Salvar)\n";
    due->MoveNext();
  }
  day.out << "  Asked again: " << company.rsAgendaSom()->RecordCount() << " due\n";
}

void Search(DayContext& day) {
  auto print = [&](const char* from, const char* from_uf, const char* to, const char* to_uf, bool stops) {
    auto rows = day.Use<cgdHorariosLinha>().adoRsHorariosLinha(from, from_uf, to, to_uf, stops, stops);
    auto place = [](std::string city, const char* state) { return *state ? city + "/" + state : city; };
    day.out << "  From \"" << place(from, from_uf) << "\" to \"" << place(to, to_uf) << "\""
            << (stops ? ", stops included" : "") << " (cgdHorariosLinha.adoRsHorariosLinha): " << rows->RecordCount()
            << "\n";
    PrintTimetables(day.out, *rows);
  };
  print("Goiânia", "GO", "Campinas", "SP", true);
  day.out << "\n";
  print("Goiânia", "GO", "Campinas", "SP", false);
  day.out << "\n";
  print("", "", "Bárbara d'Oeste", "", false);  // any origin
}

void CitiesServed(DayContext& day) {
  // The recorded city names the announcer plays, in the sound folder.
  const std::filesystem::path folder(CStr(day.session->Get("Ds_PathArquivosSom")));
  std::filesystem::create_directories(folder);
  for (const char* city : {"Goiânia", "Brasília", "São Paulo", "Campinas"}) {
    std::ofstream(folder / (std::string(city) + ".wav")) << "RIFF";
  }
  auto company = day.Use<cgdEmpresaUsuariaSistema>();
  company.Ob_cgp()->Let("Cd_EmpresaUsuariaSistema", day.facts.company);
  auto cities = company.rsCidadesAtendidas();
  day.out << "  Cities served by lines and stops (cgdEmpresaUsuariaSistema.rsCidadesAtendidas), marked where the "
             "sound folder holds the city's name (AtualizarCidadeAtendidaExisteArquivoSom):\n";
  TextTable table({{"Cd_Cidade", Align::Right}, {"Nm_Cidade"}, {"Sg_UF"}, {"Km", Align::Right}, {"Som"}});
  Fields& f = cities->Fields();
  while (!cities->Eof()) {
    const std::string name = CStr(f.Item("Nm_Cidade").Value());
    const bool recorded = std::filesystem::exists(folder / (name + ".wav"));
    company.AtualizarCidadeAtendidaExisteArquivoSom(CLng(f.Item("Cd_Cidade").Value()), recorded);
    table.AddRow({Format(f.Item("Cd_Cidade").Value()), name, CStr(f.Item("Sg_UF").Value()),
                  Format(f.Item("Qt_DistanciaEmKm").Value()), recorded ? "sim" : "não"});
    cities->MoveNext();
  }
  table.Print(day.out);
  day.out << "  The access-control database is there (cgdEmpresaUsuariaSistema.ExisteBancoDeDados(\"MDESTACIONAMENTO\")): "
          << (company.ExisteBancoDeDados("MDESTACIONAMENTO") ? "True" : "False") << "\n";
}

}  // namespace

std::vector<DayStep> BusDay() {
  return {
      {"Bus companies, buses and bus types", CompaniesAndBuses},
      {"Lines, timetables and stops", LinesAndTimetables},
      {"The day's trips", TripsOfTheDay},
      {"Buses coming and going until 10:30", ComingAndGoing},
      {"The board", Board},
      {"Announcements", Announcements},
      {"A passenger's timetable search", Search},
      {"Cities served", CitiesServed},
  };
}

}  // namespace vek::cli::demo
