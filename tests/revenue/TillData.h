#pragma once
// A day's takings of till 7 of company 1, written with the test's own
// statements: parking exits with their charge lines, restroom sales and
// cash assessments, next to rows that must never count for it (another
// till, another company under the same till number, a pending ticket).

#include <cstdint>
#include <string>
#include <vector>

#include "parking/ParkingData.h"

namespace vek::testing {

inline void AddChargeLine(TerminalDatabase& db, int32_t company, int32_t ticket, int32_t tariff, int32_t units,
                          const std::string& value) {
  db.Query("INSERT INTO TbTicketEstacionamento_TbTarifa (Cd_EmpresaUsuariaSistema, Cd_TicketEstacionamento, "
           "Cd_Tarifa, Qt_Unidade, Vl_Tarifa) VALUES (" +
           std::to_string(company) + ", " + std::to_string(ticket) + ", " + std::to_string(tariff) + ", " +
           std::to_string(units) + ", " + value + ")");
}

inline void SetTill(TerminalDatabase& db, int32_t company, int32_t ticket, int32_t till) {
  db.Query("UPDATE TbTicketEstacionamento SET Cd_Caixa = " + std::to_string(till) +
           " WHERE Cd_EmpresaUsuariaSistema = " + std::to_string(company) +
           " AND Cd_TicketEstacionamento = " + std::to_string(ticket));
}

inline void AddRestroomSale(TerminalDatabase& db, int32_t company, int32_t sale, int32_t tariff, int32_t units,
                            const std::string& value, int32_t till) {
  db.Query("INSERT INTO TbTicketSanitario (Cd_EmpresaUsuariaSistema, Cd_TicketSanitario, Dt_Entrada, Cd_Tarifa, "
           "Vl_Tarifa, Qt_Unidade, Cd_Caixa) VALUES (" +
           std::to_string(company) + ", " + std::to_string(sale) + ", '2026-11-21 09:00:00', " +
           std::to_string(tariff) + ", " + value + ", " + std::to_string(units) + ", " + std::to_string(till) + ")");
}

// An assessment paid into a till: a monthly client's payment (totalling 0)
// or the till's own totalling (1). `start` is SQL (NULL or a quoted date).
inline void AddCashAssessment(TerminalDatabase& db, int32_t company, int32_t number, int32_t payer, int32_t till,
                              int32_t totalling, const std::string& amount, const std::string& start) {
  db.Query("INSERT INTO TbApuracaoReceita (Cd_EmpresaUsuariaSistema, No_ApuracaoReceita, Cd_TipoReceita, Cd_Pessoa, "
           "Dt_Movimento, Vl_ApuracaoReceita, No_Parcela, Cd_Caixa, Dt_Inicial, Dt_Final, Ic_TotalizacaoDeCaixa) "
           "VALUES (" +
           std::to_string(company) + ", " + std::to_string(number) + ", 2, " + std::to_string(payer) +
           ", '2026-11-21', " + amount + ", 1, " + std::to_string(till) + ", " + start + ", NULL, " +
           std::to_string(totalling) + ")");
}

// Till 7 of company 1:
//   parking: ticket 1 (plate of a known VW Gol, prata) 2 x 4.35 of tariff 10
//            and 1 x 0.145 of tariff 11; ticket 2 (no plate) 1 x 4.35 of 10
//            and 1 x 0.145 of 11; ticket 3, 1 x 0.145 of 11: tariff 11 is
//            three lines of 0.145, 0.15 each once rounded (0.45), 0.44 if
//            the sum were rounded instead (and 0.14 each on a double);
//   restroom: sales of 1 and 3 units of tariff 40 at 1.50;
//   a monthly client's payment of 150.00 from 01/11/2026 (payer 100) and
//   the till's totalling of 169.50 (payer 101).
// Never counted: ticket 4 of till 8, ticket 9 of company 2 under till 7
// (with a line of its own tariff 20), pending ticket 5, a restroom sale of
// till 8 and one of company 2 under till 7, company 2's payment under till 7.
inline void FillTill(TerminalDatabase& db) {
  AddTariff(db, 10, "ESTACIONAMENTO 1 HORA", "4.35");
  AddTariff(db, 11, "ESTACIONAMENTO FRACAO", "0.145");
  AddTariff(db, 20, "OUTRA EMPRESA", "9.00", 2);
  AddTariff(db, 40, "SANITARIO", "1.50", 1, 3);
  AddTariff(db, 41, "SANITARIO OUTRA", "2.00", 2, 3);
  db.Query("INSERT INTO TbCor (Cd_Cor, Nm_Cor) VALUES (3, 'PRATA')");
  db.Query("INSERT INTO TbMarcaModelo (Cd_MarcaModelo, Ds_MarcaModelo) VALUES (6, 'VW Gol')");
  db.Query("INSERT INTO TbVeiculo (Cd_Placa, Cd_Cor, Cd_MarcaModelo) VALUES ('ABC1D23', 3, 6)");
  db.Query("INSERT INTO TbPessoa (Cd_Pessoa, Nm_Pessoa) VALUES (100, 'MARIA DA CONCEIÇÃO'), (101, 'TERMINAL RODOVIARIO'), "
           "(102, 'OUTRO CLIENTE')");

  AddTicket(db, 1, "ABC1D23", 2, "2026-11-21 08:00:00", "'2026-11-21 10:10:00'");
  AddTicket(db, 2, "", 2, "2026-11-21 07:00:00", "'2026-11-21 09:05:00'", "'12345678901234'");
  AddTicket(db, 3, "XYZ9K88", 2, "2026-11-21 06:00:00", "'2026-11-21 06:20:00'");
  AddTicket(db, 4, "OTHER44", 2, "2026-11-21 06:00:00", "'2026-11-21 07:00:00'");
  AddTicket(db, 5, "PEND555", 1, "2026-11-21 09:30:00");
  AddTicket(db, 9, "ABC1D23", 2, "2026-11-21 06:00:00", "'2026-11-21 08:00:00'", "NULL", 2);
  for (int32_t ticket : {1, 2, 3}) SetTill(db, 1, ticket, 7);
  SetTill(db, 1, 4, 8);
  SetTill(db, 2, 9, 7);
  AddChargeLine(db, 1, 1, 10, 2, "4.35");
  AddChargeLine(db, 1, 1, 11, 1, "0.145");
  AddChargeLine(db, 1, 2, 10, 1, "4.35");
  AddChargeLine(db, 1, 2, 11, 1, "0.145");
  AddChargeLine(db, 1, 3, 11, 1, "0.145");
  AddChargeLine(db, 1, 4, 10, 5, "4.35");
  AddChargeLine(db, 2, 9, 20, 1, "9.00");

  AddRestroomSale(db, 1, 1, 40, 1, "1.50", 7);
  AddRestroomSale(db, 1, 2, 40, 3, "1.50", 7);
  AddRestroomSale(db, 1, 3, 40, 2, "1.50", 8);
  AddRestroomSale(db, 2, 1, 41, 1, "2.00", 7);

  AddCashAssessment(db, 1, 1, 100, 7, 0, "150.00", "'2026-11-01'");
  AddCashAssessment(db, 1, 2, 101, 7, 1, "169.50", "'2026-11-21'");
  AddCashAssessment(db, 2, 1, 102, 7, 0, "80.00", "'2026-11-01'");
}

// Every row of a record set, its fields as text joined by "|" (Null as
// "NULL", money and numbers as Str gives them).
inline std::vector<std::string> RowsOf(Recordset& rows, const std::vector<std::string>& fields) {
  std::vector<std::string> lines;
  for (; !rows.Eof(); rows.MoveNext()) {
    std::string line;
    for (const std::string& field : fields) {
      const Variant value = rows.Fields().Item(field).Value();
      if (!line.empty()) line += "|";
      line += value.IsNull() ? "NULL" : CStr(value);
    }
    lines.push_back(line);
  }
  return lines;
}

}  // namespace vek::testing
