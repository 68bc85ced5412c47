#include "cli/serve/Screens.h"

#include <string>

#include "cli/BusScreens.h"
#include "cli/serve/Escape.h"

namespace vek::cli::serve {
namespace {

std::string TextOf(const Variant& value) { return value.IsNull() || value.IsEmpty() ? std::string() : CStr(value); }
std::string TimeOf(const Variant& value, const char* pattern) {
  return value.IsNull() || value.IsEmpty() ? std::string() : Format(value, pattern);
}

std::vector<BoardRow> ReadRows(Recordset& rows) {
  std::vector<BoardRow> read;
  Fields& f = rows.Fields();
  for (; !rows.Eof(); rows.MoveNext()) {
    BoardRow row;
    row.trip = CLng(f.Item("Cd_ViagemOnibus").Value());
    row.origin = TextOf(f.Item("Nm_CidadeOrigem").Value());
    row.destination = TextOf(f.Item("Nm_CidadeDestino").Value());
    row.company = TextOf(f.Item("Nm_EmpresaOnibus").Value());
    row.expected = TimeOf(f.Item("Hr_Previsto").Value(), "hh:Nn");
    row.platform = TextOf(f.Item("No_Plataforma").Value());
    const Variant progress = f.Item("No_Andamento").Value();
    row.progress = progress.IsNull() ? kTripExpected : CLng(progress);
    row.state = TripStateName(row.progress);
    read.push_back(std::move(row));
  }
  rows.Close();
  return read;
}

// The words said for a trip: where it goes and where to board.
std::string AnnouncementText(const Board& board, int32_t trip) {
  for (const auto* panel : {&board.departures, &board.arrivals}) {
    for (const BoardRow& row : *panel) {
      if (row.trip != trip) continue;
      std::string text = "Atenção, senhores passageiros: ônibus da empresa " + row.company + " para " +
                         row.destination;
      if (!row.expected.empty()) text += ", saída às " + row.expected;
      if (!row.platform.empty()) text += ", embarque na plataforma " + row.platform;
      return text + ".";
    }
  }
  return "Atenção, senhores passageiros: viagem " + std::to_string(trip) + ".";
}

void AppendField(std::string& out, const char* name, const std::string& value, bool first = false) {
  if (!first) out += ',';
  out += JsonString(name);
  out += ':';
  out += JsonString(value);
}

void AppendNumber(std::string& out, const char* name, int64_t value) {
  out += ',';
  out += JsonString(name);
  out += ':';
  out += std::to_string(value);
}

void AppendRows(std::string& out, const char* name, const std::vector<BoardRow>& rows) {
  out += ',';
  out += JsonString(name);
  out += ":[";
  for (size_t i = 0; i < rows.size(); ++i) {
    const BoardRow& row = rows[i];
    if (i > 0) out += ',';
    out += "{\"viagem\":" + std::to_string(row.trip);
    AppendField(out, "origem", row.origin);
    AppendField(out, "destino", row.destination);
    AppendField(out, "empresa", row.company);
    AppendField(out, "previsto", row.expected);
    AppendField(out, "plataforma", row.platform);
    AppendNumber(out, "andamento", row.progress);
    AppendField(out, "situacao", row.state);
    out += '}';
  }
  out += ']';
}

}  // namespace

Board ReadBoard(cgdEmpresaUsuariaSistema& company, int32_t rows) {
  Board board;
  board.updated = Format(Variant(company.Ob_cgpSistema()->Now()), "dd/mm/yyyy hh:Nn:Ss");
  board.rows = rows;
  board.arrivals = ReadRows(*company.rsUltimasChegadas(rows));
  board.departures = ReadRows(*company.rsUltimasPartidas(rows));
  auto due = company.rsAgendaSom();
  Fields& f = due->Fields();
  for (; !due->Eof(); due->MoveNext()) {
    Announcement announcement;
    announcement.code = CLng(f.Item("Cd_AgendaSom").Value());
    const Variant trip = f.Item("Cd_ViagemOnibus").Value();
    announcement.trip = trip.IsNull() ? 0 : CLng(trip);
    announcement.due = TimeOf(f.Item("Dt_Agendamento").Value(), "hh:Nn");
    announcement.text = AnnouncementText(board, announcement.trip);
    board.announcements.push_back(std::move(announcement));
  }
  due->Close();
  return board;
}

Yard ReadYard(cgdEmpresaUsuariaSistema& company) {
  Yard yard;
  yard.updated = Format(Variant(company.Ob_cgpSistema()->Now()), "dd/mm/yyyy hh:Nn:Ss");
  auto rows = company.rsVeiculoNoPatio();
  // By position: the access-control part names its entry column otherwise.
  for (; !rows->Eof(); rows->MoveNext()) {
    YardVehicle vehicle;
    vehicle.ticket = TextOf(rows->Fields().Item(0).Value());
    vehicle.entry = TimeOf(rows->Fields().Item(1).Value(), "dd/mm/yyyy hh:Nn");
    // A ticket written without the flag has it Null: not a monthly stay.
    const Variant flag = rows->Fields().Item(2).Value();
    vehicle.monthly = !flag.IsNull() && CBool(flag);
    yard.vehicles.push_back(std::move(vehicle));
  }
  rows->Close();
  return yard;
}

std::string BoardJson(const Board& board) {
  std::string out = "{";
  AppendField(out, "atualizado", board.updated, true);
  AppendNumber(out, "linhas", board.rows);
  AppendRows(out, "chegadas", board.arrivals);
  AppendRows(out, "partidas", board.departures);
  out += ",\"avisos\":[";
  for (size_t i = 0; i < board.announcements.size(); ++i) {
    const Announcement& announcement = board.announcements[i];
    if (i > 0) out += ',';
    out += "{\"agenda\":" + std::to_string(announcement.code);
    AppendNumber(out, "viagem", announcement.trip);
    AppendField(out, "horario", announcement.due);
    AppendField(out, "texto", announcement.text);
    out += '}';
  }
  return out + "]}";
}

std::string YardJson(const Yard& yard) {
  std::string out = "{";
  AppendField(out, "atualizado", yard.updated, true);
  AppendNumber(out, "quantidade", static_cast<int64_t>(yard.vehicles.size()));
  out += ",\"veiculos\":[";
  for (size_t i = 0; i < yard.vehicles.size(); ++i) {
    if (i > 0) out += ',';
    out += '{';
    AppendField(out, "ticket", yard.vehicles[i].ticket, true);
    AppendField(out, "entrada", yard.vehicles[i].entry);
    out += std::string(",\"mensalista\":") + (yard.vehicles[i].monthly ? "true" : "false") + '}';
  }
  return out + "]}";
}

MarkResult MarkAnnouncementPlayed(const std::shared_ptr<cgpSistema>& session, int32_t company, int32_t code) {
  cgdAgendaSom agenda;
  agenda.Ob_cgpSistema(session);
  auto record = agenda.Ob_cgp();
  record->Let("Cd_EmpresaUsuariaSistema", Variant(company));
  record->Let("Cd_AgendaSom", Variant(code));
  agenda.Consultar();
  if (CLng(record->Get("Cd_AgendaSom")) == 0) return MarkResult::NotFound;
  const Variant done = record->Get("Ic_Feito");
  if (!done.IsNull() && CBool(done)) return MarkResult::AlreadyPlayed;
  record->Let("Ic_Feito", Variant(true));
  agenda.Alterar();
  return MarkResult::Marked;
}

}  // namespace vek::cli::serve
