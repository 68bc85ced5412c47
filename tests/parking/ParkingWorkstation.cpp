// One workstation of the terminal, run as a program of its own by the tests
// of several programs on one database:
//   entry   the entry gate records COUNT vehicles (plates W0000, W0001, ...);
//   exit    the exit cashier waits for each of them in turn and closes it as
//           the cashier screen does: its charge line first (tariff 21,
//           index + 1 units), then the ticket, with the plate's index as
//           its minutes;
//   work    the terminal's day until it is killed (COUNT seeds its choices
//           and names its plates): sequence draws, entries and exits at the
//           gates, trips with their boardings, restroom sales at till 7;
//   draw    COUNT numbers of the sequence "Cd_Carga", and after every tenth
//           a vehicle entered and closed (plates Dnn...; nn is ID).
// work and draw print one line per write as soon as it is acknowledged:
// "seq N", "entry N", "exit N", "trip N BOARDINGS", "sale N", "ticket N".
//
//   vek_parking_workstation entry|exit|work|draw COUNT Cd_DB Nm_ServidorDB Ds_CaminhoDB [ID]
//
// Exits 0 when done, 1 with the error on stderr otherwise.
#include <chrono>
#include <cstdio>
#include <iostream>
#include <memory>
#include <string>
#include <random>
#include <thread>
#include <unistd.h>
#include <vector>

#include "vek/vek.h"

