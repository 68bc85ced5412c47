#pragma once
// The boarding and alighting map (TbItemMapaMovimentoED) as the reports read
// it: the items of a day, the companies and cities that moved passengers in a
// period within a reach, one company's boardings or alightings to one city
// on one day, and the monthly maps written into the report file bdTemp.
//
// Reach (No_Abrangencia) adds a condition on the destination's state:
// AbrangenciaIntermunicipal "     AND C.Sg_UF = '<Sg_UFLocal>'",
// AbrangenciaInterestadual "     AND C.Sg_UF <> '<Sg_UFLocal>'", any other
// value none. Sg_UFLocal is put between quotes: one holding an apostrophe
// is refused (0x80040458) before any SQL is sent.
//
// Dates are written in the session's date format; a day's bounds are
// "<day> 00:00:00" and "<day> 23:59:59", as the other day-range queries of
// the revenue write them. None of these queries filters by operating company.
//
// The monthly maps go into the report file: bdTemp in the session's
// application folder (Ds_CaminhoAplicacao, else AppPath()), copied from
// Modelos under the application folder when it is missing, opened with the
// Jet connection string. Its work table is emptied ("DELETE " /
// "FROM cgrMapaControleEmbarque1;") and gets one row per company and city of
// the period and reach: the names, the codes, "Qt_Dia" + the two-digit day
// for each day of the period (the other days' fields stay Null) and
// Qt_Total. The progress window shows "Gerando item mapa movimento
// Embarque" (Desembarque) and advances per row. A failure stops the feed;
// the rows written so far stay.

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "vek/foundation/Enums.h"
#include "vek/foundation/ListLoader.h"
#include "vek/platform/Date.h"

namespace vek {

class Recordset;

class cgdItensMapaMovimentoED : public ListCollection {
 public:
  // Every item of the day, of every company and operating company.
  std::shared_ptr<Recordset> ConsultarItensMapaPorEmpresa(Date Dt_Movimento);
  // Company (Cd_EmpresaOnibus, Nm_EmpresaOnibus of TbEmpresaOnibus) and city
  // (Cd_Cidade, Nm_Cidade, Sg_UF) pairs with boardings in the period.
  std::shared_ptr<Recordset> ConsultarEmpresasComEmbarque(Date Dt_Inicial, Date Dt_Final,
                                                          AbrangenciaEnum No_Abrangencia,
                                                          const std::string& Sg_UFLocal);
  // The same pairs with alightings, the company named by its person
  // (Nm_Pessoa of TbPessoa); the joins are outer, so a company or city
  // without its row comes with a Null name.
  std::shared_ptr<Recordset> ConsultarEmpresasComDesembarque(Date Dt_Inicial, Date Dt_Final,
                                                             AbrangenciaEnum No_Abrangencia,
                                                             const std::string& Sg_UFLocal);
  // The companies alone (Cd_EmpresaOnibus, Nm_Pessoa) with alightings.
  std::shared_ptr<Recordset> ConsultarEmpresasComDesembarque2(Date Dt_Inicial, Date Dt_Final,
                                                              AbrangenciaEnum No_Abrangencia,
                                                              const std::string& Sg_UFLocal);
  // The company's boardings (alightings) to the city on the day, of every
  // operating company; 0 when it has none.
  int32_t ConsultarEmbarques(int32_t Cd_EmpresaOnibus, int32_t Cd_Cidade, Date Dt_Movimento);
  int32_t ConsultarDesembarques(int32_t Cd_EmpresaOnibus, int32_t Cd_Cidade, Date Dt_Movimento);
  // cgrMapaControleEmbarque1 from ConsultarEmpresasComEmbarque and
  // ConsultarEmbarques, the company named as in TbEmpresaOnibus.
  void GerarArqTempMapaEmbarqueMensal(Date Dt_Inicial, Date Dt_Final, AbrangenciaEnum No_Abrangencia,
                                      const std::string& Sg_UFLocal);
  // cgrMapaControleDesembarque1 from ConsultarEmpresasComDesembarque and
  // ConsultarDesembarques, the company named by its person.
  void GerarArqTempMapaDesembarqueMensal(Date Dt_Inicial, Date Dt_Final, AbrangenciaEnum No_Abrangencia,
                                         const std::string& Sg_UFLocal);

 private:
  std::string DayText(Date day);
  // The FROM, WHERE (period, movement and reach) and GROUP BY head shared by
  // the company queries.
  void AddPeriodAndReach(SqlLines& sql, Date Dt_Inicial, Date Dt_Final, std::string_view movement,
                         AbrangenciaEnum No_Abrangencia, const std::string& Sg_UFLocal);
  struct MonthlyMap;
  void FillMonthlyMap(const MonthlyMap& map, Date Dt_Inicial, Date Dt_Final, AbrangenciaEnum No_Abrangencia,
                      const std::string& Sg_UFLocal);
  int32_t DayTotal(std::string_view column, std::string_view total, int32_t Cd_EmpresaOnibus, int32_t Cd_Cidade,
                   Date Dt_Movimento);
};

}  // namespace vek
