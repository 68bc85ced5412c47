#include "vek/revenue/cgdItensMapaMovimentoED.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "revenue/MovementMap.h"
#include "vek/foundation/MessageCatalogue.h"

namespace vek {
namespace {

using testing::ErrorOf;
using testing::Lines;
using testing::MovementMap;
using Rows = std::vector<std::string>;

const Date kFriday = DateSerial(2026, 11, 20);
const Date kSaturday = DateSerial(2026, 11, 21);
const Date kSunday = DateSerial(2026, 11, 22);

class cgdItensMapaMovimentoEDTest : public ::testing::Test {
 protected:
  cgdItensMapaMovimentoEDTest() { mapa.Ob_cgpSistema(db.session); }

  MovementMap db;
  cgdItensMapaMovimentoED mapa;
};

const std::vector<std::string> kPairColumns = {"Cd_EmpresaOnibus", "Cd_Cidade", "Nm_Cidade", "Sg_UF"};

std::string BoardingStatement(const std::string& from, const std::string& to, const std::string& reach) {
  std::vector<std::string> lines = {"SELECT   A.Cd_EmpresaOnibus,",
                                    "         B.Nm_EmpresaOnibus,",
                                    "         C.Cd_Cidade,",
                                    "         C.Nm_Cidade,",
                                    "         C.Sg_UF",
                                    "FROM     TbItemMapaMovimentoED A",
                                    "         INNER JOIN TbEmpresaOnibus B On A.Cd_EmpresaOnibus = B.Cd_EmpresaOnibus",
                                    "         INNER JOIN TbCidade C On A.Cd_Cidade = C.Cd_Cidade",
                                    "WHERE    A.Dt_Movimento Between '" + from + "' And '" + to + "'",
                                    "         AND A.Qt_Embarques > 0"};
  if (!reach.empty()) lines.push_back(reach);
  for (const char* line : {"GROUP BY A.Cd_EmpresaOnibus,", "         B.Nm_EmpresaOnibus,", "         C.Cd_Cidade,",
                           "         C.Nm_Cidade,", "         C.Sg_UF"}) {
    lines.push_back(line);
  }
  std::string text;
  for (const std::string& line : lines) text += line + "\r";
  return text;
}

TEST_F(cgdItensMapaMovimentoEDTest, TheBoardingPairsOfAPeriodFollowTheReachAndLeaveOutCompaniesThatOnlyBringPassengersIn) {
  auto all = mapa.ConsultarEmpresasComEmbarque(kFriday, kSunday, AbrangenciaGeral, "GO");
  EXPECT_EQ(db.statements.back(), BoardingStatement("2026-11-20", "2026-11-22", ""));
  // São Paulo came in three items (two days, two operating companies): one pair.
  EXPECT_EQ(MovementMap::RowsOf(*all, {"Cd_EmpresaOnibus", "Nm_EmpresaOnibus", "Cd_Cidade", "Nm_Cidade", "Sg_UF"}),
            (Rows{"10|Araguarina|2|Anápolis|GO", "10|Araguarina|4|São Paulo|SP"}));
  EXPECT_EQ(all->ActiveConnection(), nullptr);

  auto inside = mapa.ConsultarEmpresasComEmbarque(kFriday, kSunday, AbrangenciaIntermunicipal, "GO");
  EXPECT_EQ(db.statements.back(), BoardingStatement("2026-11-20", "2026-11-22", "     AND C.Sg_UF = 'GO'"));
  EXPECT_EQ(MovementMap::RowsOf(*inside, kPairColumns), (Rows{"10|2|Anápolis|GO"}));

  auto outside = mapa.ConsultarEmpresasComEmbarque(kFriday, kSunday, AbrangenciaInterestadual, "GO");
  EXPECT_EQ(db.statements.back(), BoardingStatement("2026-11-20", "2026-11-22", "     AND C.Sg_UF <> 'GO'"));
  EXPECT_EQ(MovementMap::RowsOf(*outside, kPairColumns), (Rows{"10|4|São Paulo|SP"}));

  // Any reach but 1 and 2 adds no condition.
  for (int32_t reach : {0, 3, 7, -1}) {
    auto rows = mapa.ConsultarEmpresasComEmbarque(kFriday, kSunday, static_cast<AbrangenciaEnum>(reach), "GO");
    EXPECT_EQ(db.statements.back(), BoardingStatement("2026-11-20", "2026-11-22", "")) << reach;
    EXPECT_EQ(rows->RecordCount(), 2) << reach;
  }

  // The period's bounds are days: Saturday alone still finds São Paulo and
  // Anápolis; October's Campinas is never in.
  auto saturday = mapa.ConsultarEmpresasComEmbarque(kSaturday, kSaturday, AbrangenciaGeral, "GO");
  EXPECT_EQ(MovementMap::RowsOf(*saturday, {"Cd_Cidade"}), (Rows{"2", "4"}));
  auto october = mapa.ConsultarEmpresasComEmbarque(DateSerial(2026, 10, 1), DateSerial(2026, 10, 31),
                                                   AbrangenciaGeral, "GO");
  EXPECT_EQ(MovementMap::RowsOf(*october, {"Cd_Cidade"}), (Rows{"7"}));
}

TEST_F(cgdItensMapaMovimentoEDTest, TheAlightingSideNamesTheCompanyByItsPersonAndKeepsOneWithoutIt) {
  const std::string head = Lines({"SELECT   DISTINCT", "         A.Cd_EmpresaOnibus,", "         B.Nm_Pessoa,",
                                  "         C.Cd_Cidade,", "         C.Nm_Cidade,", "         C.Sg_UF",
                                  "FROM     TbItemMapaMovimentoED A",
                                  "         LEFT JOIN TbPessoa B On A.Cd_EmpresaOnibus = B.Cd_Pessoa",
                                  "         LEFT JOIN TbCidade C On A.Cd_Cidade = C.Cd_Cidade",
                                  "WHERE    A.Dt_Movimento Between '2026-11-20' And '2026-11-22'",
                                  "         AND A.Qt_Desembarques > 0"}) +
                           "\r";
  const std::string tail = Lines({"GROUP BY A.Cd_EmpresaOnibus,", "         B.Nm_Pessoa,", "         C.Cd_Cidade,",
                                  "         C.Nm_Cidade,", "         C.Sg_UF"}) +
                           "\r";
  const std::vector<std::string> columns = {"Cd_EmpresaOnibus", "Nm_Pessoa", "Cd_Cidade", "Sg_UF"};

  auto all = mapa.ConsultarEmpresasComDesembarque(kFriday, kSunday, AbrangenciaGeral, "GO");
  EXPECT_EQ(db.statements.back(), head + tail);
  EXPECT_EQ(MovementMap::RowsOf(*all, columns),
            (Rows{"10|Viação Araguarina Ltda|2|GO", "10|Viação Araguarina Ltda|4|SP", "11|Expresso São Luiz Ltda|1|GO",
                  "11|Expresso São Luiz Ltda|3|MG", "12|NULL|1|GO"}));

  auto inside = mapa.ConsultarEmpresasComDesembarque(kFriday, kSunday, AbrangenciaIntermunicipal, "GO");
  EXPECT_EQ(db.statements.back(), head + "     AND C.Sg_UF = 'GO'\r" + tail);
  EXPECT_EQ(MovementMap::RowsOf(*inside, {"Cd_EmpresaOnibus", "Cd_Cidade"}), (Rows{"10|2", "11|1", "12|1"}));

  auto outside = mapa.ConsultarEmpresasComDesembarque(kFriday, kSunday, AbrangenciaInterestadual, "GO");
  EXPECT_EQ(db.statements.back(), head + "     AND C.Sg_UF <> 'GO'\r" + tail);
  EXPECT_EQ(MovementMap::RowsOf(*outside, {"Cd_EmpresaOnibus", "Cd_Cidade"}), (Rows{"10|4", "11|3"}));

  auto general = mapa.ConsultarEmpresasComDesembarque(kFriday, kSunday, AbrangenciaGeral, "GO");
  EXPECT_EQ(db.statements.back(), head + tail);
  EXPECT_EQ(general->RecordCount(), 5);
}

TEST_F(cgdItensMapaMovimentoEDTest, TheAlightingCompaniesAloneComeOncePerCompany) {
  auto companies = mapa.ConsultarEmpresasComDesembarque2(kFriday, kSunday, AbrangenciaGeral, "GO");
  EXPECT_EQ(db.statements.back(),
            Lines({"SELECT   A.Cd_EmpresaOnibus,", "         B.Nm_Pessoa", "FROM     TbItemMapaMovimentoED A",
                   "         LEFT JOIN TbPessoa B On A.Cd_EmpresaOnibus = B.Cd_Pessoa",
                   "         LEFT JOIN TbCidade C On A.Cd_Cidade = C.Cd_Cidade",
                   "WHERE    A.Dt_Movimento Between '2026-11-20' And '2026-11-22'",
                   "         AND A.Qt_Desembarques > 0", "GROUP BY A.Cd_EmpresaOnibus,", "         b.Nm_Pessoa"}) +
                "\r");
  EXPECT_EQ(MovementMap::RowsOf(*companies, {"Cd_EmpresaOnibus", "Nm_Pessoa"}),
            (Rows{"10|Viação Araguarina Ltda", "11|Expresso São Luiz Ltda", "12|NULL"}));

  // Other states only: São Luiz's Uberlândia and Araguarina's São Paulo.
  auto outside = mapa.ConsultarEmpresasComDesembarque2(kFriday, kSunday, AbrangenciaInterestadual, "GO");
  EXPECT_NE(db.statements.back().find("\r         AND A.Qt_Desembarques > 0\r     AND C.Sg_UF <> 'GO'\rGROUP BY"),
            std::string::npos);
  EXPECT_EQ(MovementMap::RowsOf(*outside, {"Cd_EmpresaOnibus"}), (Rows{"10", "11"}));
}

TEST_F(cgdItensMapaMovimentoEDTest, AStateHoldingAnApostropheIsRefusedBeforeAnySqlWhereItWouldBeQuoted) {
  for (AbrangenciaEnum reach : {AbrangenciaIntermunicipal, AbrangenciaInterestadual}) {
    const VekError refused = ErrorOf([&] { mapa.ConsultarEmpresasComEmbarque(kFriday, kSunday, reach, "G'O"); });
    EXPECT_EQ(refused.Number(), kBusinessError);
    EXPECT_EQ(refused.Source(), " -> cgdItensMapaMovimentoED.ConsultarEmpresasComEmbarque, ");
    EXPECT_NE(refused.Description().find("Sg_UFLocal"), std::string::npos);
    EXPECT_EQ(ErrorOf([&] { mapa.ConsultarEmpresasComDesembarque2(kFriday, kSunday, reach, "G'O"); }).Source(),
              " -> cgdItensMapaMovimentoED.ConsultarEmpresasComDesembarque2, ");
  }
  EXPECT_TRUE(db.statements.empty());
  // Where no state is written, the text is never used.
  EXPECT_EQ(mapa.ConsultarEmpresasComDesembarque(kFriday, kSunday, AbrangenciaGeral, "G'O")->RecordCount(), 5);
}

TEST_F(cgdItensMapaMovimentoEDTest, ADaysBoardingsAndAlightingsAreSummedOverTheWholeDayAndEveryOperatingCompany) {
  auto day = [](const std::string& column, const std::string& total, const std::string& date, int32_t city,
                int32_t company) {
    return Lines({"SELECT   Sum(" + column + ") As " + total, "FROM     TbItemMapaMovimentoED",
                  "WHERE    Dt_Movimento Between '" + date + " 00:00:00' And '" + date + " 23:59:59'",
                  "         AND Cd_Cidade = " + std::to_string(city),
                  "         AND Cd_EmpresaOnibus = " + std::to_string(company)}) +
           "\r";
  };
  // Both operating companies' São Paulo items of Saturday.
  EXPECT_EQ(mapa.ConsultarEmbarques(10, 4, kSaturday), 38);
  EXPECT_EQ(db.statements.back(), day("Qt_Embarques", "Qt_TotalEmbarques", "2026-11-21", 4, 10));
  EXPECT_EQ(mapa.ConsultarEmbarques(10, 4, kFriday), 12);
  // The item at 18:00 is inside the day.
  EXPECT_EQ(mapa.ConsultarEmbarques(10, 2, kSaturday), 9);
  // A day without items counts 0, as does a company that only brings passengers in.
  EXPECT_EQ(mapa.ConsultarEmbarques(10, 4, kSunday), 0);
  EXPECT_EQ(mapa.ConsultarEmbarques(11, 1, kSaturday), 0);

  EXPECT_EQ(mapa.ConsultarDesembarques(11, 1, kSaturday), 9);
  EXPECT_EQ(db.statements.back(), day("Qt_Desembarques", "Qt_TotalDesembarques", "2026-11-21", 1, 11));
  EXPECT_EQ(mapa.ConsultarDesembarques(11, 3, kSunday), 4);
  EXPECT_EQ(mapa.ConsultarDesembarques(10, 4, kSaturday), 5);
  EXPECT_EQ(mapa.ConsultarDesembarques(12, 1, kFriday), 0);
}

TEST_F(cgdItensMapaMovimentoEDTest, TheItemsOfADayAreThoseAtItsMidnightOfEveryCompanyAndTenant) {
  auto items = mapa.ConsultarItensMapaPorEmpresa(kSaturday);
  EXPECT_EQ(db.statements.back(),
            "SELECT *\rFROM   TbItemMapaMovimentoED\rWHERE  Dt_Movimento = '2026-11-21'\r");
  EXPECT_EQ(MovementMap::RowsOf(*items, {"Cd_EmpresaUsuariaSistema", "Cd_EmpresaOnibus", "Cd_Cidade", "Qt_Embarques",
                                         "Qt_Desembarques"}),
            (Rows{"1|10|2|7|3", "1|10|4|30|5", "1|11|1|0|9", "1|12|1|0|6", "2|10|4|8|0"}));
  EXPECT_EQ(items->ActiveConnection(), nullptr);
  EXPECT_EQ(mapa.ConsultarItensMapaPorEmpresa(DateSerial(2026, 11, 23))->RecordCount(), 0);
}

TEST_F(cgdItensMapaMovimentoEDTest, TheBrazilianDateFormatReadsDayFirst) {
  db.session->Let("Ds_FormatoData", Variant("dd/mm/yyyy"));
  EXPECT_EQ(mapa.ConsultarEmbarques(10, 4, kFriday), 12);
  EXPECT_NE(db.statements.back().find("Between '20/11/2026 00:00:00' And '20/11/2026 23:59:59'"), std::string::npos);
  auto pairs = mapa.ConsultarEmpresasComEmbarque(DateSerial(2026, 11, 1), DateSerial(2026, 11, 12),
                                                 AbrangenciaGeral, "GO");
  EXPECT_NE(db.statements.back().find("Between '01/11/2026' And '12/11/2026'"), std::string::npos);
  EXPECT_EQ(pairs->RecordCount(), 0);
  EXPECT_EQ(mapa.ConsultarItensMapaPorEmpresa(kSaturday)->RecordCount(), 5);
}

TEST_F(cgdItensMapaMovimentoEDTest, AFailureCarriesTheMembersLink) {
  db.connection->ExecuteNative("DROP TABLE TbItemMapaMovimentoED");
  const VekError missing = ErrorOf([&] { mapa.ConsultarEmbarques(10, 4, kSaturday); });
  EXPECT_EQ(missing.Number(), static_cast<int32_t>(0x80040E14u));
  EXPECT_EQ(missing.Source(), testing::ProviderSource() + " -> cgdItensMapaMovimentoED.ConsultarEmbarques, ");
  EXPECT_EQ(ErrorOf([&] { mapa.ConsultarItensMapaPorEmpresa(kSaturday); }).Source(),
            testing::ProviderSource() + " -> cgdItensMapaMovimentoED.ConsultarItensMapaPorEmpresa, ");
}

}  // namespace
}  // namespace vek
