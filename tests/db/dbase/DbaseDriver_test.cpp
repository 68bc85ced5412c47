// The dBase provider behind the Visual FoxPro connection string, checked on
// the bytes of the files it writes.

#include <gtest/gtest.h>

#include <unistd.h>

#include <clocale>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "support/DbfFile.h"
#include "support/TestSupport.h"
#include "vek/db/Connection.h"
#include "vek/db/DbError.h"
#include "vek/platform/Clock.h"
#include "vek/platform/Date.h"

namespace vek {
namespace {

namespace fs = std::filesystem;
using testing::ErrorOf;

using testing::DbfFile;

class DbaseDriverTest : public ::testing::Test {
 protected:
  DbaseDriverTest() {
    connection->SetClock(std::make_shared<FixedClock>(DateSerial(2026, 11, 24) + TimeSerial(9, 0, 0)));
    connection->Open("Driver={Microsoft Visual FoxPro Driver};SourceType=DBF;SourceDB=" + folder.Path().string() +
                     ";Exclusive=No");
    connection->Execute("CREATE TABLE Titulos FREE (NOME C(6), CIDADE C(12), VALOR N(10,2), FRACAO N(8,4), "
                        "QTD N(3,0), DATA D, ATIVO L)");
    connection->OnStatement([this](const std::string& text) { statements.push_back(text); });
  }

  int32_t Run(const std::string& text) {
    int32_t affected = -2;
    connection->Execute(text, affected);
    return affected;
  }
  DbfFile File() const { return DbfFile(folder.Path() / "Titulos.dbf"); }

