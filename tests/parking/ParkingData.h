#pragma once
// Rows of the car park that several tests start from, written with the
// test's own statements (outside the recorded ones).

#include <cstdint>
#include <string>

#include "support/TerminalDatabase.h"

namespace vek::testing {

inline std::string Quoted(const std::string& text) { return "'" + text + "'"; }

inline void AddTariff(TerminalDatabase& db, int32_t tariff, const std::string& name, const std::string& value,
                      int32_t company = 1, int32_t revenue_type = 2) {
  db.Query("INSERT INTO TbTarifa (Cd_Tarifa, Cd_EmpresaUsuariaSistema, Ds_Tarifa, Vl_Tarifa, Cd_TipoReceita) VALUES (" +
           std::to_string(tariff) + ", " + std::to_string(company) + ", " + Quoted(name) + ", " + value + ", " +
           std::to_string(revenue_type) + ")");
}

inline void AddBand(TerminalDatabase& db, int32_t band, int32_t first, int32_t last, int32_t tariff,
                    int32_t company = 1) {
  db.Query("INSERT INTO TbPrecoEstacionamento (Cd_EmpresaUsuariaSistema, Cd_PrecoEstacionamento, Qt_TempoInicial, "
           "Qt_TempoFinal, Cd_Tarifa) VALUES (" +
           std::to_string(company) + ", " + std::to_string(band) + ", " + std::to_string(first) + ", " +
           std::to_string(last) + ", " + std::to_string(tariff) + ")");
}

// A ticket row; `exit` is SQL (NULL or a quoted moment), `code` too.
inline void AddTicket(TerminalDatabase& db, int32_t ticket, const std::string& plate, int32_t state,
                      const std::string& entry, const std::string& exit = "NULL", const std::string& code = "NULL",
                      int32_t company = 1, int32_t card = 0, int32_t client = 0, int32_t monthly = 0,
                      int32_t agreement = 0) {
  db.Query("INSERT INTO TbTicketEstacionamento (Cd_EmpresaUsuariaSistema, Cd_TicketEstacionamento, Cd_Placa, "
           "No_Situacao, Dt_Entrada, Dt_Saida, Ds_Ticket, Cd_CartaoEstacionamento, Cd_ClienteEstacionamento, "
           "Ic_Mensalista, Cd_ClienteConvenio, Ic_TicketRevalidado) VALUES (" +
           std::to_string(company) + ", " + std::to_string(ticket) + ", " + (plate.empty() ? "NULL" : Quoted(plate)) +
           ", " + std::to_string(state) + ", " + Quoted(entry) + ", " + exit + ", " + code + ", " +
           std::to_string(card) + ", " + std::to_string(client) + ", " + std::to_string(monthly) + ", " +
           std::to_string(agreement) + ", 0)");
}

inline int32_t CountOf(TerminalDatabase& db, const std::string& from_where) {
  return CLng(db.Query("SELECT Count(*) FROM " + from_where)->Fields().Item(0).Value());
}

}  // namespace vek::testing
