#pragma once
// A terminal database with the bus side filled in, for the bus tests. The
// session's clock stands at Saturday 21/11/2026 10:30.
//
// States GO (1), SP (2), MG (3). Cities, with their distance from here:
//   1 Goiânia/GO 0, 2 Anápolis/GO 55, 3 Uberlândia/MG 330,
//   4 São Paulo/SP 900, 5 Santa Bárbara d'Oeste/SP 860,
//   6 Olhos-d'Água/MG 600, 7 Campinas/SP 800.
// Bus companies 10 Araguarina and 11 São Luiz (each a person of that code);
// bus types 1 Convencional, 2 Leito.
// Lines 1 Goiânia -> São Paulo, 2 Goiânia -> Santa Bárbara d'Oeste,
// 3 Anápolis -> Goiânia, 4 Olhos-d'Água -> Goiânia.
// Timetables of operating company 1 (line, code):
//   (1,1) Araguarina, departs 08:00, boards here, platform 3, every day;
//   (1,2) São Luiz, departs 22:00, boards here, platform 5, Monday to
//         Friday, valid until yesterday;
//   (2,3) Araguarina, departs 09:00, boards here, platform 4, weekends,
//         valid 01/11/2026 to 31/12/2026, stops Uberlândia and Campinas;
//   (3,4) São Luiz, arrives 11:00, passengers alight here, platform 7,
//         every day;
//   (4,6) Araguarina, passing: arrives 12:00 and boards, platform 2,
//         every day.
// Operating company 2 has timetable (1,5) of its own, every day.
// Times of day lie on 01/01/2026: a time alone would be stored as Null.

#include <string>

#include "support/TerminalDatabase.h"

namespace vek::testing {

struct BusTerminal : TerminalDatabase {
  BusTerminal() {
    for (const char* row : {"1, 'Goiás', 'GO'", "2, 'São Paulo', 'SP'", "3, 'Minas Gerais', 'MG'"}) {
      Query(std::string("INSERT INTO TbUF (Cd_UF, Nm_UF, Sg_UF) VALUES (") + row + ")");
    }
    for (const char* row : {"1, 'Goiânia', 1, 'GO', 0", "2, 'Anápolis', 1, 'GO', 55",
                            "3, 'Uberlândia', 3, 'MG', 330", "4, 'São Paulo', 2, 'SP', 900",
                            "5, 'Santa Bárbara d''Oeste', 2, 'SP', 860", "6, 'Olhos-d''Água', 3, 'MG', 600",
                            "7, 'Campinas', 2, 'SP', 800"}) {
      Query(std::string("INSERT INTO TbCidade (Cd_Cidade, Nm_Cidade, Cd_UF, Sg_UF, Qt_DistanciaEmKm) VALUES (") +
            row + ")");
    }
    Query("INSERT INTO TbPessoa (Cd_Pessoa, Nm_Pessoa) VALUES (10, 'Viação Araguarina Ltda')");
    Query("INSERT INTO TbPessoa (Cd_Pessoa, Nm_Pessoa) VALUES (11, 'Expresso São Luiz Ltda')");
    Query("INSERT INTO TbEmpresaOnibus (Cd_EmpresaOnibus, Cd_Pessoa, Nm_EmpresaOnibus) VALUES (10, 10, 'Araguarina')");
    Query("INSERT INTO TbEmpresaOnibus (Cd_EmpresaOnibus, Cd_Pessoa, Nm_EmpresaOnibus) VALUES (11, 11, 'São Luiz')");
    Query("INSERT INTO TbTipoOnibus (Cd_TipoOnibus, Ds_TipoOnibus) VALUES (1, 'Convencional')");
    Query("INSERT INTO TbTipoOnibus (Cd_TipoOnibus, Ds_TipoOnibus) VALUES (2, 'Leito')");
    for (const char* row : {"1, 1, 4", "2, 1, 5", "3, 2, 1", "4, 6, 1"}) {
      Query(std::string("INSERT INTO TbLinha (Cd_Linha, Cd_CidadeOrigem, Cd_CidadeDestino) VALUES (") + row + ")");
    }
    //         tenant line code company type  departs  arrives boards alights platform Su Mo Tu We Th Fr Sa from to
    Timetable("1, 1, 1, 10, 1, '2026-01-01 08:00:00', '2026-01-01 20:00:00', 1, 0, 3, 1, 1, 1, 1, 1, 1, 1, NULL, NULL");
    Timetable("1, 1, 2, 11, 2, '2026-01-01 22:00:00', '2026-01-01 10:00:00', 1, 0, 5, 0, 1, 1, 1, 1, 1, 0, NULL, "
              "'2026-11-20 00:00:00'");
    Timetable("1, 2, 3, 10, 1, '2026-01-01 09:00:00', '2026-01-01 23:00:00', 1, 0, 4, 1, 0, 0, 0, 0, 0, 1, "
              "'2026-11-01 00:00:00', '2026-12-31 00:00:00'");
    Timetable("1, 3, 4, 11, 1, '2026-01-01 10:00:00', '2026-01-01 11:00:00', 0, 1, 7, 1, 1, 1, 1, 1, 1, 1, NULL, NULL");
    Timetable("1, 4, 6, 10, 2, '2026-01-01 06:00:00', '2026-01-01 12:00:00', 1, 1, 2, 1, 1, 1, 1, 1, 1, 1, NULL, NULL");
    Timetable("2, 1, 5, 11, 1, '2026-01-01 07:00:00', '2026-01-01 19:00:00', 1, 0, 1, 1, 1, 1, 1, 1, 1, 1, NULL, NULL");
    for (const char* row : {"1, 2, 3, 3", "1, 2, 3, 7"}) {
      Query(std::string("INSERT INTO TbEscalasHorarioLinha (Cd_EmpresaUsuariaSistema, Cd_Linha, Cd_HorarioLinha, "
                        "Cd_Cidade) VALUES (") +
            row + ")");
    }
    // The numbering table goes on after the codes written here.
    Query("INSERT INTO TbSequenciadores (Nm_Atributo, No_Sequencial) VALUES ('Cd_HorarioLinha', 6)");
  }

