#include "vek/revenue/cgdApuracaoReceita_Tarifas.h"

#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "support/LibreOffice.h"
#include "support/TerminalDatabase.h"
#include "vek/db/workbook/WorkbookFile.h"
#include "vek/platform/Controls.h"
#include "vek/platform/Format.h"
#include "vek/revenue/MonthlyWorkbookTemplate.h"

namespace vek {
namespace {

namespace fs = std::filesystem;
using testing::ErrorOf;
using testing::Lines;

std::string FileBytes(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

// Answers Retry, after running a repair the first time it is asked.
class RetryingMessageBox final : public MessageBox {
 public:
  explicit RetryingMessageBox(std::function<void()> repair) : repair_(std::move(repair)) {}
  int32_t Show(const std::string& prompt, int32_t buttons, const std::string& title) override {
    messages.push_back({prompt, buttons, title});
    if (repair_) std::exchange(repair_, nullptr)();
    return vbRetry;
  }
  std::vector<SilentMessageBox::Message> messages;

 private:
  std::function<void()> repair_;
};

// One day of the monthly workbook as its 22 columns B to W show.
struct ExpectedDay {
  int32_t day;
  std::array<int64_t, 4> quantity;    // boarding, restroom, parking, type 4
  std::array<int64_t, 4> cents;
  int64_t deposit_cents;
  std::array<int64_t, 6> slot_quantity;
  std::array<int64_t, 6> slot_cents;
};

std::string CentsText(int64_t cents) {
  const std::string digits = std::to_string(cents / 100) + "." + (cents % 100 < 10 ? "0" : "") + std::to_string(cents % 100);
  return digits;
}

class cgdApuracaoReceita_TarifasTest : public ::testing::Test {
 protected:
  cgdApuracaoReceita_TarifasTest() {
    tarifas.Ob_cgpSistema(db.session);
    const struct {
      int32_t code;
      const char* description;
      int32_t type;
    } tariffs[] = {{1, "Embarque intermunicipal", 1}, {2, "Embarque interestadual", 1}, {3, "Embarque metropolitano", 1},
                   {6, "Embarque leito", 1},          {7, "Embarque especial", 1},      {10, "Sanitário", 3},
                   {11, "Estacionamento hora", 2},    {12, "Malex volume", 4}};
    for (const auto& tariff : tariffs) {
      db.Query("INSERT INTO TbTarifa (Cd_Tarifa, Cd_EmpresaUsuariaSistema, Ds_Tarifa, Cd_TipoReceita) VALUES (" +
               std::to_string(tariff.code) + ", 1, '" + tariff.description + "', " + std::to_string(tariff.type) + ")");
    }
    db.Query("INSERT INTO TbPessoa (Cd_Pessoa, Nm_Pessoa) VALUES (100, 'Viação Cometa')");
    db.Query("INSERT INTO TbPessoa (Cd_Pessoa, Nm_Pessoa) VALUES (200, 'Expresso União')");
    db.Query("INSERT INTO TbPessoa (Cd_Pessoa, Nm_Pessoa) VALUES (1, 'Terminal Rodoviário')");
  }

  // An assessment with its tariff lines, in plain SQL.
  struct Line {
    int32_t tariff;
    int32_t quantity;
    const char* price;
  };
  void Assess(int32_t tenant, int32_t number, int32_t person, int32_t type, const char* day, std::vector<Line> lines) {
    db.Query("INSERT INTO TbApuracaoReceita (Cd_EmpresaUsuariaSistema, No_ApuracaoReceita, Cd_TipoReceita, Cd_Pessoa, "
             "Dt_Movimento, No_Parcela) VALUES (" + std::to_string(tenant) + ", " + std::to_string(number) + ", " +
             std::to_string(type) + ", " + std::to_string(person) + ", '" + day + "', 1)");
    for (const Line& line : lines) {
      db.Query("INSERT INTO TbApuracaoReceita_TbTarifa (Cd_EmpresaUsuariaSistema, No_ApuracaoReceita, Cd_Tarifa, "
               "Qt_Tarifa, Vl_Tarifa) VALUES (" + std::to_string(tenant) + ", " + std::to_string(number) + ", " +
               std::to_string(line.tariff) + ", " + std::to_string(line.quantity) + ", " + line.price + ")");
    }
  }

  // Three days of November 2026: the 1st with every kind of revenue and a
  // closing, the 2nd with nothing, the 3rd with half cents and no closing.
  void AssessThreeDays() {
    Assess(1, 1, 100, 1, "2026-11-01", {{1, 10, "4.50"}, {2, 3, "7.25"}});
    Assess(1, 2, 200, 1, "2026-11-01", {{1, 5, "4.50"}, {7, 4, "9.99"}});  // tariff 7: totals only
    Assess(1, 3, 1, 3, "2026-11-01", {{10, 40, "1.50"}});
    Assess(1, 4, 1, 2, "2026-11-01", {{11, 12, "8.00"}});
    Assess(1, 5, 1, 4, "2026-11-01", {{12, 3, "3.333"}});
    db.Query("INSERT INTO TbFechamentoDiario (Cd_EmpresaUsuariaSistema, Dt_FechamentoDiario, Vl_Deposito) "
             "VALUES (1, '2026-11-01', 1234.56)");
    Assess(1, 6, 100, 1, "2026-11-03", {{6, 2, "12.345"}, {3, 1, "2.125"}});
    // Another month's day is not exported.
    Assess(1, 7, 100, 1, "2026-10-31", {{1, 99, "4.50"}});
  }

  // What the three days export: money in cents, rounded half to even.
  static std::vector<ExpectedDay> ThreeDays() {
    return {
        {1, {22, 40, 12, 3}, {12921, 6000, 9600, 1000}, 123456, {15, 3, 0, 0, 0, 0}, {6750, 2175, 0, 0, 0, 0}},
        {2, {0, 0, 0, 0}, {0, 0, 0, 0}, 0, {0, 0, 0, 0, 0, 0}, {0, 0, 0, 0, 0, 0}},
        // 24.69 + 2.125 = 26.815 -> 2682 cents; 2.125 alone -> 212 cents.
        {3, {3, 0, 0, 0}, {2682, 0, 0, 0}, 0, {0, 0, 1, 0, 0, 2}, {0, 0, 212, 0, 0, 2469}},
    };
  }

  fs::path Template(const std::string& name) {
    const fs::path path = folder.Path() / name;
    WriteMonthlyWorkbookTemplate(path);
    return path;
  }

  testing::TerminalDatabase db;
  cgdApuracaoReceita_Tarifas tarifas;
  testing::ScratchFolder folder;
};

std::string GridStatement(const std::string& where_line) {
  return Lines({"SELECT   A.Cd_Tarifa,", "         B.Ds_Tarifa,", "         A.Qt_Tarifa,", "         A.Vl_Tarifa,",
                "         A.Qt_Tarifa * A.Vl_Tarifa as Vl_Total", "FROM     TbApuracaoReceita_TbTarifa A",
                "         Inner Join tbtarifa B On A.Cd_Tarifa = B.Cd_Tarifa"}) +
         "\r" + where_line + "ORDER BY A.Cd_Tarifa;\r";
}

std::string PeriodStatement(bool per_tariff, const std::string& from, const std::string& to, int32_t type) {
  const std::string head = per_tariff ? Lines({"SELECT   A.Cd_Tarifa,", "         B.Dt_Movimento,"}) : "SELECT   B.Dt_Movimento,";
  return head + "\r" +
         Lines({"         Sum(A.Qt_Tarifa) As Qt_TotalTarifa,", "         Sum(A.Qt_Tarifa * A.Vl_Tarifa) As Vl_TotalTarifa",
                "FROM     TbApuracaoReceita_TbTarifa A",
                "         Join TbApuracaoReceita B ON A.Cd_EmpresaUsuariaSistema = B.Cd_EmpresaUsuariaSistema",
                "                                  AND A.No_ApuracaoReceita = B.No_ApuracaoReceita",
                "         Join TbTarifa C On A.Cd_Tarifa = C.Cd_Tarifa",
                "         Join TbTipoReceita D On C.Cd_TipoReceita = D.Cd_TipoReceita"}) +
         "\rWHERE    Dt_Movimento Between '" + from + "' and '" + to + "'\r         And D.Cd_TipoReceita = " +
         std::to_string(type) + "\r" +
         (per_tariff ? Lines({"GROUP BY A.Cd_Tarifa,", "         B.Dt_Movimento", "ORDER BY A.Cd_Tarifa,",
                              "         B.Dt_Movimento;"})
                     : Lines({"GROUP BY B.Dt_Movimento", "ORDER BY B.Dt_Movimento;"})) +
         "\r";
}

std::string UpdateStatement(const ExpectedDay& day) {
  const char* money_columns[] = {"Vl_TotalEmbarque", "Vl_TotalSanitario", "Vl_TotalEstacionamento", "Vl_TotalMalex"};
  const char* quantity_columns[] = {"Qt_TotalEmbarque", "Qt_TotalSanitario", "Qt_TotalEstacionamento", "Qt_TotalMalex"};
  std::string text = "UPDATE [DADOS$] \rSET    Dt_Movimento = #11/0" + std::to_string(day.day) + "/2026# , \r";
  for (int i = 0; i < 4; ++i) {
    text += "       " + std::string(quantity_columns[i]) + " = " + std::to_string(day.quantity[i]) + ",\r";
    text += "       " + std::string(money_columns[i]) + " = " + std::to_string(day.cents[i]) + "/100 ,\r";
  }
  text += "       Vl_DepositoDia = " + std::to_string(day.deposit_cents) + "/100 ,\r";
  for (int i = 0; i < 6; ++i) {
    const std::string n = std::to_string(i + 1);
    text += "       Qt_EmbarqueTarifa" + n + " = " + std::to_string(day.slot_quantity[i]) + ",\r";
    text += "       Vl_EmbarqueTarifa" + n + " = " + std::to_string(day.slot_cents[i]) + (i == 5 ? "/100 \r" : "/100 ,\r");
  }
  return text + "WHERE  No_DiaMovimento = " + std::to_string(day.day) + "\r";
}

TEST_F(cgdApuracaoReceita_TarifasTest, TheGridListsAnAssessmentsLinesWithARunningTotalWrittenAfterEachLine) {
  testing::LocaleGuard brazil(testing::kBrazilLocale);
  AssessThreeDays();
  ListGrid grid;
  grid.AddItem("left from before");
  TextBox total("untouched");
  tarifas.CarregarMSFlexGrid(grid, total, "A.No_ApuracaoReceita = 2");
  EXPECT_EQ(db.statements.back(), GridStatement("WHERE A.No_ApuracaoReceita = 2\r"));
  EXPECT_EQ(grid.FormatString(), "<|<Codigo|<Descrição|>Quant.|>Unitário|>Total");
  EXPECT_EQ(grid.Lines(), (std::vector<std::string>{"\t1\tEmbarque intermunicipal\t5\t4,50\t22,50",
                                                    "\t7\tEmbarque especial\t4\t9,99\t39,96"}));
  EXPECT_EQ(total.Text(), "62,46");
  EXPECT_EQ(grid.ColWidth(2), 3000);

  // No line: an empty grid, and the total box is left as it was.
  total.Text("untouched");
  tarifas.CarregarMSFlexGrid(grid, total, "A.No_ApuracaoReceita = 999");
  EXPECT_TRUE(grid.Lines().empty());
  EXPECT_EQ(total.Text(), "untouched");

  // Without a filter every line; thousands grouped in the total.
  db.Query("UPDATE TbApuracaoReceita_TbTarifa SET Qt_Tarifa = 1000 WHERE No_ApuracaoReceita = 3");
  tarifas.CarregarMSFlexGrid(grid, total);
  EXPECT_EQ(db.statements.back(), GridStatement(""));
  EXPECT_EQ(grid.Lines().size(), 10u);
  EXPECT_EQ(total.Text(), "2.207,52");  // 1000 x 1.50 in place of 40 x 1.50 in 767.524

  const VekError error = ErrorOf([&] { tarifas.CarregarMSFlexGrid(grid, total, "No_Such_Column = 1"); });
  EXPECT_EQ(error.Number(), static_cast<int32_t>(0x80040E14u));
  EXPECT_TRUE(error.Source().ends_with(" -> cgdApuracaoReceita_Tarifas.CarregarMSFlexGrid, ")) << error.Source();
}

TEST_F(cgdApuracaoReceita_TarifasTest, TheReportQueriesReturnTheirStatementsRows) {
  AssessThreeDays();
  auto lines = tarifas.ConsultaTarifas("A.No_ApuracaoReceita = 6");
  EXPECT_EQ(db.statements.back(), GridStatement("WHERE A.No_ApuracaoReceita = 6\r"));
  ASSERT_EQ(lines->RecordCount(), 2);
  EXPECT_EQ(CLng(lines->Fields().Item("Cd_Tarifa").Value()), 3);
  EXPECT_EQ(CCur(lines->Fields().Item("Vl_Total").Value()), Currency(2.125));
  EXPECT_EQ(lines->ActiveConnection(), nullptr);  // detached, as every report's

  auto days = tarifas.ConsultarPorPeriodoAgrupadaDia(DateSerial(2026, 10, 31), DateSerial(2026, 11, 30), 1);
  EXPECT_EQ(db.statements.back(), PeriodStatement(false, "2026-10-31", "2026-11-30", 1));
  std::vector<std::string> seen;
  for (; !days->Eof(); days->MoveNext()) {
    seen.push_back(Format(days->Fields().Item("Dt_Movimento").Value(), "dd/mm/yyyy") + " " +
                   CStr(days->Fields().Item("Qt_TotalTarifa").Value()) + " " +
                   CCur(days->Fields().Item("Vl_TotalTarifa").Value()).ToPlainString());
  }
  EXPECT_EQ(seen, (std::vector<std::string>{"31/10/2026 99 445.5", "01/11/2026 22 129.21", "03/11/2026 3 26.815"}));

  auto per_tariff = tarifas.ConsultarPorPeriodoAgrupadaDiaTarifa(DateSerial(2026, 11, 1), DateSerial(2026, 11, 3), 1);
  EXPECT_EQ(db.statements.back(), PeriodStatement(true, "2026-11-01", "2026-11-03", 1));
  seen.clear();
  for (; !per_tariff->Eof(); per_tariff->MoveNext()) {
    seen.push_back(CStr(per_tariff->Fields().Item("Cd_Tarifa").Value()) + " " +
                   Format(per_tariff->Fields().Item("Dt_Movimento").Value(), "dd/mm") + " " +
                   CStr(per_tariff->Fields().Item("Qt_TotalTarifa").Value()));
  }
  EXPECT_EQ(seen, (std::vector<std::string>{"1 01/11 15", "2 01/11 3", "3 03/11 1", "6 03/11 2", "7 01/11 4"}));

  // Another revenue type, and a period without rows.
  auto restroom = tarifas.ConsultarPorPeriodoAgrupadaDia(DateSerial(2026, 11, 1), DateSerial(2026, 11, 1), 3);
  ASSERT_EQ(restroom->RecordCount(), 1);
  EXPECT_EQ(CLng(restroom->Fields().Item("Qt_TotalTarifa").Value()), 40);
  EXPECT_EQ(tarifas.ConsultarPorPeriodoAgrupadaDia(DateSerial(2026, 11, 2), DateSerial(2026, 11, 2), 1)->RecordCount(), 0);
}

TEST_F(cgdApuracaoReceita_TarifasTest, TheDaysBoardingsPerCompanyJoinLinesByNumberAloneAndIgnoreTheTenant) {
  Assess(1, 1, 100, 1, "2026-11-01", {{1, 10, "4.50"}, {10, 8, "1.50"}});  // the restroom line is no boarding
  Assess(1, 2, 200, 1, "2026-11-01", {{2, 3, "7.25"}});
  // Another tenant's assessment number 1, of another day: its lines join
  // number 1 of the first tenant all the same, as the statement always did.
  Assess(2, 1, 200, 1, "2026-11-05", {{1, 7, "4.50"}});
  auto rows = tarifas.ConsultarMovimentoDiaPorEmpresa(DateSerial(2026, 11, 1));
  EXPECT_EQ(db.statements.back(),
            Lines({"SELECT   A.Cd_Pessoa,", "         Sum(B.Qt_Tarifa) as Qt_TotalTarifa", "FROM     TbApuracaoReceita A",
                   "         JOIN TbApuracaoReceita_TbTarifa B On A.No_ApuracaoReceita = B.No_ApuracaoReceita",
                   "         JOIN TbPessoa C on A.Cd_Pessoa = C.Cd_Pessoa",
                   "         JOIN TbTarifa D on B.Cd_Tarifa = D.Cd_Tarifa",
                   "         JOIN tbtiporeceita E on D.cd_tiporeceita = E.cd_tiporeceita",
                   "WHERE    A.Dt_Movimento = '2026-11-01'", "         And E.Nm_TipoReceita = 'EMBARQUE'",
                   "GROUP BY A.Cd_Pessoa;"}) + "\r");
  std::map<int32_t, int32_t> boardings;
  for (; !rows->Eof(); rows->MoveNext()) {
    boardings[CLng(rows->Fields().Item("Cd_Pessoa").Value())] = CLng(rows->Fields().Item("Qt_TotalTarifa").Value());
  }
  EXPECT_EQ(boardings, (std::map<int32_t, int32_t>{{100, 17}, {200, 3}}));
}

TEST_F(cgdApuracaoReceita_TarifasTest, TheExportRunsSixQueriesAndOneUpdatePerDayOnTheWorkbooksJetConnection) {
  AssessThreeDays();
  const fs::path file = Template("Movimento.xlsx");
  db.statements.clear();
  tarifas.ExportarExcel2000(DateSerial(2026, 11, 1), DateSerial(2026, 11, 1), file.string());
  const std::string day = "2026-11-01";
  EXPECT_EQ(db.statements,
            (std::vector<std::string>{"[DADOS$]", PeriodStatement(false, day, day, 1), PeriodStatement(false, day, day, 3),
                                      PeriodStatement(false, day, day, 2), PeriodStatement(false, day, day, 4),
                                      Lines({"SELECT *", "FROM   TbFechamentoDiario",
                                             "WHERE  Dt_FechamentoDiario = '2026-11-01'"}) + "\r",
                                      PeriodStatement(true, day, day, 1), UpdateStatement(ThreeDays()[0])}));
  // Days 2 and 3: zeros for a day without assessments, no deposit without
  // a closing, half cents rounded to even.
  db.statements.clear();
  tarifas.ExportarExcel2000(DateSerial(2026, 11, 2), DateSerial(2026, 11, 3), file.string());
  ASSERT_EQ(db.statements.size(), 15u);
  EXPECT_EQ(db.statements[7], UpdateStatement(ThreeDays()[1]));
  EXPECT_EQ(db.statements[14], UpdateStatement(ThreeDays()[2]));

  // The provider wrote what the statements say: the record set of the sheet.
  auto sheet = std::make_shared<Connection>();
  sheet->Open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + file.string() + ";Extended Properties=Excel 8.0;");
  auto rows = sheet->Execute("SELECT * FROM [DADOS$]");
  ASSERT_EQ(rows->RecordCount(), 31);
  EXPECT_EQ(CDate(rows->Fields().Item("Dt_Movimento").Value()), DateSerial(2026, 11, 1));
  EXPECT_EQ(CStr(rows->Fields().Item("Vl_DepositoDia").Value()), CStr(Variant(1234.56)));
}

TEST_F(cgdApuracaoReceita_TarifasTest, BothExportsWriteEveryValueThatLibreOfficeReadsBack) {
  AssessThreeDays();
  const fs::path jet = Template("MovimentoJet.xlsx");
  const fs::path object_model = Template("MovimentoPlanilha.xlsx");
  tarifas.ExportarExcel2000(DateSerial(2026, 11, 1), DateSerial(2026, 11, 3), jet.string());
  tarifas.ExportarExcelXP(DateSerial(2026, 11, 1), DateSerial(2026, 11, 3), object_model.string());

  const auto read = testing::ReadWithLibreOffice({jet, object_model});
  for (const fs::path& file : {jet, object_model}) {
    SCOPED_TRACE(file.filename().string());
    ASSERT_TRUE(read.contains(file.string()));
    const auto& sheets = read.at(file.string());
    ASSERT_TRUE(sheets.contains("DADOS") && sheets.contains("Resumo"));
    const testing::SheetCells& data = sheets.at("DADOS");
    ASSERT_GE(data.size(), 32u);
    EXPECT_EQ(data[0], std::vector<std::string>(kMonthlyWorkbookHeadings.begin(), kMonthlyWorkbookHeadings.end()));
    std::array<int64_t, 3> month{};  // boarders, boarding cents, deposit cents
    for (const ExpectedDay& day : ThreeDays()) {
      std::vector<std::string> expected{std::to_string(day.day), (day.day < 10 ? "0" : "") + std::to_string(day.day) + "/11/2026"};
      for (int i = 0; i < 4; ++i) {
        expected.push_back(std::to_string(day.quantity[i]));
        expected.push_back(CentsText(day.cents[i]));
      }
      expected.push_back(CentsText(day.deposit_cents));
      for (int i = 0; i < 6; ++i) {
        expected.push_back(std::to_string(day.slot_quantity[i]));
        expected.push_back(CentsText(day.slot_cents[i]));
      }
      EXPECT_EQ(data[day.day], expected) << "day " << day.day;
      month[0] += day.quantity[0];
      month[1] += day.cents[0];
      month[2] += day.deposit_cents;
    }
    // The other days keep the template's empty cells.
    for (size_t row = 4; row < 32; ++row) {
      EXPECT_EQ(data[row][0], std::to_string(row));
      EXPECT_EQ(data[row][1], "") << "row " << row;
    }
    // The summary's formulas were worked out again (the template cached 0).
    const testing::SheetCells& summary = sheets.at("Resumo");
    ASSERT_GE(summary.size(), 6u);
    EXPECT_EQ(summary[0], (std::vector<std::string>{"Passageiros embarcados", std::to_string(month[0])}));
    EXPECT_EQ(summary[1], (std::vector<std::string>{"Total embarque", CentsText(month[1])}));
    EXPECT_EQ(summary[5], (std::vector<std::string>{"Total depositado", CentsText(month[2])}));
  }
}

TEST_F(cgdApuracaoReceita_TarifasTest, AWorkbookThatCantBeWrittenIsOfferedForRetryAndCancelLeavesItUntouched) {
  AssessThreeDays();
  const fs::path file = Template("SoLeitura.xlsx");
  const std::string before = FileBytes(file);
  fs::permissions(file, fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
  auto silent = std::make_shared<SilentMessageBox>();
  db.session->SetMessages(silent);

  const VekError error = ErrorOf([&] { tarifas.ExportarExcel2000(DateSerial(2026, 11, 1), DateSerial(2026, 11, 3), file.string()); });
  EXPECT_EQ(error.Number(), static_cast<int32_t>(0x80004005u));
  EXPECT_EQ(error.Description(), "The workbook " + file.string() + " is read-only");
  EXPECT_EQ(error.Source(), "Microsoft Excel Workbook -> cgdApuracaoReceita_Tarifas.ExportarRsExcel, ");
  ASSERT_EQ(silent->Messages().size(), 1u);
  EXPECT_EQ(silent->Messages()[0].title, "Erro");
  EXPECT_EQ(silent->Messages()[0].buttons, vbRetryCancel + vbExclamation + vbDefaultButton2);
  EXPECT_EQ(silent->Messages()[0].prompt,
            "Ocorreu o seguinte erro:-2147467259-The workbook " + file.string() + " is read-only Escolha uma opção");
  EXPECT_EQ(FileBytes(file), before);
  EXPECT_EQ(fs::status(file).permissions() & fs::perms::owner_write, fs::perms::none);

  // The same through the worksheet object.
  const VekError xp = ErrorOf([&] { tarifas.ExportarExcelXP(DateSerial(2026, 11, 1), DateSerial(2026, 11, 3), file.string()); });
  EXPECT_EQ(xp.Source(), "Microsoft Excel Workbook -> cgdApuracaoReceita_Tarifas.ExportarExcel, ");
  EXPECT_EQ(FileBytes(file), before);

  // Retry after the file was made writable: the export goes on and ends.
  auto retrying = std::make_shared<RetryingMessageBox>([&] {
    fs::permissions(file, fs::perms::owner_write, std::filesystem::perm_options::add);
  });
  db.session->SetMessages(retrying);
  tarifas.ExportarExcel2000(DateSerial(2026, 11, 1), DateSerial(2026, 11, 3), file.string());
  EXPECT_EQ(retrying->messages.size(), 1u);
  workbook::WorkbookFile written(file);
  EXPECT_EQ(CDbl(written.Worksheet("DADOS").Value(4, 3)), 26.82);  // day 3's boarding total
}

TEST_F(cgdApuracaoReceita_TarifasTest, AMissingFileSheetOrHeadingIsAClearErrorAndNothingIsWritten) {
  AssessThreeDays();
  auto silent = std::make_shared<SilentMessageBox>();
  db.session->SetMessages(silent);
  const fs::path missing = folder.Path() / "NaoExiste.xlsx";
  VekError error = ErrorOf([&] { tarifas.ExportarExcel2000(DateSerial(2026, 11, 1), DateSerial(2026, 11, 1), missing.string()); });
  EXPECT_EQ(error.Description(), "The workbook " + missing.string() + " does not exist");
  EXPECT_FALSE(fs::exists(missing));
  EXPECT_EQ(silent->Messages().size(), 1u);  // it might be put in place and retried

  // A heading the export needs: K1 no longer says Vl_DepositoDia.
  const fs::path renamed = Template("SemDeposito.xlsx");
  {
    workbook::WorkbookFile edit(renamed);
    edit.Worksheet("DADOS").SetValue(1, 10, Variant("Deposito"));
    edit.Save();
  }
  const std::string before = FileBytes(renamed);
  error = ErrorOf([&] { tarifas.ExportarExcel2000(DateSerial(2026, 11, 1), DateSerial(2026, 11, 1), renamed.string()); });
  EXPECT_EQ(error.Number(), static_cast<int32_t>(0x80040E10u));
  EXPECT_EQ(error.Description(), "The sheet DADOS of the workbook " + renamed.string() +
                                     " has no heading Vl_DepositoDia in its row 1.");
  EXPECT_EQ(FileBytes(renamed), before);
  EXPECT_EQ(silent->Messages().size(), 1u);  // a template's fault is not offered for retry

  // A workbook without a DADOS sheet.
  const fs::path other = folder.Path() / "Outro.xlsx";
  workbook::WritePackage(other, {{"[Content_Types].xml", "<Types xmlns=\"http://schemas.openxmlformats.org/package/2006/content-types\"/>"},
                                 {"xl/workbook.xml", "<workbook xmlns=\"http://schemas.openxmlformats.org/spreadsheetml/2006/main\"><sheets/></workbook>"}});
  for (bool object_model : {false, true}) {
    error = ErrorOf([&] {
      if (object_model) {
        tarifas.ExportarExcelXP(DateSerial(2026, 11, 1), DateSerial(2026, 11, 1), other.string());
      } else {
        tarifas.ExportarExcel2000(DateSerial(2026, 11, 1), DateSerial(2026, 11, 1), other.string());
      }
    });
    EXPECT_EQ(error.Number(), static_cast<int32_t>(0x80040E37u));
    EXPECT_EQ(error.Description(), "The workbook " + other.string() + " has no sheet DADOS.");
  }
  // A file that is no workbook at all.
  const fs::path text = folder.Path() / "Texto.xlsx";
  std::ofstream(text) << "not a workbook";
  error = ErrorOf([&] { tarifas.ExportarExcelXP(DateSerial(2026, 11, 1), DateSerial(2026, 11, 1), text.string()); });
  EXPECT_EQ(error.Description(), "The workbook " + text.string() + " could not be read as an Office Open XML workbook (.xlsx)");
  EXPECT_TRUE(error.Source().ends_with(" -> cgdApuracaoReceita_Tarifas.ExportarExcel, "));
}

}  // namespace
}  // namespace vek
