// The receivables' lists and their export to the ERP's dBase title table,
// read back by LibreOffice.

#include "vek/revenue/cgdContasReceber.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "revenue/BillingData.h"
#include "support/DbfFile.h"
#include "support/LibreOfficeCsv.h"
#include "support/RecordingControls.h"
#include "support/TerminalDatabase.h"
#include "vek/db/Connection.h"
#include "vek/db/DbError.h"
#include "vek/db/Recordset.h"
#include "vek/foundation/MessageCatalogue.h"
#include "vek/platform/Controls.h"
#include "vek/platform/Text.h"
#include "vek/revenue/MicrosigaTitles.h"

namespace vek {
namespace {

namespace fs = std::filesystem;
using testing::ErrorOf;
using testing::Lines;

constexpr std::string_view kColumns =
    "E1_FILIAL, E1_PREFIXO, E1_NUM, E1_PARCELA, E1_TIPO, E1_NATUREZ, E1_CCUSTO, E1_PORTADO, E1_AGEDEP, "
    "E1_CLIENTE, E1_LOJA, E1_EMISSAO, E1_VENCTO, E1_VENCREA, E1_VALOR, E1_EMIS1, E1_HIST, E1_SITUACA, "
    "E1_SALDO, E1_VENCORI, E1_CONTA, E1_MOEDA, E1_STATUS, E1_ORIGEM, E1_FLUXO, E1_FILORIG, E1_MULTNAT, "
    "E1_MSFIL, E1_MSEMP, E1_RATNCC";
constexpr std::string_view kLongHistory = "Tarifas de embarque de março — Rodoviária de São José dos Campos";

std::string ExportSelect(const std::string& from, const std::string& to) {
  return Lines({"SELECT B.Ds_Filial,", "       B.Ds_Prefixo,", "       A.No_ContaReceber,", "       A.No_Parcela,",
                "       B.Ds_Tipo,", "       B.Ds_Natureza,", "       B.Ds_CCusto,", "       B.Ds_Portador,",
                "       B.Ds_Agencia,", "       C.Cd_ClienteIntegracao,", "       C.Cd_LojaIntegracao,",
                "       A.Dt_Emissao,", "       A.Dt_Vencimento,",
                "       A.Dt_Vencimento + A.Qt_DiasProrrogacao as Dt_VencProrrogado,", "       A.Vl_ContaReceber,",
                "       A.Ds_Historico,", "       B.Ds_Conta,", "       B.No_Moeda,", "       B.Ds_Status,",
                "       B.Ds_Origem,", "       B.Ds_Fluxo,", "       B.Ds_FiloRig,", "       B.Ds_MultNat,",
                "       B.Ds_MsFil,", "       B.Ds_MsEmp,", "       B.Ds_RatNCC", "FROM   TbContaReceber A",
                "       Left Join TbParametrosMicrosiga B On A.Cd_EmpresaUsuariaSistema = B.Cd_EmpresaUsuariaSistema",
                "       Left Join TbEmpresaOnibus C On A.Cd_Pessoa = C.Cd_EmpresaOnibus",
                "WHERE  A.Dt_Emissao between '" + from + "' and '" + to + "'"}) +
         "\r";
}

// Company 1 has its ERP parameters, company 2 has none. Payers 10 and 12
// are bus companies with ERP codes; 11 is not.
class ReceivablesTest : public ::testing::Test {
 protected:
  ReceivablesTest() {
    contas.Ob_cgpSistema(db.session);
    db.session->SetProgress(progress);
    testing::AddMicrosigaParameters(db, 1);
    testing::AddBusCompany(db, 10, "Viação São Paulo", "000123", "01");
    testing::AddPayer(db, 11, "João da Conceição");
    testing::AddBusCompany(db, 12, "Expresso Itaú d Oeste", "000456", "02");
    testing::AddReceivable(db, 1, 7, 1, 10, "'2026-03-02'", "'2026-03-09'", "1234.56", 2,
                           "Embarques de 02/03 - Conceição");
    testing::AddReceivable(db, 1, 8, 1, 11, "'2026-03-02'", "'2026-03-09'", "0.05", 0, std::string(kLongHistory));
    testing::AddReceivable(db, 2, 9, 3, 12, "'2026-03-02'", "'2026-03-30'", "1000000.005", 3, "", 0,
                           "'2026-03-05'");
    testing::AddReceivable(db, 1, 6, 1, 10, "'2026-03-01'", "'2026-03-09'", "77");  // before the period
    testing::AddReceivable(db, 1, 10, 1, 10, "'2026-03-03'", "'2026-03-10'", "0.015");
    db.statements.clear();
  }