  void Timetable(const std::string& values) {
    Query("INSERT INTO TbHorariosLinha (Cd_EmpresaUsuariaSistema, Cd_Linha, Cd_HorarioLinha, Cd_EmpresaOnibus, "
          "Cd_TipoOnibus, Hr_Saida, Hr_Chegada, Ic_TemEmbarques, Ic_TemDesembarque, No_Plataforma, "
          "Ic_ViagemNoDomingo, Ic_ViagemNaSegunda, Ic_ViagemNaTerca, Ic_ViagemNaQuarta, Ic_ViagemNaQuinta, "
          "Ic_ViagemNaSexta, Ic_ViagemNoSabado, Dt_Inicial, Dt_Final) VALUES (" +
          values + ")");
  }

  // A trip of operating company 1.
  void Trip(int32_t code, int32_t line, int32_t timetable, const std::string& expected, int32_t platform = 0,
            int32_t state = 0, int32_t tenant = 1) {
    Query("INSERT INTO TbViagemOnibus (Cd_EmpresaUsuariaSistema, Cd_ViagemOnibus, Cd_Linha, Cd_HorarioLinha, "
          "Hr_Previsto, No_Plataforma, No_Andamento, Qt_EmbarquesComPassagem, Qt_EmbarquesSemPassagem) VALUES (" +
          std::to_string(tenant) + ", " + std::to_string(code) + ", " + std::to_string(line) + ", " +
          std::to_string(timetable) + ", '" + expected + "', " + std::to_string(platform) + ", " +
          std::to_string(state) + ", 0, 0)");
  }

  // Column `column` of every row of `text`, as text, in order.
  std::vector<std::string> Column(const std::string& text, const std::string& column) {
    auto rows = Query(text);
    return ColumnOf(*rows, column);
  }
  static std::vector<std::string> ColumnOf(Recordset& rows, const std::string& column) {
    std::vector<std::string> values;
    if (rows.RecordCount() > 0) rows.MoveFirst();
    while (!rows.Eof()) {
      const Variant value = rows.Fields().Item(column).Value();
      values.push_back(value.IsNull() ? "NULL" : CStr(value));
      rows.MoveNext();
    }
    return values;
  }
};

}  // namespace vek::testing