namespace {

using namespace vek;

std::string Plate(int32_t index) {
  char plate[16];
  std::snprintf(plate, sizeof plate, "W%04d", static_cast<int>(index));
  return plate;
}

// Prints a write that the database acknowledged, in one call, so that a
// kill never leaves half a line.
void Acknowledge(const std::string& line) {
  const std::string text = line + "\n";
  if (::write(1, text.data(), text.size()) != static_cast<ssize_t>(text.size())) std::abort();
}

int32_t EnterVehicle(const std::shared_ptr<cgpSistema>& session, const std::string& plate) {
  cgdTicketEstacionamento ticket;
  ticket.Ob_cgpSistema(session);
  auto record = ticket.Ob_cgp();
  record->Let("Cd_EmpresaUsuariaSistema", Variant(1));
  record->Let("Cd_Placa", Variant(plate));
  record->Let("No_Situacao", Variant(1));
  record->Let("Dt_Entrada", Variant(session->Now()));
  ticket.Salvar();
  return CLng(record->Get("Cd_TicketEstacionamento"));
}

// Closes a ticket as the cashier does: the charge line, then the ticket.
void CloseTicket(const std::shared_ptr<cgpSistema>& session, int32_t number, int32_t units) {
  cgdTicketEstacionamento ticket;
  ticket.Ob_cgpSistema(session);
  auto record = ticket.Ob_cgp();
  record->Let("Cd_EmpresaUsuariaSistema", Variant(1));
  record->Let("Cd_TicketEstacionamento", Variant(number));
  ticket.Consultar(false);
  ticket.ExcluirTarifas();
  cgdTicketEstacionamento_Tarifa line;
  line.Ob_cgpSistema(session);
  auto charge = line.Ob_cgp();
  charge->Let("Cd_EmpresaUsuariaSistema", Variant(1));
  charge->Let("Cd_TicketEstacionamento", Variant(number));
  charge->Let("Cd_Tarifa", Variant(21));
  charge->Let("Qt_Unidade", Variant(units));
  charge->Let("Vl_Tarifa", Variant(Currency(2.0)));
  line.Incluir();
  record->Let("No_Situacao", Variant(2));
  record->Let("Dt_Saida", Variant(session->Now()));
  record->Let("Qt_TempoPermanenciaMinutos", Variant(units));
  record->Let("Vl_Tarifa", Variant(Currency(2.0 * units)));
  record->Let("Cd_Caixa", Variant(7));
  ticket.Alterar();
}

[[noreturn]] void Work(const std::shared_ptr<cgpSistema>& session, int32_t run) {
  std::mt19937 random(static_cast<uint32_t>(run));
  std::vector<int32_t> inside;
  for (int32_t i = 0;; ++i) {
    switch (random() % 5) {
      case 0:
        Acknowledge("seq " + std::to_string(NextSequenceValue(*session, "Cd_Carga")));
        break;
      case 1: {
        char plate[16];
        std::snprintf(plate, sizeof plate, "K%03d%05d", static_cast<int>(run % 1000), static_cast<int>(i % 100000));
        inside.push_back(EnterVehicle(session, plate));
        Acknowledge("entry " + std::to_string(inside.back()));
        break;
      }
      case 2:
        if (inside.empty()) break;
        CloseTicket(session, inside.front(), 1 + i % 9);
        Acknowledge("exit " + std::to_string(inside.front()));
        inside.erase(inside.begin());
        break;
      case 3: {
        cgdViagemOnibus trip;
        trip.Ob_cgpSistema(session);
        auto record = trip.Ob_cgp();
        record->Let("Cd_EmpresaUsuariaSistema", Variant(1));
        record->Let("Hr_Previsto", Variant(session->Now() + i / 1440.0));
        record->Let("No_Plataforma", Variant(1 + i % 12));
        record->Let("No_Andamento", Variant(1));
        const int32_t boardings = 1 + i % 45;
        record->Let("Qt_EmbarquesComPassagem", Variant(boardings));
        trip.Salvar();
        Acknowledge("trip " + std::to_string(CLng(record->Get("Cd_ViagemOnibus"))) + " " +
                    std::to_string(boardings));
        break;
      }
      default: {
        cgdTicketSanitario sale;
        sale.Ob_cgpSistema(session);
        auto record = sale.Ob_cgp();
        record->Let("Cd_EmpresaUsuariaSistema", Variant(1));
        record->Let("Cd_Tarifa", Variant(21));
        record->Let("Vl_Tarifa", Variant(Currency(1.5)));
        record->Let("Qt_Unidade", Variant(1));
        record->Let("Cd_Caixa", Variant(7));
        sale.Incluir();
        Acknowledge("sale " + std::to_string(CLng(record->Get("Cd_TicketSanitario"))));
        break;
      }
    }
  }
}

void Draw(const std::shared_ptr<cgpSistema>& session, int32_t count, int32_t id) {
  for (int32_t i = 0; i < count; ++i) {
    Acknowledge("seq " + std::to_string(NextSequenceValue(*session, "Cd_Carga")));
    if (i % 10 != 9) continue;
    char plate[16];
    std::snprintf(plate, sizeof plate, "D%02d%05d", static_cast<int>(id % 100), static_cast<int>(i));
    const int32_t number = EnterVehicle(session, plate);
    CloseTicket(session, number, 1 + i % 9);
    Acknowledge("ticket " + std::to_string(number));
  }
}

void Enter(const std::shared_ptr<cgpSistema>& session, int32_t count) {
  for (int32_t i = 0; i < count; ++i) EnterVehicle(session, Plate(i));
}

void Leave(const std::shared_ptr<cgpSistema>& session, int32_t count) {
  const auto give_up = std::chrono::steady_clock::now() + std::chrono::minutes(2);
  for (int32_t i = 0; i < count; ++i) {
    cgdTicketEstacionamento ticket;
    ticket.Ob_cgpSistema(session);
    auto record = ticket.Ob_cgp();
    record->Let("Cd_EmpresaUsuariaSistema", Variant(1));
    record->Let("Cd_Placa", Variant(Plate(i)));
    // The vehicle may not have reached the gate yet.
    while (!ticket.ExisteEntradaPendente()) {
      if (std::chrono::steady_clock::now() > give_up) throw std::runtime_error("no entry for " + Plate(i));
      std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    ticket.ConsultarTicketPendentePorPlaca(false);
    ticket.ExcluirTarifas();
    cgdTicketEstacionamento_Tarifa line;
    line.Ob_cgpSistema(session);
    auto charge = line.Ob_cgp();
    charge->Let("Cd_EmpresaUsuariaSistema", Variant(1));
    charge->Let("Cd_TicketEstacionamento", record->Get("Cd_TicketEstacionamento"));
    charge->Let("Cd_Tarifa", Variant(21));
    charge->Let("Qt_Unidade", Variant(i + 1));
    charge->Let("Vl_Tarifa", Variant(Currency(2.0)));
    line.Incluir();
    record->Let("No_Situacao", Variant(2));
    record->Let("Dt_Saida", Variant(session->Now()));
    record->Let("Qt_TempoPermanenciaMinutos", Variant(i));
    record->Let("Vl_Tarifa", Variant(Currency(2.0 * (i + 1))));
    record->Let("Cd_Caixa", Variant(7));
    ticket.Alterar();
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 6 && argc != 7) {
    std::cerr << "usage: vek_parking_workstation entry|exit|work|draw COUNT Cd_DB Nm_ServidorDB Ds_CaminhoDB [ID]\n";
    return 2;
  }
  try {
    auto session = std::make_shared<cgpSistema>();
    session->Let("Ds_FormatoData", Variant("yyyy-mm-dd"));
    session->Let("Cd_DB", Variant(std::stoi(argv[3])));
    session->Let("Nm_ServidorDB", Variant(std::string(argv[4])));
    session->Let("Ds_CaminhoDB", Variant(std::string(argv[5])));
    session->AbrirConexao();
    const std::string role = argv[1];
    const int32_t count = std::stoi(argv[2]);
    if (role == "entry") {
      Enter(session, count);
    } else if (role == "work") {
      Work(session, count);
    } else if (role == "draw") {
      Draw(session, count, argc == 7 ? std::stoi(argv[6]) : 0);
    } else {
      Leave(session, count);
    }
    session->Ob_Conexao()->Close();
    return 0;
  } catch (const VekError& error) {
    std::cerr << argv[1] << ": " << error.Description() << " (" << error.Number() << ", " << error.Source() << ")\n";
  } catch (const std::exception& error) {
    std::cerr << argv[1] << ": " << error.what() << "\n";
  }
  return 1;
}