  // An empty title table in a folder of the test's, as vek init writes it.
  fs::path TitleFolder() {
    const fs::path dbf = folder.Path() / "erp";
    fs::create_directories(dbf);
    CreateMicrosigaTitleTable(dbf);
    return dbf;
  }
  void Export(const fs::path& target, const std::string& table = "SE1") {
    contas.ExportarDBF(DateSerial(2026, 3, 2), DateSerial(2026, 3, 3), target.string(), table);
  }
  std::vector<std::string> Inserts() const {
    std::vector<std::string> inserts;
    for (const std::string& text : db.statements) {
      if (text.starts_with("INSERT Into ")) inserts.push_back(text);
    }
    return inserts;
  }

  testing::TerminalDatabase db;
  testing::ScratchFolder folder;
  std::shared_ptr<testing::RecordingProgress> progress = std::make_shared<testing::RecordingProgress>();
  cgdContasReceber contas;
};

TEST_F(ReceivablesTest, TheSearchGridListsByPayerThenDueDate) {
  testing::LocaleGuard brazil(testing::kBrazilLocale);
  ListGrid grid;
  TextBox count;
  contas.CarregarMSFlexGridDeBusca(grid, count, "A.Cd_Pessoa <> 11");
  EXPECT_EQ(db.statements.back(),
            Lines({"SELECT   A.No_ContaReceber,", "         A.No_Parcela,", "         B.Nm_Pessoa,", "         A.Dt_Emissao,",
                   "         A.Dt_Vencimento,", "         A.Dt_Pagamento,", "         A.Vl_ContaReceber",
                   "FROM     TbContaReceber A", "         Join TbPessoa B on A.Cd_Pessoa = B.Cd_Pessoa",
                   "WHERE A.Cd_Pessoa <> 11", "ORDER BY B.Nm_Pessoa,", "         A.Dt_Vencimento"}) +
                "\r");
  ASSERT_EQ(grid.Lines().size(), 4u);
  EXPECT_EQ(grid.Lines()[0], "\t9\t3\tExpresso Itaú d Oeste\t02/03/2026\t30/03/2026\t05/03/2026\t1.000.000,01");
  // Numbers 7 and 6 are both due on 9 March: in the database's order.
  std::vector<std::string> same_day = {grid.Lines()[1].substr(0, 3), grid.Lines()[2].substr(0, 3)};
  std::sort(same_day.begin(), same_day.end());
  EXPECT_EQ(same_day, (std::vector<std::string>{"\t6\t", "\t7\t"}));
  EXPECT_EQ(grid.Lines()[3], "\t10\t1\tViação São Paulo\t03/03/2026\t10/03/2026\t\t0,02");
  EXPECT_EQ(count.Text(), "4");
}

TEST_F(ReceivablesTest, TheClosingsReceivablesAreTheGeneratedOnesIssuedThatDay) {
  auto rows = contas.ConsultarContasDeFechamentoDiario(DateSerial(2026, 3, 2));
  EXPECT_EQ(db.statements.back(), Lines({"SELECT *", "FROM   TbContaReceber", "WHERE  Dt_Emissao = '2026-03-02'",
                                         "       AND Ic_GeradoPeloSistema = 1"}) +
                                      "\r");
  std::vector<int32_t> numbers;
  for (; !rows->Eof(); rows->MoveNext()) numbers.push_back(CLng(rows->Fields().Item("No_ContaReceber").Value()));
  std::sort(numbers.begin(), numbers.end());
  EXPECT_EQ(numbers, (std::vector<int32_t>{7, 8}));  // 9 was typed in by hand
  EXPECT_EQ(rows->ActiveConnection(), nullptr);
}

TEST_F(ReceivablesTest, TheExportWritesEveryReceivableOfThePeriodAsTheErpsTitlesAndLibreOfficeReadsThemBack) {
  const fs::path target = TitleFolder();
  {
    // Titles of an earlier export, which this one replaces.
    auto old = std::make_shared<Connection>();
    old->Open("Driver={Microsoft Visual FoxPro Driver};SourceType=DBF;SourceDB=" + target.string());
    old->Execute("INSERT INTO SE1 (E1_NUM, E1_VALOR) VALUES ('1', 5)");
    old->Execute("INSERT INTO SE1 (E1_NUM, E1_VALOR) VALUES ('2', 6)");
  }
  Export(target);
  ASSERT_GE(db.statements.size(), 2u);
  EXPECT_EQ(db.statements[0], ExportSelect("2026-03-02", "2026-03-03"));
  EXPECT_EQ(db.statements[1], "DELETE  FROM SE1");
  const std::vector<std::string> inserts = Inserts();
  ASSERT_EQ(inserts.size(), 4u);
  EXPECT_EQ(db.statements.size(), 6u);
  const std::string first =
      "INSERT Into SE1 (" + std::string(kColumns) +
      ")VALUES ('01', 'ROD', '7', '1', 'NF', '1101', '300100', '341', '0123', '000123', '01', '02/03/2026', "
      "'09/03/2026', '11/03/2026', 123456 / 100 , '02/03/2026', 'Embarques de 02/03 - Conceição', '0', "
      "123456 / 100 , '09/03/2026', '45678-9', 1, 'A', 'FINA040', 'S', '01', '2', '01', '01', '2')";
  EXPECT_NE(std::find(inserts.begin(), inserts.end(), first), inserts.end()) << inserts[0];
  // Company 2 has no parameters: empty texts and a Null currency.
  const std::string third =
      "INSERT Into SE1 (" + std::string(kColumns) +
      ")VALUES ('', '', '9', '3', '', '', '', '', '', '000456', '02', '02/03/2026', '30/03/2026', '02/04/2026', "
      "100000000 / 100 , '02/03/2026', '', '0', 100000000 / 100 , '30/03/2026', '', Null, '', '', '', '', '', "
      "'', '', '')";
  EXPECT_NE(std::find(inserts.begin(), inserts.end(), third), inserts.end());
  EXPECT_EQ(progress->calls, (std::vector<std::string>{"Show Exportando as contas a receber para SE1", "Close"}));
  EXPECT_EQ(progress->steps.back(), 100.0);

  const testing::CsvRows read = testing::ReadWithLibreOffice(target / "SE1.dbf", "dBase:ANSI");
  ASSERT_EQ(read.size(), 5u);  // the header and the four titles; the old ones are deleted
  const std::vector<std::string> header = read[0];
  ASSERT_EQ(header.size(), 30u);
  EXPECT_EQ(header[0], "E1_FILIAL,C,2");
  EXPECT_EQ(header[11], "E1_EMISSAO,D");
  EXPECT_EQ(header[14], "E1_VALOR,N,17,2");
  EXPECT_EQ(header[21], "E1_MOEDA,N,2,0");
  // Each title as field -> value, dates as yyyy-mm-dd and amounts exact.
  std::map<std::string, std::map<std::string, std::string>> titles;
  for (size_t r = 1; r < read.size(); ++r) {
    std::map<std::string, std::string> title;
    for (size_t c = 0; c < header.size(); ++c) {
      const std::string name = header[c].substr(0, header[c].find(','));
      std::string value = c < read[r].size() ? read[r][c] : "";
      if (header[c].ends_with(",D") && !value.empty()) {
        int m = 0, d = 0, y = 0;
        ASSERT_EQ(std::sscanf(value.c_str(), "%d/%d/%d", &m, &d, &y), 3) << value;
        char iso[16];
        std::snprintf(iso, sizeof iso, "%04d-%02d-%02d", y, m, d);
        value = iso;
      } else if (header[c].find(",N,") != std::string::npos && !value.empty()) {
        value = Currency(std::stod(value)).ToPlainString();
      }
      title[name] = value;
    }
    titles[title["E1_NUM"]] = title;
  }
  const std::map<std::string, std::string> parameters = {
      {"E1_FILIAL", "01"},  {"E1_PREFIXO", "ROD"},   {"E1_TIPO", "NF"},      {"E1_NATUREZ", "1101"},
      {"E1_CCUSTO", "300100"}, {"E1_PORTADO", "341"}, {"E1_AGEDEP", "0123"},  {"E1_CONTA", "45678-9"},
      {"E1_MOEDA", "1"},    {"E1_STATUS", "A"},      {"E1_ORIGEM", "FINA040"}, {"E1_FLUXO", "S"},
      {"E1_FILORIG", "01"}, {"E1_MULTNAT", "2"},     {"E1_MSFIL", "01"},     {"E1_MSEMP", "01"},
      {"E1_RATNCC", "2"},   {"E1_SITUACA", "0"}};
  const auto expect_title = [&](const std::string& number, std::map<std::string, std::string> expected,
                                bool with_parameters) {
    for (const auto& [name, value] : parameters) {
      if (!expected.contains(name)) expected[name] = with_parameters || name == "E1_SITUACA" ? value : "";
    }
    expected["E1_NUM"] = number;
    ASSERT_TRUE(titles.contains(number)) << number;
    ASSERT_EQ(titles[number].size(), 30u);
    for (const auto& [name, value] : expected) EXPECT_EQ(titles[number][name], value) << number << " " << name;
    for (const auto& [name, value] : titles[number]) EXPECT_TRUE(expected.contains(name)) << name;
  };
  expect_title("7",
               {{"E1_PARCELA", "1"}, {"E1_CLIENTE", "000123"}, {"E1_LOJA", "01"}, {"E1_EMISSAO", "2026-03-02"},
                {"E1_VENCTO", "2026-03-09"}, {"E1_VENCREA", "2026-03-11"}, {"E1_VALOR", "1234.56"},
                {"E1_EMIS1", "2026-03-02"}, {"E1_HIST", "Embarques de 02/03 - Conceição"}, {"E1_SALDO", "1234.56"},
                {"E1_VENCORI", "2026-03-09"}},
               true);
  // Not a bus company: no ERP customer; a history cut at 40 characters.
  expect_title("8",
               {{"E1_PARCELA", "1"}, {"E1_CLIENTE", ""}, {"E1_LOJA", ""}, {"E1_EMISSAO", "2026-03-02"},
                {"E1_VENCTO", "2026-03-09"}, {"E1_VENCREA", "2026-03-09"}, {"E1_VALOR", "0.05"},
                {"E1_EMIS1", "2026-03-02"}, {"E1_HIST", RTrim(Left(kLongHistory, 40))}, {"E1_SALDO", "0.05"},
                {"E1_VENCORI", "2026-03-09"}},
               true);
  // Another company, without parameters; half a cent rounds to even.
  expect_title("9",
               {{"E1_PARCELA", "3"}, {"E1_CLIENTE", "000456"}, {"E1_LOJA", "02"}, {"E1_EMISSAO", "2026-03-02"},
                {"E1_VENCTO", "2026-03-30"}, {"E1_VENCREA", "2026-04-02"}, {"E1_VALOR", "1000000"},
                {"E1_EMIS1", "2026-03-02"}, {"E1_HIST", ""}, {"E1_SALDO", "1000000"}, {"E1_VENCORI", "2026-03-30"}},
               false);
  expect_title("10",
               {{"E1_PARCELA", "1"}, {"E1_CLIENTE", "000123"}, {"E1_LOJA", "01"}, {"E1_EMISSAO", "2026-03-03"},
                {"E1_VENCTO", "2026-03-10"}, {"E1_VENCREA", "2026-03-10"}, {"E1_VALOR", "0.02"},
                {"E1_EMIS1", "2026-03-03"}, {"E1_HIST", ""}, {"E1_SALDO", "0.02"}, {"E1_VENCORI", "2026-03-10"}},
               true);
}

TEST_F(ReceivablesTest, AnEmptyPeriodStillEmptiesTheTable) {
  const fs::path target = TitleFolder();
  Export(target);
  EXPECT_EQ(testing::DbfFile(target / "SE1.dbf").LiveRecords(), 4u);
  db.statements.clear();
  contas.ExportarDBF(DateSerial(2026, 1, 1), DateSerial(2026, 1, 31), target.string(), "se1");
  EXPECT_EQ(db.statements, (std::vector<std::string>{ExportSelect("2026-01-01", "2026-01-31"), "DELETE  FROM se1"}));
  const testing::DbfFile file(target / "SE1.dbf");
  EXPECT_EQ(file.Records(), 4u);
  EXPECT_EQ(file.LiveRecords(), 0u);
}

TEST_F(ReceivablesTest, AMissingFolderOrTableIsTheMissingDriverMessageFollowedByTheProviders) {
  const std::string prefix =
      "Para exportar para o formato DBF é necessário instalar o BDE, provavelmente esse arquivo não foi instalado. "
      "Retornou a seguinte mensagem: ";
  const std::string nowhere = (folder.Path() / "nowhere").string();
  VekError error = ErrorOf([&] { Export(nowhere); });
  EXPECT_EQ(error.Number(), kBusinessError);
  EXPECT_EQ(error.Description(), prefix + "Invalid path: the folder '" + nowhere + "' (SourceDB) does not exist.");
  EXPECT_EQ(error.Source(), " -> cgdContasReceber.ExportarDBF, ");
  EXPECT_EQ(db.statements, std::vector<std::string>{ExportSelect("2026-03-02", "2026-03-03")});

  error = ErrorOf([&] { Export(folder.Path(), "SE2"); });
  EXPECT_EQ(error.Number(), kBusinessError);
  EXPECT_EQ(error.Description(), prefix + "File 'se2.dbf' does not exist in " + folder.Path().string() + ".");
  EXPECT_TRUE(Inserts().empty());
}

TEST_F(ReceivablesTest, TheFirstTitleThatDoesNotFitStopsTheExportAndTheTitlesBeforeItStay) {
  const fs::path target = TitleFolder();
  // Fifteen whole digits: more than E1_VALOR's N(17,2) holds.
  testing::AddReceivable(db, 1, 11, 1, 10, "'2026-03-03'", "'2026-03-10'", "500000000000000");
  db.statements.clear();
  const VekError error = ErrorOf([&] { Export(target); });
  EXPECT_EQ(error.Number(), adErrUnspecified);
  EXPECT_TRUE(error.Source().starts_with("dBase -> cgdContasReceber.ExportarDBF, ")) << error.Source();
  EXPECT_NE(error.Description().find("Numeric overflow"), std::string::npos) << error.Description();
  EXPECT_NE(error.Description().find("field E1_VALOR (N(17,2)) of table SE1, record "), std::string::npos)
      << error.Description();
  const std::vector<std::string> inserts = Inserts();
  ASSERT_FALSE(inserts.empty());
  EXPECT_NE(inserts.back().find("50000000000000000 / 100 "), std::string::npos);
  EXPECT_EQ(testing::DbfFile(target / "SE1.dbf").LiveRecords(), inserts.size() - 1);
  EXPECT_EQ(progress->calls.back(), "Close");
}

TEST_F(ReceivablesTest, AnApostropheIsRefusedBeforeTheTableIsTouched) {
  const fs::path target = TitleFolder();
  Export(target);
  testing::AddReceivable(db, 1, 12, 1, 10, "'2026-03-03'", "'2026-03-10'", "1", 0, "Santa Bárbara d''Oeste");
  db.statements.clear();
  const VekError error = ErrorOf([&] { Export(target); });
  EXPECT_EQ(error.Number(), kBusinessError);
  EXPECT_NE(error.Description().find("Ds_Historico"), std::string::npos) << error.Description();
  EXPECT_EQ(db.statements.size(), 1u);  // the receivables' SELECT alone
  EXPECT_EQ(testing::DbfFile(target / "SE1.dbf").LiveRecords(), 4u);
}

}  // namespace
}  // namespace vek
