#pragma once
// A terminal database with the payers and tariffs the assessment tests use.
// The session writes dates "yyyy-mm-dd".
//
// Payers (people): 10 Viação Araguarina Ltda, 11 Expresso São Luiz Ltda,
// 12 Rápido d'Oeste Ltda, 20 Mariana Aparecida Santos (a monthly client).
// Tariffs of company 1: boarding 1 to 6 ("Embarque 1".."Embarque 6", R$ 1,00
// to R$ 6,00), boarding 7 "Embarque especial" (beyond the six report
// slots), 8 "Mensalidade" (parking).

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "support/TerminalDatabase.h"

namespace vek::testing {

struct AssessmentData : TerminalDatabase {
  AssessmentData() {
    for (const char* row : {"10, 'Viação Araguarina Ltda'", "11, 'Expresso São Luiz Ltda'",
                            "12, 'Rápido d''Oeste Ltda'", "20, 'Mariana Aparecida Santos'"}) {
      Query(std::string("INSERT INTO TbPessoa (Cd_Pessoa, Nm_Pessoa) VALUES (") + row + ")");
    }
    for (int tariff = 1; tariff <= 6; ++tariff) {
      Tariff(tariff, "Embarque " + std::to_string(tariff), std::to_string(tariff), 1);
    }
    Tariff(7, "Embarque especial", "9.5", 1);
    Tariff(8, "Mensalidade", "180", 2);
  }

  void Tariff(int32_t code, const std::string& description, const std::string& value, int32_t type) {
    Query("INSERT INTO TbTarifa (Cd_Tarifa, Cd_EmpresaUsuariaSistema, Ds_Tarifa, Vl_Tarifa, Cd_TipoReceita) VALUES (" +
          std::to_string(code) + ", 1, '" + description + "', " + value + ", " + std::to_string(type) + ")");
  }

  // An assessment written as another program would: its header of the day
  // ("yyyy-mm-dd") and one line per (tariff, quantity), each line priced at
  // its tariff's value; the header's amount is the lines' sum.
  void Assess(int32_t tenant, int32_t number, int32_t payer, const std::string& day,
              const std::vector<std::pair<int32_t, int32_t>>& lines, int32_t type = 1,
              const std::string& billing = "2026-11-21", const std::string& due = "2026-11-28") {
    Query("INSERT INTO TbApuracaoReceita (Cd_EmpresaUsuariaSistema, No_ApuracaoReceita, Cd_TipoReceita, Cd_Pessoa, "
          "Dt_Faturamento, Dt_Movimento, Dt_Vencimento, No_Parcela, Vl_ApuracaoReceita) VALUES (" +
          std::to_string(tenant) + ", " + std::to_string(number) + ", " + std::to_string(type) + ", " +
          std::to_string(payer) + ", '" + billing + "', '" + day + "', '" + due + "', 1, 0)");
    for (const auto& [tariff, quantity] : lines) {
      Query("INSERT INTO TbApuracaoReceita_TbTarifa (Cd_EmpresaUsuariaSistema, No_ApuracaoReceita, Cd_Tarifa, "
            "Qt_Tarifa, Vl_Tarifa) SELECT " +
            std::to_string(tenant) + ", " + std::to_string(number) + ", Cd_Tarifa, " + std::to_string(quantity) +
            ", Vl_Tarifa FROM TbTarifa WHERE Cd_Tarifa = " + std::to_string(tariff));
    }
    Query("UPDATE TbApuracaoReceita SET Vl_ApuracaoReceita = (SELECT Sum(Qt_Tarifa * Vl_Tarifa) "
          "FROM TbApuracaoReceita_TbTarifa B WHERE B.Cd_EmpresaUsuariaSistema = " +
          std::to_string(tenant) + " AND B.No_ApuracaoReceita = " + std::to_string(number) +
          ") WHERE Cd_EmpresaUsuariaSistema = " + std::to_string(tenant) +
          " AND No_ApuracaoReceita = " + std::to_string(number) + " AND " + std::to_string(lines.size()) + " > 0");
  }

  // Every row of `text`, each as its columns' texts joined by "|" ("NULL"
  // for Null).
  std::vector<std::string> Rows(const std::string& text) {
    auto rows = Query(text);
    std::vector<std::string> result;
    while (!rows->Eof()) {
      std::string line;
      for (int32_t i = 0; i < rows->Fields().Count(); ++i) {
        const Variant value = rows->Fields().Item(i).Value();
        line += (i ? "|" : "") + (value.IsNull() ? std::string("NULL") : CStr(value));
      }
      result.push_back(line);
      rows->MoveNext();
    }
    return result;
  }
};

}  // namespace vek::testing