  testing::ScratchFolder folder;
  std::shared_ptr<Connection> connection = std::make_shared<Connection>();
  std::vector<std::string> statements;
};

TEST_F(DbaseDriverTest, ANewTableIsAnEmptyWindows1252DbaseFileWithItsCodePageFile) {
  const DbfFile file = File();
  EXPECT_EQ(static_cast<uint8_t>(file.bytes[0]), 0x03);  // dBase III, as every reader takes it
  EXPECT_EQ(file.Records(), 0u);
  EXPECT_EQ(file.LanguageByte(), 0x03);  // Windows ANSI, code page 1252
  EXPECT_EQ(file.Word(10, 2), 1u + 6 + 12 + 10 + 8 + 3 + 8 + 1);
  std::ifstream cpg(folder.Path() / "Titulos.cpg");
  std::string code_page;
  std::getline(cpg, code_page);
  EXPECT_EQ(code_page, "1252");
  // Field 3 is VALOR N(10,2): name, type, width and decimals in its descriptor.
  EXPECT_EQ(file.bytes.substr(32 + 2 * 32, 5), "VALOR");
  EXPECT_EQ(file.bytes[32 + 2 * 32 + 11], 'N');
  EXPECT_EQ(static_cast<uint8_t>(file.bytes[32 + 2 * 32 + 16]), 10);
  EXPECT_EQ(static_cast<uint8_t>(file.bytes[32 + 2 * 32 + 17]), 2);

  const VekError again = ErrorOf([&] { Run("CREATE TABLE titulos (X C(1))"); });
  EXPECT_EQ(again.Number(), adErrUnspecified);
  EXPECT_EQ(again.Source(), "dBase");
  EXPECT_NE(again.Description().find("already exists"), std::string::npos) << again.Description();
}

TEST_F(DbaseDriverTest, InsertWritesEachValueInItsFieldsOwnForm) {
  // The process runs with a decimal comma: the file still gets points.
  testing::LocaleGuard brazil(testing::kBrazilLocale);
  const char* c_locale = std::setlocale(LC_NUMERIC, "pt_BR.UTF-8");
  const std::string insert =
      "INSERT Into TITULOS (NOME, CIDADE, VALOR, FRACAO, QTD, DATA, ATIVO)VALUES ('São Paulo', 'Conceição', "
      "12345 / 100 , 2 / 3, 7, '21/11/2026', .T.)";
  EXPECT_EQ(Run(insert), 1);
  EXPECT_EQ(Run("insert into Titulos (valor, cidade, fracao, data) values (-5 / 100, 'Itaú d''Oeste', "
                "(1 + 1.5) * 2 / 1000, '')"),
            1);
  // A character Windows-1252 lacks becomes "?"; the euro sign is there (0x80).
  EXPECT_EQ(Run("INSERT INTO Titulos VALUES ('Łódź€', Null, 0.005, 1 / 3, 999, '29/02/2028', .F.);"), 1);
  if (c_locale) std::setlocale(LC_NUMERIC, "C");

  const DbfFile file = File();
  ASSERT_EQ(file.Records(), 3u);
  // Texts in Windows-1252, cut at the width by characters: "São Pa" is six
  // characters and six bytes.
  EXPECT_EQ(file.Record(0), std::string(" S\xE3o PaConcei\xE7\xE3o   ") + "    123.45" + "  0.6667" + "  7" +
                                "20261121" + "T");
  // Fields left out and Null are blank; a doubled quote is one quote; '' is no date.
  EXPECT_EQ(file.Record(1), std::string(" ") + "      " + "Ita\xFA d'Oeste" + "     -0.05" + "  0.0050" + "   " +
                                "        " + " ");
  // Rounded half away from zero into the field's decimals.
  EXPECT_EQ(file.Record(2), std::string(" ?\xF3" "d?\x80 ") + "            " + "      0.01" + "  0.3333" + "999" +
                                "20280229" + "F");
  // The hook saw the statements as they were given.
  EXPECT_EQ(statements.at(0), insert);
}

TEST_F(DbaseDriverTest, AValueThatDoesNotFitItsFieldOrTypeIsRefusedAndAddsNoRecord) {
  Run("INSERT INTO Titulos (NOME, QTD) VALUES ('ok', 1)");
  const auto refused = [&](const std::string& text, const std::string& wanted) {
    const VekError error = ErrorOf([&] { Run(text); });
    EXPECT_EQ(error.Number(), adErrUnspecified) << text;
    EXPECT_EQ(error.Source(), "dBase") << text;
    EXPECT_NE(error.Description().find(wanted), std::string::npos) << text << ": " << error.Description();
    return error.Description();
  };
  // Too many digits: never cut, never an exponent, never asterisks.
  const std::string overflow = refused("INSERT INTO Titulos (NOME, QTD) VALUES ('no', 1000)", "Numeric overflow");
  EXPECT_NE(overflow.find("QTD (N(3,0))"), std::string::npos) << overflow;
  EXPECT_NE(overflow.find("table Titulos, record 2"), std::string::npos) << overflow;
  refused("INSERT INTO Titulos (VALOR) VALUES (123456789 / 100 * 1000)", "field VALOR (N(10,2))");
  refused("INSERT INTO Titulos (QTD) VALUES (-100)", "Numeric overflow");
  refused("INSERT INTO Titulos (QTD) VALUES ('12')", "Data type mismatch: field QTD (N(3,0))");
  refused("INSERT INTO Titulos (NOME) VALUES (12)", "Data type mismatch: field NOME (C(6))");
  refused("INSERT INTO Titulos (DATA) VALUES ('31/02/2026')", "'31/02/2026' is not a date (dd/mm/yyyy) for field DATA");
  refused("INSERT INTO Titulos (DATA) VALUES ('2026-11-21')", "is not a date");
  refused("INSERT INTO Titulos (VALOR) VALUES (1 / 0)", "Division by zero");
  refused("INSERT INTO Titulos (SOBRENOME) VALUES ('x')", "Field 'SOBRENOME' is not found in table Titulos");
  refused("INSERT INTO Titulos (NOME, QTD) VALUES ('x')", "names 2 fields of Titulos and gives 1 values");
  refused("INSERT INTO Titulos VALUES ('x')", "Table Titulos has 7 fields");
  // An unclosed quote is refused by the connection's guard before the provider reads it.
  EXPECT_NE(ErrorOf([&] { Run("INSERT INTO Titulos (NOME) VALUES ('x"); }).Description().find("Unterminated string"),
            std::string::npos);
  refused("SELECT * FROM Titulos", "CREATE TABLE, DELETE FROM and INSERT INTO only");
  refused("DELETE FROM Titulos WHERE QTD = 1", "DELETE with a condition is not supported");
  EXPECT_EQ(File().Records(), 1u);
}

TEST_F(DbaseDriverTest, DeleteMarksEveryRecordDeletedAndInsertAppendsAfterThem) {
  Run("INSERT INTO Titulos (NOME) VALUES ('a')");
  Run("INSERT INTO Titulos (NOME) VALUES ('b')");
  EXPECT_EQ(Run("DELETE  FROM Titulos"), 2);
  EXPECT_EQ(Run("DELETE  FROM titulos.dbf"), 0);  // already deleted
  Run("INSERT INTO Titulos (NOME) VALUES ('c')");
  const DbfFile file = File();
  ASSERT_EQ(file.Records(), 3u);
  EXPECT_EQ(file.Record(0).substr(0, 2), "*a");
  EXPECT_EQ(file.Record(1).substr(0, 2), "*b");
  EXPECT_EQ(file.Record(2).substr(0, 2), " c");
  // The header carries the day of the last write, from the connection's clock.
  EXPECT_EQ(file.Word(1, 3), (126u) | (11u << 8) | (24u << 16));
}

TEST_F(DbaseDriverTest, AHeaderAnnouncingMoreRecordsThanTheFileHoldsIsADamagedTable) {
  Run("INSERT INTO Titulos (NOME) VALUES ('a')");
  const fs::path table = folder.Path() / "Titulos.dbf";
  const auto before = fs::file_size(table);
  {
    // The record count (bytes 4-7) says two billion records.
    std::fstream file(table, std::ios::binary | std::ios::in | std::ios::out);
    file.seekp(4);
    const char count[4] = {'\x00', '\x00', '\x00', '\x7f'};
    file.write(count, 4);
  }
  for (const char* statement : {"DELETE  FROM Titulos", "INSERT INTO Titulos (NOME) VALUES ('b')"}) {
    const VekError error = ErrorOf([&] { Run(statement); });
    EXPECT_EQ(error.Source(), "dBase");
    EXPECT_NE(error.Description().find("is damaged"), std::string::npos) << error.Description();
  }
  EXPECT_EQ(fs::file_size(table), before);
}

TEST(DbaseDriver, AMissingFolderOrTableIsTheProvidersErrorNamingIt) {
  testing::ScratchFolder folder;
  auto connection = std::make_shared<Connection>();
  const std::string missing = (folder.Path() / "nowhere").string();
  VekError error = ErrorOf([&] {
    connection->Open("Driver={Microsoft Visual FoxPro Driver};SourceType=DBF;SourceDB=" + missing + ";Exclusive=No");
  });
  EXPECT_EQ(error.Number(), adErrUnspecified);
  EXPECT_EQ(error.Source(), "dBase");
  EXPECT_EQ(error.Description(), "Invalid path: the folder '" + missing + "' (SourceDB) does not exist.");
  EXPECT_EQ(connection->State(), adStateClosed);

  error = ErrorOf([&] {
    connection->Open("Driver={Microsoft Visual FoxPro Driver};SourceType=DBC;SourceDB=" + folder.Path().string());
  });
  EXPECT_NE(error.Description().find("SourceType=DBF"), std::string::npos) << error.Description();

  connection->Open("Driver={Microsoft Visual FoxPro Driver};SourceType=DBF;SourceDB=" + folder.Path().string() +
                   ";Exclusive=No");
  error = ErrorOf([&] { connection->Execute("DELETE  FROM SE1"); });
  EXPECT_EQ(error.Description(), "File 'se1.dbf' does not exist in " + folder.Path().string() + ".");

  // A table in another code page is not written with the wrong bytes.
  connection->Execute("CREATE TABLE Dos (NOME C(10))");
  {
    std::fstream file(folder.Path() / "Dos.dbf", std::ios::in | std::ios::out | std::ios::binary);
    file.seekp(29);
    file.put(static_cast<char>(0x02));  // DOS code page 850
  }
  fs::remove(folder.Path() / "Dos.cpg");
  error = ErrorOf([&] { connection->Execute("INSERT INTO Dos (NOME) VALUES ('São Paulo')"); });
  EXPECT_NE(error.Description().find("is not in Windows-1252"), std::string::npos) << error.Description();

  // A read-only table is refused when written, not half-written.
  fs::permissions(folder.Path() / "Dos.dbf", fs::perms::owner_read, fs::perm_options::replace);
  if (::geteuid() != 0) {
    error = ErrorOf([&] { connection->Execute("DELETE  FROM Dos"); });
    EXPECT_NE(error.Description().find("Cannot open table Dos"), std::string::npos) << error.Description();
  }
}

}  // namespace
}  // namespace vek
