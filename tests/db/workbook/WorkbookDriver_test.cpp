#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "support/TestSupport.h"
#include "vek/db/Connection.h"
#include "vek/db/Recordset.h"
#include "vek/db/workbook/WorkbookFile.h"
#include "vek/db/workbook/Worksheet.h"
#include "vek/platform/Date.h"
#include "vek/revenue/MonthlyWorkbookTemplate.h"

namespace vek {
namespace {

namespace fs = std::filesystem;
using testing::ErrorOf;

// A part of the package as unzip, another program, reads it.
std::string Part(const fs::path& file, const std::string& part) {
  std::string pattern;  // unzip reads [ and ] as a wildcard's
  for (char c : part) pattern += (c == '[' || c == ']') ? std::string("\\") + c : std::string(1, c);
  const std::string command = "unzip -p '" + file.string() + "' '" + pattern + "'";
  std::string text;
  if (FILE* pipe = ::popen(command.c_str(), "r")) {
    char buffer[4096];
    size_t read = 0;
    while ((read = std::fread(buffer, 1, sizeof buffer, pipe)) > 0) text.append(buffer, read);
    ::pclose(pipe);
  }
  return text;
}

std::string Bytes(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

// Overwrites a 4-byte field of a part's entry in the package's central
// directory (offset 16: the checksum, 24: the size unpacked), as a damaged
// or hostile file would hold it.
void OverwriteEntryField(const fs::path& file, const std::string& part, size_t field, uint32_t value) {
  std::string bytes = Bytes(file);
  const std::string signature("PK\x01\x02", 4);
  for (size_t at = bytes.find(signature); at != std::string::npos; at = bytes.find(signature, at + 4)) {
    const size_t name_length = static_cast<uint8_t>(bytes[at + 28]) | static_cast<uint8_t>(bytes[at + 29]) << 8;
    if (bytes.compare(at + 46, name_length, part) != 0) continue;
    for (size_t i = 0; i < 4; ++i) bytes[at + field + i] = static_cast<char>((value >> (8 * i)) & 0xFF);
    std::ofstream(file, std::ios::binary | std::ios::trunc) << bytes;
    return;
  }
  ADD_FAILURE() << part << " is not in " << file;
}

class WorkbookDriverTest : public ::testing::Test {
 protected:
  WorkbookDriverTest() {
    WriteMonthlyWorkbookTemplate(file);
    connection->Open("Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + file.string() + ";Extended Properties=Excel 8.0;");
  }
  testing::ScratchFolder folder;
  const fs::path file = folder.Path() / "Mensal.xlsx";
  std::shared_ptr<Connection> connection = std::make_shared<Connection>();
};

TEST_F(WorkbookDriverTest, TheSheetIsARecordSetWhoseColumnsAreItsHeadings) {
  Recordset sheet;
  sheet.Open("[DADOS$]", connection, adOpenKeyset, adLockOptimistic);
  ASSERT_EQ(sheet.Fields().Count(), 23);
  EXPECT_EQ(sheet.Fields().Item(0).Name(), "No_DiaMovimento");
  EXPECT_EQ(sheet.Fields().Item(22).Name(), "Vl_EmbarqueTarifa6");
  ASSERT_EQ(sheet.RecordCount(), 31);
  EXPECT_EQ(CLng(sheet.Fields().Item("No_DiaMovimento").Value()), 1);
  EXPECT_TRUE(sheet.Fields().Item("Dt_Movimento").Value().IsNull());
  sheet.MoveLast();
  EXPECT_EQ(CLng(sheet.Fields().Item(0).Value()), 31);
  sheet.Close();
  // A record set of the sheet is read-only: cells are written by UPDATE.
  EXPECT_EQ(connection->Execute("select * from [dados$];")->RecordCount(), 31);
}

TEST_F(WorkbookDriverTest, AnUpdateWritesExactDecimalsAndADateCellUnderADateFormat) {
  int32_t affected = 0;
  connection->Execute("UPDATE [DADOS$] \rSET    Dt_Movimento = #03/02/2026# , \r       Qt_TotalEmbarque = 17,\r"
                      "       Vl_TotalEmbarque = 12345/100 ,\r       Vl_TotalMalex = -5/100 ,\r"
                      "       Vl_DepositoDia = 0/100 \rWHERE  No_DiaMovimento = 2\r",
                      affected);
  EXPECT_EQ(affected, 1);
  const std::string sheet = Part(file, "xl/worksheets/sheet1.xml");
  // The decimals are written as decimals, never through a binary double.
  EXPECT_NE(sheet.find("<c r=\"D3\" s=\"2\"><v>123.45</v></c>"), std::string::npos) << sheet;
  EXPECT_NE(sheet.find("<c r=\"J3\" s=\"2\"><v>-0.05</v></c>"), std::string::npos);
  EXPECT_NE(sheet.find("<c r=\"K3\" s=\"2\"><v>0</v></c>"), std::string::npos);
  EXPECT_NE(sheet.find("<c r=\"C3\" s=\"3\"><v>17</v></c>"), std::string::npos);
  // 2 March 2026 is serial 46083, under the template's date style (1: dd/mm/yyyy).
  EXPECT_NE(sheet.find("<c r=\"B3\" s=\"1\"><v>46083</v></c>"), std::string::npos);
  auto rows = connection->Execute("SELECT * FROM [DADOS$]");
  rows->MoveNext();
  EXPECT_EQ(CDate(rows->Fields().Item("Dt_Movimento").Value()), DateSerial(2026, 3, 2));
  EXPECT_EQ(CDbl(rows->Fields().Item("Vl_TotalEmbarque").Value()), 123.45);

  // A row no condition finds is no error: nothing is written.
  const std::string before = Bytes(file);
  connection->Execute("UPDATE [DADOS$] SET Qt_TotalEmbarque = 1 WHERE No_DiaMovimento = 32", affected);
  EXPECT_EQ(affected, 0);
  EXPECT_EQ(Bytes(file), before);
}

TEST_F(WorkbookDriverTest, ADateInACellWithoutADateFormatGetsOneAndTheRestOfTheWorkbookIsKept) {
  // K (Vl_DepositoDia) is a money column: a date there needs a format of its own.
  connection->Execute("UPDATE [DADOS$] SET Vl_DepositoDia = #12/31/2026# WHERE No_DiaMovimento = 1");
  const std::string styles = Part(file, "xl/styles.xml");
  EXPECT_NE(styles.find("<cellXfs count=\"5\">"), std::string::npos) << styles;
  EXPECT_NE(Part(file, "xl/worksheets/sheet1.xml").find("<c r=\"K2\" s=\"4\"><v>46387</v></c>"), std::string::npos);
  workbook::WorkbookFile read(file);
  EXPECT_EQ(read.Worksheet("DADOS").Value(2, 10).Type(), VariantType::Date);
  // The other sheet keeps its formulas, without the stale results, and the
  // workbook asks for a full calculation when it opens.
  const std::string summary = Part(file, "xl/worksheets/sheet2.xml");
  EXPECT_NE(summary.find("<f>SUM(DADOS!K2:K32)</f>"), std::string::npos) << summary;
  EXPECT_EQ(summary.find("<v>"), std::string::npos);
  EXPECT_NE(Part(file, "xl/workbook.xml").find("fullCalcOnLoad=\"1\""), std::string::npos);
  EXPECT_NE(Part(file, "[Content_Types].xml").find("sheet2.xml"), std::string::npos);
}

TEST_F(WorkbookDriverTest, StatementsTheProviderDoesNotRunAndMissingHeadingsAreClearErrors) {
  VekError error = ErrorOf([&] { connection->Execute("DELETE FROM [DADOS$]"); });
  EXPECT_EQ(error.Number(), static_cast<int32_t>(0x80040E14u));
  EXPECT_EQ(error.Source(), "Microsoft Excel Workbook");
  error = ErrorOf([&] { connection->Execute("UPDATE [DADOS$] SET Qt_TotalEmbarque = WHERE No_DiaMovimento = 1"); });
  EXPECT_EQ(error.Number(), static_cast<int32_t>(0x80040E14u));
  error = ErrorOf([&] { connection->Execute("UPDATE [DADOS$] SET Qt_Nada = 1 WHERE No_DiaMovimento = 1"); });
  EXPECT_EQ(error.Number(), static_cast<int32_t>(0x80040E10u));
  EXPECT_EQ(error.Description(), "The sheet DADOS of the workbook " + file.string() + " has no heading Qt_Nada in its row 1.");
  error = ErrorOf([&] { connection->Execute("[Plan1$]"); });
  EXPECT_EQ(error.Number(), static_cast<int32_t>(0x80040E37u));
  EXPECT_EQ(error.Description(), "The workbook " + file.string() + " has no sheet Plan1.");
  // Two statements in one text are refused before anything runs.
  error = ErrorOf([&] {
    connection->Execute("UPDATE [DADOS$] SET Qt_TotalEmbarque = 1 WHERE No_DiaMovimento = 1; DELETE FROM x");
  });
  EXPECT_NE(error.Number(), 0);
  EXPECT_TRUE(Part(file, "xl/worksheets/sheet1.xml").find("<c r=\"C2\" s=\"3\"/>") != std::string::npos);
}

TEST_F(WorkbookDriverTest, TheWorksheetObjectWritesCellsThatReachTheFileWhenSaved) {
  auto book = std::make_shared<workbook::WorkbookFile>(file);
  workbook::Worksheet sheet(book, "dados");
  sheet.Activate();
  sheet.Range("B5").Value(Variant(DateSerial(2026, 3, 4)));
  sheet.Range("D5").Value(Variant(Currency(1234.5)));
  sheet.Range("X40").Value(Variant("além da tabela"));
  EXPECT_EQ(CDbl(sheet.Range("D5").Value()), 1234.5);
  EXPECT_EQ(sheet.Range("B5").Value().Type(), VariantType::Date);
  EXPECT_EQ(ErrorOf([&] { sheet.Range("B0"); }).Number(), 1004);
  EXPECT_EQ(ErrorOf([&] { sheet.Range("B2:C3"); }).Number(), 1004);
  EXPECT_EQ(Part(file, "xl/worksheets/sheet1.xml").find("1234.5"), std::string::npos);  // not saved yet
  book->Save();
  const std::string saved = Part(file, "xl/worksheets/sheet1.xml");
  EXPECT_NE(saved.find("<c r=\"D5\" s=\"2\"><v>1234.5</v></c>"), std::string::npos);
  EXPECT_NE(saved.find("<row r=\"40\"><c r=\"X40\" t=\"inlineStr\"><is><t>além da tabela</t></is></c></row>"),
            std::string::npos);
  EXPECT_NE(saved.find("<dimension ref=\"A1:X40\"/>"), std::string::npos);
  EXPECT_EQ(ErrorOf([&] { workbook::Worksheet(book, "Plan1"); }).Number(), static_cast<int32_t>(0x80040E37u));
}

TEST(WorkbookFileTest, APartThatCannotBeReadWhollyIsRefusedAsDamagedWithoutTrustingItsHeader) {
  testing::ScratchFolder folder;
  const fs::path file = folder.Path() / "Mensal.xlsx";
  // A header announcing 2.7 GB for a part of a few kilobytes, and a part
  // whose bytes do not match its checksum.
  for (const auto& [field, value] : {std::pair<size_t, uint32_t>{24, 0xA0000000u}, {16, 0x12345678u}}) {
    WriteMonthlyWorkbookTemplate(file);
    OverwriteEntryField(file, "xl/workbook.xml", field, value);
    const VekError error = ErrorOf([&] { workbook::WorkbookFile damaged(file); });
    EXPECT_EQ(error.Description(),
              "The workbook " + file.string() + " is damaged: the part xl/workbook.xml cannot be read")
        << "field " << field;
  }
}

}  // namespace
}  // namespace vek
