// The car park's part of the demo day: price bands, vehicles entering and
// leaving (found by plate, by printed code and by card, priced by their
// band, their charge lines written before the ticket is closed), monthly
// clients with their cards pushed to the gates, the gates' card passages
// turned into tickets, the yard, the housekeeping of old entries, and the
// restroom turnstile's sales. The gates' own writes (what the access-control
// system records by itself) go straight to its database, as it would.

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "cli/demo/Day.h"

namespace vek::cli::demo {
namespace {

using Align = TextTable::Align;
using Values = std::initializer_list<std::pair<std::string_view, Variant>>;

template <class Manager>
auto Save(const DayContext& day, Values values) {
  auto manager = day.Use<Manager>();
  auto record = manager.Ob_cgp();
  for (const auto& [name, value] : values) record->Let(name, value);
  manager.Salvar();
  return record;
}

std::string Text(const cgp& record, std::string_view column) { return Format(record.Get(column)); }
std::string Clock(const Variant& moment) { return moment.IsNull() ? "" : Format(moment, "dd/mm hh:Nn"); }
std::string YesNo(bool value) { return value ? "True" : "False"; }

// What the gates' own system writes into its database.
void Gates(const DayContext& day, const std::string& statement) { day.session->Ob_Conexao()->Execute(statement); }
std::string GateMoment(const DayContext& day) {
  return "'" + Format(Variant(day.session->Now()), "yyyy-mm-dd hh:Nn:Ss") + "'";
}

int32_t Company(const DayContext& day) { return day.facts.company; }

// The pending ticket's stay in whole minutes up to now.
int32_t MinutesSince(const DayContext& day, const cgp& ticket) {
  return static_cast<int32_t>(std::floor((day.session->Now() - CDate(ticket.Get("Dt_Entrada"))) * 1440.0 + 1e-6));
}

struct Charge {
  int32_t tariff = 0;  // 0: no band covers the stay
  Currency value;
};

// The band that prices a stay.
Charge BandOf(const DayContext& day, int32_t minutes) {
  auto bands = day.Use<cgdPrecoEstacionamento>();
  bands.Ob_cgp()->Let("Cd_EmpresaUsuariaSistema", Company(day));
  auto rows = bands.rsObterTarifaAplicavelAoTempo(minutes);
  if (rows->Eof()) return {};
  return {CLng(rows->Fields().Item("Cd_Tarifa").Value()), CCur(rows->Fields().Item("Vl_Tarifa").Value())};
}

// Closes a pending ticket the way the exit cashier does: the charge lines
// first, then the ticket itself, so that a failure leaves it pending.
void CloseTicket(const DayContext& day, cgdTicketEstacionamento& ticket, int32_t minutes, const Charge& charge) {
  auto record = ticket.Ob_cgp();
  ticket.ExcluirTarifas();
  if (charge.tariff != 0) {
    auto line = day.Use<cgdTicketEstacionamento_Tarifa>();
    auto item = line.Ob_cgp();
    item->Let("Cd_EmpresaUsuariaSistema", Company(day));
    item->Let("Cd_TicketEstacionamento", record->Get("Cd_TicketEstacionamento"));
    item->Let("Cd_Tarifa", charge.tariff);
    item->Let("Qt_Unidade", 1);
    item->Let("Vl_Tarifa", charge.value);
    line.Incluir();
  }
  record->Let("Dt_Saida", day.session->Now());
  record->Let("Qt_TempoPermanenciaMinutos", minutes);
  record->Let("Vl_Tarifa", charge.value);
  record->Let("Cd_Caixa", day.facts.till);
  record->Let("No_Situacao", 2);
  ticket.Alterar();
}

// The company's tariff of a description (the registry's morning saved it).
int32_t TariffOf(const DayContext& day, const std::string& description) { return day.facts.tariffs.at(description); }

// ---- the steps -------------------------------------------------------------

void Bands(DayContext& day) {
  struct Band {
    int32_t first, last;
    const char* tariff;
    int64_t centavos;  // 0: the registry's tariff of that name
  };
  const Band bands[] = {{1, 15, "Estacionamento - 15 minutos", 300},
                        {16, 60, "Estacionamento - hora", 0},
                        {61, 180, "Estacionamento - até 3 horas", 1500},
                        {181, 1440, "Estacionamento - diária", 3000}};
  for (const Band& band : bands) {
    if (band.centavos != 0) {
      auto tariff = Save<cgdTarifa>(day, {{"Cd_EmpresaUsuariaSistema", Company(day)},
                                          {"Ds_Tarifa", band.tariff},
                                          {"Vl_Tarifa", Currency::FromRaw(band.centavos * 100)},
                                          {"Cd_TipoReceita", 2}});
      day.facts.tariffs[band.tariff] = CLng(tariff->Get("Cd_Tarifa"));
    }
    Save<cgdPrecoEstacionamento>(day, {{"Cd_EmpresaUsuariaSistema", Company(day)},
                                       {"Qt_TempoInicial", band.first},
                                       {"Qt_TempoFinal", band.last},
                                       {"Cd_Tarifa", TariffOf(day, band.tariff)}});
  }
  auto monthly = Save<cgdTarifa>(day, {{"Cd_EmpresaUsuariaSistema", Company(day)},
                                       {"Ds_Tarifa", "Mensalidade estacionamento"},
                                       {"Vl_Tarifa", Currency::FromRaw(18000 * 100)},
                                       {"Cd_TipoReceita", 2}});
  day.facts.tariffs["Mensalidade estacionamento"] = CLng(monthly->Get("Cd_Tarifa"));

  day.out << "  Price bands (cgdPrecoEstacionamento.Salvar, then rsPrecosEstacionamento):\n";
  auto list = day.Use<cgdPrecoEstacionamento>();
  list.Ob_cgp()->Let("Cd_EmpresaUsuariaSistema", Company(day));
  TextTable table({{"Band", Align::Right}, {"From min", Align::Right}, {"To min", Align::Right},
                   {"Cd_Tarifa", Align::Right}, {"Vl_Tarifa", Align::Right}});
  for (auto rows = list.rsPrecosEstacionamento(); !rows->Eof(); rows->MoveNext()) {
    Fields& f = rows->Fields();
    table.AddRow({Format(f.Item("Cd_PrecoEstacionamento").Value()), Format(f.Item("Qt_TempoInicial").Value()),
                  Format(f.Item("Qt_TempoFinal").Value()), Format(f.Item("Cd_Tarifa").Value()),
                  Money(CCur(f.Item("Vl_Tarifa").Value()))});
  }
  table.Print(day.out);
  day.out << "\n  The band of a stay (rsObterTarifaAplicavelAoTempo):\n";
  TextTable stays({{"Minutes", Align::Right}, {"Charged", Align::Right}});
  for (int32_t minutes : {0, 15, 16, 95, 2000}) {
    const Charge charge = BandOf(day, minutes);
    stays.AddRow({std::to_string(minutes), charge.tariff == 0 ? "no band" : Money(charge.value)});
  }
  stays.Print(day.out);
}

struct Arrival {
  const char* plate;
  const char* code;  // the printed ticket of a loose entry at the gates, or empty
};
const Arrival kArrivals[] = {{"PQA1B23", ""},
                             {"RBX2F34", "26030200010101"},
                             {"OGX4C56", ""},
                             {"SDE5G67", "26030200010202"},
                             {"QTR7E89", ""},
                             {"TUV8H90", "26030200010303"}};

void Entries(DayContext& day) {
  TextTable table({{"Ticket", Align::Right}, {"Cd_Placa"}, {"Ds_Ticket"}, {"Entrada"}});
  for (const Arrival& arrival : kArrivals) {
    day.Advance(std::uniform_int_distribution<int>(3, 12)(day.random));
    auto ticket = day.Use<cgdTicketEstacionamento>();
    auto record = ticket.Ob_cgp();
    record->Let("Cd_EmpresaUsuariaSistema", Company(day));
    record->Let("Cd_Placa", arrival.plate);
    if (ticket.ExisteEntradaPendente()) continue;  // the screen refuses a second entry of a plate
    record->Let("No_Situacao", 1);
    record->Let("Dt_Entrada", day.session->Now());
    record->Let("Ds_Ticket", arrival.code);
    ticket.Salvar();
    if (*arrival.code != '\0') {
      const std::string gate_code = std::string(arrival.code).substr(0, 13);
      Gates(day, "INSERT INTO MDESTACIONAMENTO.dbo.CARTOESAVULSOS (CODIGOCARTAO, DATAHORAENTRADA) VALUES ('" + gate_code +
                     "', " + GateMoment(day) + ")");
      Gates(day, "INSERT INTO MDESTACIONAMENTO.dbo.LOGCARTOESAVULSOS (CODIGOCARTAO, EVENTO, DATAHORAPASSAGEM) VALUES ('" +
                     gate_code + "', 1, " + GateMoment(day) + ")");
    }
    table.AddRow({Text(*record, "Cd_TicketEstacionamento"), arrival.plate, arrival.code,
                  Clock(record->Get("Dt_Entrada"))});
  }
  // A ticket the gates let in while this system was down: the yard marks it.
  Gates(day, "INSERT INTO MDESTACIONAMENTO.dbo.CARTOESAVULSOS (CODIGOCARTAO, DATAHORAENTRADA) VALUES "
             "('2603020009999', " + GateMoment(day) + ")");
  day.out << "  Entries (ExisteEntradaPendente, then Salvar pending):\n";
  table.Print(day.out);
  auto again = day.Use<cgdTicketEstacionamento>();
  again.Ob_cgp()->Let("Cd_EmpresaUsuariaSistema", Company(day));
  again.Ob_cgp()->Let("Cd_Placa", kArrivals[0].plate);
  day.out << "\n  " << kArrivals[0].plate << " again at the gate: ExisteEntradaPendente = "
          << YesNo(again.ExisteEntradaPendente()) << ", the entry is refused\n";
}

void Exits(DayContext& day) {
  TextTable table({{"Ticket", Align::Right}, {"Found by"}, {"Entrada"}, {"Saída"}, {"Min", Align::Right},
                   {"Charged", Align::Right}, {"Gates"}});
  auto leave = [&](cgdTicketEstacionamento& ticket, const std::string& how) {
    auto record = ticket.Ob_cgp();
    const int32_t minutes = MinutesSince(day, *record);
    CloseTicket(day, ticket, minutes, BandOf(day, minutes));
    std::string gates;
    const std::string code = CStr(record->Get("Ds_Ticket"));
    if (!code.empty()) {
      ticket.LiberarTicketMadis(gates);
      if (gates.empty()) gates = "released";
    }
    table.AddRow({Text(*record, "Cd_TicketEstacionamento"), how, Clock(record->Get("Dt_Entrada")),
                  Clock(record->Get("Dt_Saida")), std::to_string(minutes), Money(CCur(record->Get("Vl_Tarifa"))),
                  gates});
  };

  day.Advance(40);
  auto by_plate = day.Use<cgdTicketEstacionamento>();
  by_plate.Ob_cgp()->Let("Cd_EmpresaUsuariaSistema", Company(day));
  by_plate.Ob_cgp()->Let("Cd_Placa", "PQA1B23");
  by_plate.ConsultarTicketPendentePorPlaca(false);
  leave(by_plate, "plate PQA1B23");

  day.Advance(65);
  auto by_code = day.Use<cgdTicketEstacionamento>();
  by_code.Ob_cgp()->Let("Cd_EmpresaUsuariaSistema", Company(day));
  by_code.Ob_cgp()->Let("Ds_Ticket", "26030200010101");
  by_code.Consultar(false);
  day.out << "  Ticket 26030200010101 at the cashier: HouveEntradaTicketMadis = "
          << YesNo(by_code.HouveEntradaTicketMadis("26030200010101"))
          << ", EstaBloqueadoTicketMadis = " << YesNo(by_code.EstaBloqueadoTicketMadis("26030200010101")) << "\n";
  leave(by_code, "code 26030200010101");

  day.Advance(130);
  auto long_stay = day.Use<cgdTicketEstacionamento>();
  long_stay.Ob_cgp()->Let("Cd_EmpresaUsuariaSistema", Company(day));
  long_stay.Ob_cgp()->Let("Cd_Placa", "QTR7E89");
  long_stay.ConsultarTicketPendentePorPlaca(false);
  leave(long_stay, "plate QTR7E89");

  day.out << "\n  Exits: charge lines first, then Alterar closes the ticket; coded tickets are released at the gates:\n";
  table.Print(day.out);

  auto lines = long_stay.rsTarifas();
  day.out << "\n  Charge lines of ticket " << Text(*long_stay.Ob_cgp(), "Cd_TicketEstacionamento") << " (rsTarifas):";
  for (; !lines->Eof(); lines->MoveNext()) {
    day.out << " " << CStr(lines->Fields().Item("Ds_Tarifa").Value()) << " x"
            << CStr(lines->Fields().Item("Qt_Unidade").Value()) << " = "
            << Money(CCur(lines->Fields().Item("Vl_Total").Value()));
  }
  day.out << "\n";

  // A lost ticket is revalidated: a new row under the same printed code.
  auto original = day.Use<cgdTicketEstacionamento>();
  original.Ob_cgp()->Let("Cd_EmpresaUsuariaSistema", Company(day));
  original.Ob_cgp()->Let("Ds_Ticket", "26030200010202");
  original.Consultar(false);
  auto revalidated = Save<cgdTicketEstacionamento>(
      day, {{"Cd_EmpresaUsuariaSistema", Company(day)}, {"Cd_Placa", "SDE5G67"}, {"No_Situacao", 1},
            {"Dt_Entrada", original.Ob_cgp()->Get("Dt_Entrada")}, {"Ds_Ticket", "26030200010202"},
            {"Ic_TicketRevalidado", true}});
  original.Ob_cgp()->Let("No_Situacao", 2);
  original.Ob_cgp()->Let("Dt_Saida", day.session->Now());
  original.Alterar();
  auto found = day.Use<cgdTicketEstacionamento>();
  found.Ob_cgp()->Let("Cd_EmpresaUsuariaSistema", Company(day));
  found.Ob_cgp()->Let("Ds_Ticket", "26030200010202");
  found.Ob_cgp()->Let("Ic_TicketRevalidado", true);
  found.Consultar(false);
  day.out << "  Ticket 26030200010202 revalidated: original " << Text(*original.Ob_cgp(), "Cd_TicketEstacionamento")
          << ", revalidation " << Text(*revalidated, "Cd_TicketEstacionamento")
          << " (Consultar with Ic_TicketRevalidado finds " << Text(*found.Ob_cgp(), "Cd_TicketEstacionamento") << ")\n";
}

struct MonthlyClient {
  const char* name;
  const char* card;    // the card's number at the gates
  const char* holder;
  const char* plate;
};
const MonthlyClient kClients[] = {{"Mariana Aparecida Santos", "100201", "Mariana", "MAS1A01"},
                                  {"Carlos Eduardo Pereira", "100202", "Carlos", "CEP2B02"}};

void MonthlyClients(DayContext& day) {
  int32_t category = 0, calendar = 0;
  for (const char* name : {"Mensalista diurno", "Mensalista integral"}) {
    category = CLng(Save<cgdCategoriaClienteEstacionament>(day, {{"Cd_EmpresaUsuariaSistema", Company(day)},
                                                               {"Nm_CategoriaClienteEstacionamento", name}})
                        ->Get("Cd_CategoriaClienteEstacionamento"));
  }
  for (const char* name : {"Segunda a sexta", "Todos os dias"}) {
    calendar = CLng(Save<cgdCalendarioAcessoEstacionament>(day, {{"Cd_EmpresaUsuariaSistema", Company(day)},
                                                               {"Nm_CalendarioAcessoEstacionamento", name}})
                        ->Get("Cd_CalendarioAcessoEstacionamento"));
  }
  ListComboBox categories;
  day.Use<cgdCategoriaClienteEstacionament>().CarregarComboBox(categories);
  day.out << "  Categories (cgdCategoriaClienteEstacionament.CarregarComboBox):\n";
  PrintComboBox(day.out, categories, "Nm_CategoriaClienteEstacionamento");

  TextTable table({{"Client", Align::Right}, {"Nm_Pessoa"}, {"Card", Align::Right}, {"Ds_IdentificacaoCartao"},
                   {"Gates"}});
  for (const MonthlyClient& client : kClients) {
    const int32_t person = CLng(Save<cgdPessoa>(day, {{"Nm_Pessoa", client.name}, {"No_TipoPessoa", 1}})->Get("Cd_Pessoa"));
    auto manager = day.Use<cgdClienteEstacionament>();
    auto record = manager.Ob_cgp();
    record->Let("Cd_EmpresaUsuariaSistema", Company(day));
    record->Let("Cd_ClienteEstacionamento", person);
    record->Let("Cd_Tarifa", TariffOf(day, "Mensalidade estacionamento"));
    record->Let("Cd_CategoriaClienteEstacionamento", category);
    record->Let("Cd_CalendarioAcessoEstacionamento", calendar);
    manager.Salvar();
    std::string aviso;
    manager.AtualizarClienteMadis(aviso);
    auto card = day.Use<cgdCartaoEstacionamento>();
    auto card_record = card.Ob_cgp();
    card_record->Let("Cd_EmpresaUsuariaSistema", Company(day));
    card_record->Let("Cd_ClienteEstacionamento", person);
    card_record->Let("Ds_IdentificacaoCartao", client.card);
    card_record->Let("Nm_Portador", client.holder);
    card_record->Let("Nm_CartaoEstacionamentoo", std::string("Cartão ") + client.card);
    card_record->Let("No_TipoVeiculo", 0);
    card_record->Let("Dt_InicioValidade", DateSerial(2026, 3, 1));
    card_record->Let("Dt_FimValidade", DateSerial(2026, 3, 31));
    card_record->Let("Ic_Ativo", true);
    card.Salvar();
    std::string card_aviso;
    card.AtualizarClienteCartaoMadis(card_aviso);
    table.AddRow({std::to_string(person), client.name, Text(*card_record, "Cd_CartaoEstacionamento"), client.card,
                  aviso.empty() && card_aviso.empty() ? "client and card pushed" : aviso + card_aviso});
  }
  day.out << "\n  Monthly clients and their cards, pushed to the gates (AtualizarClienteMadis, "
             "AtualizarClienteCartaoMadis):\n";
  table.Print(day.out);

  ListGrid cards;
  TextBox count;
  auto card_list = day.Use<cgdCartaoEstacionamento>();
  card_list.Ob_cgp()->Let("Cd_EmpresaUsuariaSistema", Company(day));
  card_list.CarregarMSFlexGridDeBusca(cards, count);
  day.out << "\n  Cards' search grid (cgdCartaoEstacionamento.CarregarMSFlexGridDeBusca):\n";
  PrintGrid(day.out, cards, {{"Card", Align::Right}, {"Ds_IdentificacaoCartao"}, {"Nm_Pessoa"}, {"Nm_Portador"}},
            count);

  // An agreement: the hospital's visitors hold up to 3 vacancies.
  const int32_t hospital =
      CLng(Save<cgdPessoa>(day, {{"Nm_Pessoa", "Hospital Santa Helena"}, {"No_TipoPessoa", 2}})->Get("Cd_Pessoa"));
  Save<cgdConvenioEstacionamento>(day, {{"Cd_EmpresaUsuariaSistema", Company(day)},
                                        {"Cd_ClienteConvenio", hospital},
                                        {"Qt_Vagas", 3},
                                        {"Hr_Inicial", TimeSerial(7, 0, 0)},
                                        {"Hr_Final", TimeSerial(19, 0, 0)}});
  Save<cgdTicketEstacionamento>(day, {{"Cd_EmpresaUsuariaSistema", Company(day)}, {"Cd_Placa", "HSH3C03"},
                                      {"No_Situacao", 1}, {"Dt_Entrada", day.session->Now()},
                                      {"Cd_ClienteConvenio", hospital}});
  auto agreement = day.Use<cgdConvenioEstacionamento>();
  agreement.Ob_cgp()->Let("Cd_EmpresaUsuariaSistema", Company(day));
  agreement.Ob_cgp()->Let("Cd_ClienteConvenio", hospital);
  day.out << "\n  Agreement Hospital Santa Helena, 3 vacancies: VagasUtilizadas = "
          << static_cast<int>(agreement.VagasUtilizadas())
          << ", VagasDisponiveis now = " << agreement.VagasDisponiveis(day.session->Now(), 0) << "\n";
}

void CardPassages(DayContext& day) {
  // What the gates logged: card 1 in at 07:05 and, its exit missed, in
  // again; card 2 in and out.
  struct Passage {
    int32_t client, event;
    double minutes_later;
  };
  const Passage passages[] = {{0, 1, 5}, {1, 1, 10}, {0, 1, 50}, {1, 2, 70}};
  int32_t log_id = 0;
  for (const Passage& passage : passages) {
    day.Advance(passage.minutes_later);
    const std::string card = kClients[passage.client].card;
    Gates(day, "INSERT INTO MDESTACIONAMENTO.dbo.LOGPERMANENCIAMENSALISTA (IDLOGPERMANENCIA, IDEMPRESA, "
               "IDEMPRESACARTAO, IDCARTAO, EVENTO, DATAHORAPASSAGEM, REALTIME) SELECT " +
                   std::to_string(++log_id) + ", " + std::to_string(Company(day)) + ", IDEMPRESACARTAO, IDCARTAO, " +
                   std::to_string(passage.event) + ", " + GateMoment(day) +
                   ", 1 FROM MDESTACIONAMENTO.dbo.CLIENTECARTAO WHERE CODIGOCARTAO = " + card);
    Gates(day, "UPDATE MDESTACIONAMENTO.dbo.CLIENTE SET VAGASEMUSO = " + std::string(passage.event == 1 ? "1" : "0") +
                   " WHERE IDCLIENTE = (SELECT IDCLIENTE FROM MDESTACIONAMENTO.dbo.CLIENTECARTAO WHERE CODIGOCARTAO = " +
                   card + ")");
  }

  // The parking program turns each unprocessed passage into a ticket.
  struct Pending {
    int32_t company, id, card, client, event;
    Variant moment;
  };
  std::vector<Pending> todo;
  auto empresa = day.Use<cgdEmpresaUsuariaSistema>();
  for (auto rows = empresa.rsEntradaMensalistaMadisNaoProcessada(); !rows->Eof(); rows->MoveNext()) {
    Fields& f = rows->Fields();
    todo.push_back({CLng(f.Item("IDEMPRESA").Value()), CLng(f.Item("IDLOGPERMANENCIA").Value()),
                    CLng(f.Item("IDCARTAO").Value()), CLng(f.Item("IDCLIENTE").Value()),
                    CLng(f.Item("EVENTO").Value()), f.Item("DATAHORAPASSAGEM").Value()});
  }
  TextTable table({{"Log", Align::Right}, {"Passage"}, {"Card", Align::Right}, {"Ticket", Align::Right},
                   {"Min", Align::Right}, {"Free", Align::Right}, {"Charged", Align::Right}});
  for (const Pending& passage : todo) {
    auto ticket = day.Use<cgdTicketEstacionamento>();
    auto record = ticket.Ob_cgp();
    record->Let("Cd_EmpresaUsuariaSistema", passage.company);
    record->Let("Cd_CartaoEstacionamento", passage.card);
    std::string minutes, free, charged;
    if (passage.event == 1) {
      ticket.RegistrarSaidaDasEntradasAnterioresDessaCartao(passage.company, passage.card);
      auto card = day.Use<cgdCartaoEstacionamento>();
      card.Ob_cgp()->Let("Cd_EmpresaUsuariaSistema", passage.company);
      card.Ob_cgp()->Let("Cd_CartaoEstacionamento", passage.card);
      card.Consultar();
      const std::string identification = CStr(card.Ob_cgp()->Get("Ds_IdentificacaoCartao"));
      for (const MonthlyClient& client : kClients) {
        if (identification == client.card) record->Let("Cd_Placa", client.plate);
      }
      record->Let("Ds_Ticket", card.Ob_cgp()->Get("Ds_IdentificacaoCartao"));
      record->Let("No_Situacao", 1);
      record->Let("Dt_Entrada", passage.moment);
      record->Let("Cd_ClienteEstacionamento", passage.client);
      record->Let("Ic_Mensalista", true);
      ticket.Salvar();
    } else if (ticket.ConsultarTicketPendentePorCartao()) {
      const int32_t stay = static_cast<int32_t>(
          std::floor((CDate(passage.moment) - CDate(record->Get("Dt_Entrada"))) * 1440.0 + 1e-6));
      const int32_t allowed = ticket.ObterMinutosPermitidoPorCadaDia();
      const int32_t used = ticket.ObterMinutosPermanenciaoOutrosTickets();
      const int32_t left = std::max(0, allowed - used);
      const int32_t over = std::max(0, stay - left);
      const Charge charge = over > 0 ? BandOf(day, over) : Charge{};
      CloseTicket(day, ticket, stay, charge);
      minutes = std::to_string(stay);
      free = std::to_string(left);
      charged = Money(charge.value);
    }
    ticket.AssociarLogMadisAoTicket(passage.company, passage.id);
    table.AddRow({std::to_string(passage.id), (passage.event == 1 ? "in  " : "out ") + Clock(passage.moment),
                  std::to_string(passage.card), Text(*record, "Cd_TicketEstacionamento"), minutes, free, charged});
  }
  day.out << "  The gates' monthly passages turned into tickets (rsEntradaMensalistaMadisNaoProcessada, "
             "RegistrarSaidaDasEntradasAnterioresDessaCartao, ConsultarTicketPendentePorCartao, "
             "AssociarLogMadisAoTicket):\n";
  table.Print(day.out);
  int32_t left_over = 0;
  for (auto rows = empresa.rsEntradaMensalistaMadisNaoProcessada(); !rows->Eof(); rows->MoveNext()) ++left_over;
  day.out << "\n  Passages still unprocessed: " << left_over << "\n";
}

void PrintYard(DayContext& day) {
  auto empresa = day.Use<cgdEmpresaUsuariaSistema>();
  empresa.Ob_cgp()->Let("Cd_EmpresaUsuariaSistema", Company(day));
  TextTable table({{"Entrada"}, {"Mensalista", Align::Right}, {"Ds_Ticket"}});
  for (auto rows = empresa.rsVeiculoNoPatio(); !rows->Eof(); rows->MoveNext()) {
    Fields& f = rows->Fields();
    table.AddRow({Clock(f.Item(1).Value()), !f.Item(2).Value().IsNull() && CBool(f.Item(2).Value()) ? "sim" : "", CStr(f.Item(0).Value())});
  }
  table.Print(day.out);
}

void Yard(DayContext& day) {
  day.out << "  The yard now, oldest entry first (cgdEmpresaUsuariaSistema.rsVeiculoNoPatio; '***' marks a "
             "ticket only the gates know;\n"
             "  an entry saved without a printed code reads 'TICKET:', the insert keeping its empty code):\n";
  PrintYard(day);
}

void Housekeeping(DayContext& day) {
  // An entry forgotten 100 days ago, here and at the gates.
  Save<cgdTicketEstacionamento>(day, {{"Cd_EmpresaUsuariaSistema", Company(day)}, {"Cd_Placa", "OLD0A00"},
                                      {"No_Situacao", 1}, {"Dt_Entrada", day.session->Now() - 100.0}});
  Gates(day, "INSERT INTO MDESTACIONAMENTO.dbo.CARTOESAVULSOS (CODIGOCARTAO, DATAHORAENTRADA) VALUES "
             "('2511220000001', '" + Format(Variant(day.session->Now() - 91.0), "yyyy-mm-dd hh:Nn:Ss") + "')");
  day.out << "  Before: an entry of 100 days ago here and a loose ticket of 91 days ago at the gates:\n";
  PrintYard(day);
  auto empresa = day.Use<cgdEmpresaUsuariaSistema>();
  empresa.Ob_cgp()->Let("Cd_EmpresaUsuariaSistema", Company(day));
  empresa.ApagarEntradasAntigasDoEstacionamento();
  day.out << "\n  After ApagarEntradasAntigasDoEstacionamento (older than 90 days go; the entry passages of cards\n"
             "  inside leave the gates' log too, so the card no longer shows):\n";
  PrintYard(day);
}

void Restroom(DayContext& day) {
  TextTable table({{"Ticket", Align::Right}, {"Dt_Entrada (server)"}, {"Qt_Unidade", Align::Right},
                   {"Vl_Tarifa", Align::Right}});
  const int32_t tariff = TariffOf(day, "Sanitário");
  auto price = day.Use<cgdTarifa>();
  price.Ob_cgp()->Let("Cd_Tarifa", tariff);
  const Currency value = CCur(price.Consultar()->Get("Vl_Tarifa"));
  for (int32_t units : {1, 2, 1, 3}) {
    day.Advance(std::uniform_int_distribution<int>(2, 9)(day.random));
    auto sale = Save<cgdTicketSanitario>(day, {{"Cd_EmpresaUsuariaSistema", Company(day)},
                                               {"Dt_Entrada", DateSerial(2000, 1, 1)},
                                               {"Cd_Tarifa", tariff},
                                               {"Vl_Tarifa", value},
                                               {"Qt_Unidade", units},
                                               {"Cd_Caixa", day.facts.till}});
    auto read = day.Use<cgdTicketSanitario>();
    read.Ob_cgp()->Let("Cd_EmpresaUsuariaSistema", Company(day));
    read.Ob_cgp()->Let("Cd_TicketSanitario", sale->Get("Cd_TicketSanitario"));
    auto kept = read.Consultar();
    table.AddRow({Text(*kept, "Cd_TicketSanitario"), Clock(kept->Get("Dt_Entrada")), Text(*kept, "Qt_Unidade"),
                  Money(CCur(kept->Get("Vl_Tarifa")))});
  }
  day.out << "  Turnstile sales (cgdTicketSanitario.Salvar; the sale time is the server's clock):\n";
  table.Print(day.out);
}

}  // namespace

std::vector<DayStep> ParkingDay() {
  return {
      {"Parking price bands", Bands},
      {"Vehicles entering the car park", Entries},
      {"Exits by plate and by printed ticket", Exits},
      {"Monthly clients, agreements and cards", MonthlyClients},
      {"Card passages at the gates", CardPassages},
      {"The yard", Yard},
      {"Old entries", Housekeeping},
      {"Restroom turnstile", Restroom},
  };
}

}  // namespace vek::cli::demo
