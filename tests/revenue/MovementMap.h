#pragma once
// The bus terminal of the bus tests (cities, companies 10 Araguarina and
// 11 São Luiz) with a boarding and alighting map around Saturday 21/11/2026.
// Local state GO. Items (tenant, company, day, city: boardings/alightings):
//   1 10 20/11 4 São Paulo/SP  12/0
//   1 10 21/11 4 São Paulo/SP  30/5     2 10 21/11 4 São Paulo/SP 8/0
//   1 10 21/11 2 Anápolis/GO    7/3     1 10 21/11 18:00 2 Anápolis/GO 2/0
//   1 11 21/11 1 Goiânia/GO     0/9     1 11 22/11 3 Uberlândia/MG 0/4
//   1 12 21/11 1 Goiânia/GO     0/6     (company 12 has no person row)
//   1 10 31/10 7 Campinas/SP   50/50    (before the period)
// Company 11 only brings passengers in; the item at 18:00 is not at
// midnight, so only a whole-day range finds it.

#include <algorithm>
#include <string>
#include <vector>

#include "bus/BusTerminal.h"

namespace vek::testing {

struct MovementMap : BusTerminal {
  MovementMap() {
    for (const char* row : {"1, 10, '2026-11-20 00:00:00', 4, 12, 0", "1, 10, '2026-11-21 00:00:00', 4, 30, 5",
                            "2, 10, '2026-11-21 00:00:00', 4, 8, 0", "1, 10, '2026-11-21 00:00:00', 2, 7, 3",
                            "1, 10, '2026-11-21 18:00:00', 2, 2, 0", "1, 11, '2026-11-21 00:00:00', 1, 0, 9",
                            "1, 11, '2026-11-22 00:00:00', 3, 0, 4", "1, 12, '2026-11-21 00:00:00', 1, 0, 6",
                            "1, 10, '2026-10-31 00:00:00', 7, 50, 50"}) {
      Query(std::string("INSERT INTO TbItemMapaMovimentoED (Cd_EmpresaUsuariaSistema, Cd_EmpresaOnibus, "
                        "Dt_Movimento, Cd_Cidade, Qt_Embarques, Qt_Desembarques) VALUES (") +
            row + ")");
    }
  }

  // Every row of a record set as "a|b|c" over the columns given, sorted:
  // the company queries have no ORDER BY.
  static std::vector<std::string> RowsOf(Recordset& rows, const std::vector<std::string>& columns) {
    std::vector<std::string> lines;
    if (rows.RecordCount() > 0) rows.MoveFirst();
    while (!rows.Eof()) {
      std::string line;
      for (const std::string& column : columns) {
        const Variant value = rows.Fields().Item(column).Value();
        line += (line.empty() ? "" : "|") + (value.IsNull() ? std::string("NULL") : CStr(value));
      }
      lines.push_back(line);
      rows.MoveNext();
    }
    std::sort(lines.begin(), lines.end());
    return lines;
  }
};

}  // namespace vek::testing
