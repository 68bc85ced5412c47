// One workstation of the car park, run as a program of its own by the
// two-workstation test: the entry gate records `count` vehicles (plates
// W0000, W0001, ...), the exit cashier waits for each of them in turn and
// closes it as the cashier screen does: its charge line first (tariff 21,
// index + 1 units), then the ticket, with the plate's index as its minutes.
//
//   vek_parking_workstation entry|exit COUNT Cd_DB Nm_ServidorDB Ds_CaminhoDB
//
// Exits 0 when done, 1 with the error on stderr otherwise.
#include <chrono>
#include <cstdio>
#include <iostream>
#include <memory>
#include <string>
#include <thread>

#include "vek/vek.h"

namespace {

using namespace vek;

std::string Plate(int32_t index) {
  char plate[16];
  std::snprintf(plate, sizeof plate, "W%04d", static_cast<int>(index));
  return plate;
}

void Enter(const std::shared_ptr<cgpSistema>& session, int32_t count) {
  for (int32_t i = 0; i < count; ++i) {
    cgdTicketEstacionamento ticket;
    ticket.Ob_cgpSistema(session);
    auto record = ticket.Ob_cgp();
    record->Let("Cd_EmpresaUsuariaSistema", Variant(1));
    record->Let("Cd_Placa", Variant(Plate(i)));
    record->Let("No_Situacao", Variant(1));
    record->Let("Dt_Entrada", Variant(session->Now()));
    ticket.Salvar();
  }
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
  if (argc != 6) {
    std::cerr << "usage: vek_parking_workstation entry|exit COUNT Cd_DB Nm_ServidorDB Ds_CaminhoDB\n";
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
