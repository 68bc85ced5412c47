#include "vek/db/Recordset.h"

#include <gtest/gtest.h>

#include "support/TestSupport.h"
#include "vek/db/DbError.h"

namespace vek {
namespace {

using testing::ErrorOf;
using testing::OpenMemoryDatabase;

class RecordsetTest : public ::testing::Test {
 protected:
  void SetUp() override {
    connection_ = OpenMemoryDatabase();
    connection_->Execute(
        "CREATE TABLE TbBairro (Cd_Bairro INTEGER PRIMARY KEY, Nm_Bairro VARCHAR(50) NOT NULL,"
        " Cd_Cidade INT, Dt_Cadastro DATETIME, Vl_Taxa MONEY, Qt_Vagas SMALLINT,"
        " No_Situacao TINYINT, Ic_Ativo BIT, Vl_Indice REAL)");
  }

  std::shared_ptr<Recordset> OpenForUpdate(const std::string& text) {
    auto recordset = std::make_shared<Recordset>();
    recordset->Open(text, connection_, adOpenKeyset, adLockOptimistic);
    return recordset;
  }

  std::shared_ptr<Connection> connection_;
};

TEST_F(RecordsetTest, MovingThroughNoneOneAndTwoRows) {
  // An empty record set is at both BOF and EOF.
  auto recordset = OpenForUpdate("SELECT A.* FROM TbBairro A WHERE A.Cd_Bairro = 0");
  EXPECT_EQ(recordset->State(), adStateOpen);
  EXPECT_EQ(recordset->RecordCount(), 0);
  EXPECT_TRUE(recordset->Bof());
  EXPECT_TRUE(recordset->Eof());
  EXPECT_EQ(recordset->Fields().Count(), 9);
  EXPECT_EQ(recordset->Fields().Item(1).Name(), "Nm_Bairro");
  EXPECT_EQ(ErrorOf([&] { recordset->Fields().Item("Nm_Bairro").Value(); }).Number(), 3021);
  EXPECT_EQ(ErrorOf([&] { recordset->MoveNext(); }).Number(), 3021);
  recordset->Close();
  EXPECT_EQ(recordset->State(), adStateClosed);
  EXPECT_EQ(ErrorOf([&] { recordset->Close(); }).Number(), 3704);

  connection_->Execute("INSERT INTO TbBairro (Cd_Bairro, Nm_Bairro) VALUES (1, 'Centro')");
  auto one = connection_->Execute("SELECT Nm_Bairro FROM TbBairro");
  EXPECT_EQ(one->RecordCount(), 1);
  EXPECT_FALSE(one->Bof());
  EXPECT_FALSE(one->Eof());
  one->MoveNext();
  EXPECT_TRUE(one->Eof());
  EXPECT_FALSE(one->Bof());
  EXPECT_EQ(ErrorOf([&] { one->MoveNext(); }).Number(), 3021);
  one->MovePrevious();
  EXPECT_EQ(CStr(one->Fields().Item(0).Value()), "Centro");
  one->MovePrevious();
  EXPECT_TRUE(one->Bof());
  EXPECT_EQ(ErrorOf([&] { one->MovePrevious(); }).Number(), 3021);

  connection_->Execute("INSERT INTO TbBairro (Cd_Bairro, Nm_Bairro) VALUES (2, 'Vila Nova')");
  auto two = connection_->Execute("SELECT Nm_Bairro FROM TbBairro ORDER BY Cd_Bairro");
  two->MoveLast();
  EXPECT_EQ(CStr(two->Fields().Item(0).Value()), "Vila Nova");
  EXPECT_EQ(two->AbsolutePosition(), 2);
  two->MoveFirst();
  EXPECT_EQ(CStr(two->Fields().Item(0).Value()), "Centro");
}

TEST_F(RecordsetTest, FieldsAreFoundByNameInAnyCase) {
  connection_->Execute("INSERT INTO TbBairro (Cd_Bairro, Nm_Bairro) VALUES (7, 'São João')");
  auto recordset = connection_->Execute("SELECT A.* FROM TbBairro A");
  EXPECT_EQ(CStr(recordset->Fields().Item("nm_bairro").Value()), "São João");
  EXPECT_EQ(CStr(recordset->Fields().Item("NM_BAIRRO").Value()), "São João");
  EXPECT_EQ(CLng(recordset->Fields()["Cd_Bairro"].Value()), 7);
  const VekError missing = ErrorOf([&] { recordset->Fields().Item("Nm_Cidade"); });
  EXPECT_EQ(missing.Number(), 3265);
  EXPECT_EQ(missing.Source(), "ADODB.Fields");
  EXPECT_EQ(ErrorOf([&] { recordset->Fields().Item(9); }).Number(), 3265);
  EXPECT_EQ(ErrorOf([&] { recordset->Fields().Item(-1); }).Number(), 3265);
  EXPECT_EQ(ErrorOf([&] { recordset->Fields().Item("Cd_Bairro").Properties("NOPE"); }).Number(), 3265);
}

TEST_F(RecordsetTest, FieldTypesFollowTheDeclaredColumns) {
  connection_->Execute(
      "INSERT INTO TbBairro VALUES (1, 'Centro', 3, '2026-11-21 10:30:00', 12.3456, -32768, 255, 1,"
      " 0.5)");
  auto recordset = connection_->Execute("SELECT A.* FROM TbBairro A");
  Fields& fields = recordset->Fields();
  EXPECT_EQ(fields.Item("Cd_Bairro").Type(), adInteger);
  EXPECT_EQ(fields.Item("Nm_Bairro").Type(), adVarChar);
  EXPECT_EQ(fields.Item("Nm_Bairro").DefinedSize(), 50);
  EXPECT_EQ(fields.Item("Dt_Cadastro").Type(), adDBTimeStamp);
  EXPECT_EQ(fields.Item("Dt_Cadastro").Value(), Variant(DateSerial(2026, 11, 21) + TimeSerial(10, 30, 0)));
  EXPECT_EQ(fields.Item("Vl_Taxa").Type(), adCurrency);
  EXPECT_EQ(fields.Item("Vl_Taxa").Value(), Variant(Currency::FromRaw(123456)));
  EXPECT_EQ(fields.Item("Qt_Vagas").Value(), Variant(int16_t{-32768}));
  EXPECT_EQ(fields.Item("No_Situacao").Value(), Variant(uint8_t{255}));
  EXPECT_EQ(fields.Item("Ic_Ativo").Type(), adBoolean);
  EXPECT_EQ(fields.Item("Ic_Ativo").Value(), Variant(true));
  EXPECT_EQ(fields.Item("Vl_Indice").Value(), Variant(0.5));
  EXPECT_TRUE(fields.Item("Cd_Cidade").Value() == Variant(3));

  auto expressions = connection_->Execute(
      "SELECT 1 + 1 AS Soma, 'x' AS Texto, '2026-01-05 07:03:09' AS Quando, 1.5 AS Meio, NULL AS Nada");
  Fields& computed = expressions->Fields();
  EXPECT_EQ(computed.Item("Soma").Type(), adInteger);
  EXPECT_EQ(computed.Item("Soma").Value(), Variant(2));
  EXPECT_EQ(computed.Item("Texto").Type(), adVarChar);
  // A selected literal is the text it is, even one that reads as a date.
  EXPECT_EQ(computed.Item("Quando").Type(), adVarChar);
  EXPECT_EQ(computed.Item("Quando").Value(), Variant("2026-01-05 07:03:09"));
  EXPECT_EQ(computed.Item("Meio").Type(), adNumeric);
  EXPECT_TRUE(computed.Item("Nada").Value().IsNull());
}

TEST_F(RecordsetTest, AddNewAndUpdateInsertAndBringTheIdentityBack) {
  connection_->Execute("INSERT INTO TbBairro (Cd_Bairro, Nm_Bairro) VALUES (41, 'Centro')");
  auto recordset = OpenForUpdate("SELECT A.* FROM TbBairro A WHERE A.Cd_Bairro = 0");
  EXPECT_TRUE(CBool(recordset->Fields().Item("Cd_Bairro").Properties("ISAUTOINCREMENT").Value()));
  EXPECT_FALSE(CBool(recordset->Fields().Item("Nm_Bairro").Properties("ISAUTOINCREMENT").Value()));
  recordset->AddNew();
  recordset->Fields().Item("Nm_Bairro").Value(Variant("D'Ávila"));
  recordset->Fields().Item("Dt_Cadastro").Value(Variant("21/11/2026 23:59:59"));
  recordset->Fields().Item("Vl_Taxa").Value(Variant(2.5));
  recordset->Update();
  EXPECT_EQ(recordset->Fields().Item("Cd_Bairro").Value(), Variant(42));
  EXPECT_EQ(recordset->RecordCount(), 1);
  recordset->Close();

  auto stored = connection_->Execute("SELECT Nm_Bairro, Dt_Cadastro, Vl_Taxa, Qt_Vagas FROM TbBairro WHERE Cd_Bairro = 42");
  ASSERT_EQ(stored->RecordCount(), 1);
  EXPECT_EQ(CStr(stored->Fields().Item(0).Value()), "D'Ávila");
  EXPECT_EQ(stored->Fields().Item(1).Value(), Variant(DateSerial(2026, 11, 21) + TimeSerial(23, 59, 59)));
  EXPECT_EQ(stored->Fields().Item(2).Value(), Variant(Currency::FromRaw(25000)));
  EXPECT_TRUE(stored->Fields().Item(3).Value().IsNull());  // never set: left to the database
}

TEST_F(RecordsetTest, AKeyTheCallerGivesIsNoIdentity) {
  connection_->Execute("CREATE TABLE TbEMail (Cd_Pessoa INTEGER PRIMARY KEY, Ds_EMail VARCHAR(60)) WITHOUT ROWID");
  connection_->Execute("INSERT INTO TbEMail VALUES (90, 'a@b.c')");
  auto recordset = OpenForUpdate("SELECT A.* FROM TbEMail A WHERE A.Cd_Pessoa = 0");
  EXPECT_FALSE(CBool(recordset->Fields().Item("Cd_Pessoa").Properties("ISAUTOINCREMENT").Value()));
  EXPECT_TRUE(CBool(recordset->Fields().Item("Cd_Pessoa").Properties("KEYCOLUMN").Value()));
  recordset->AddNew();
  recordset->Fields().Item("Cd_Pessoa").Value(Variant(7));
  recordset->Fields().Item("Ds_EMail").Value(Variant("x@y.z"));
  recordset->Update();
  EXPECT_EQ(recordset->Fields().Item("Cd_Pessoa").Value(), Variant(7));
  auto stored = connection_->Execute("SELECT Ds_EMail FROM TbEMail WHERE Cd_Pessoa = 7");
  EXPECT_EQ(stored->RecordCount(), 1);
}

TEST_F(RecordsetTest, UpdateWritesOnlyTheChangedFieldsOfTheRowKeyedByItsOriginalKey) {
  connection_->Execute("INSERT INTO TbBairro (Cd_Bairro, Nm_Bairro, Qt_Vagas) VALUES (1, 'Centro', 5)");
  connection_->Execute("INSERT INTO TbBairro (Cd_Bairro, Nm_Bairro, Qt_Vagas) VALUES (2, 'Vila', 6)");
  auto recordset = OpenForUpdate("SELECT A.* FROM TbBairro A WHERE A.Cd_Bairro = 1");
  // Another workstation changes a column this record set will not touch.
  connection_->Execute("UPDATE TbBairro SET Qt_Vagas = 9 WHERE Cd_Bairro = 1");
  recordset->Fields().Item("Nm_Bairro").Value(Variant("Centro Histórico"));
  recordset->Fields().Item("Cd_Bairro").Value(Variant(10));
  recordset->Update();
  recordset->Close();
  auto rows = connection_->Execute("SELECT Cd_Bairro, Nm_Bairro, Qt_Vagas FROM TbBairro ORDER BY Cd_Bairro");
  ASSERT_EQ(rows->RecordCount(), 2);
  EXPECT_EQ(CLng(rows->Fields().Item(0).Value()), 2);
  rows->MoveNext();
  EXPECT_EQ(CLng(rows->Fields().Item(0).Value()), 10);
  EXPECT_EQ(CStr(rows->Fields().Item(1).Value()), "Centro Histórico");
  EXPECT_EQ(CLng(rows->Fields().Item(2).Value()), 9);
}

TEST_F(RecordsetTest, MovingWithAPendingChangeWritesItAndCancelRestores) {
  connection_->Execute("INSERT INTO TbBairro (Cd_Bairro, Nm_Bairro) VALUES (1, 'A')");
  connection_->Execute("INSERT INTO TbBairro (Cd_Bairro, Nm_Bairro) VALUES (2, 'B')");
  auto recordset = OpenForUpdate("SELECT A.* FROM TbBairro A ORDER BY A.Cd_Bairro");
  recordset->Fields().Item("Nm_Bairro").Value(Variant("A2"));
  recordset->MoveNext();
  recordset->Fields().Item("Nm_Bairro").Value(Variant("B2"));
  EXPECT_EQ(CStr(recordset->Fields().Item("Nm_Bairro").OriginalValue()), "B");
  recordset->CancelUpdate();
  EXPECT_EQ(CStr(recordset->Fields().Item("Nm_Bairro").Value()), "B");
  auto rows = connection_->Execute("SELECT Nm_Bairro FROM TbBairro ORDER BY Cd_Bairro");
  EXPECT_EQ(CStr(rows->Fields().Item(0).Value()), "A2");
  rows->MoveNext();
  EXPECT_EQ(CStr(rows->Fields().Item(0).Value()), "B");
}

TEST_F(RecordsetTest, ValuesTakeTheFieldTypeOrAreRefused) {
  connection_->Execute("INSERT INTO TbBairro (Cd_Bairro, Nm_Bairro) VALUES (1, 'A')");
  auto recordset = OpenForUpdate("SELECT A.* FROM TbBairro A");
  Fields& fields = recordset->Fields();
  fields.Item("Qt_Vagas").Value(Variant("12"));
  EXPECT_EQ(fields.Item("Qt_Vagas").Value(), Variant(int16_t{12}));
  EXPECT_EQ(ErrorOf([&] { fields.Item("Qt_Vagas").Value(Variant(40000)); }).Number(), 6);
  EXPECT_EQ(ErrorOf([&] { fields.Item("Cd_Cidade").Value(Variant("abc")); }).Number(), 13);
  fields.Item("Cd_Cidade").Value(Variant());
  EXPECT_TRUE(fields.Item("Cd_Cidade").Value().IsNull());
  recordset->Update();

  auto read_only = connection_->Execute("SELECT A.* FROM TbBairro A");
  EXPECT_EQ(ErrorOf([&] { read_only->Fields().Item("Nm_Bairro").Value(Variant("x")); }).Number(), 3251);
  EXPECT_EQ(ErrorOf([&] { read_only->AddNew(); }).Number(), 3251);
}

TEST_F(RecordsetTest, UpdatingWithoutTheWholeKeyIsRefused) {
  connection_->Execute("CREATE TABLE TbPar (Cd_A INT NOT NULL, Cd_B INT NOT NULL, Nm VARCHAR(10), PRIMARY KEY (Cd_A, Cd_B))");
  connection_->Execute("INSERT INTO TbPar VALUES (1, 1, 'x')");
  connection_->Execute("INSERT INTO TbPar VALUES (1, 2, 'y')");
  auto partial = OpenForUpdate("SELECT Cd_A, Nm FROM TbPar WHERE Cd_B = 1");
  partial->Fields().Item("Nm").Value(Variant("z"));
  EXPECT_EQ(ErrorOf([&] { partial->Update(); }).Number(), adErrUnspecified);
  auto rows = connection_->Execute("SELECT Nm FROM TbPar ORDER BY Cd_B");
  EXPECT_EQ(CStr(rows->Fields().Item(0).Value()), "x");

  auto whole = OpenForUpdate("SELECT * FROM TbPar WHERE Cd_B = 2");
  EXPECT_FALSE(CBool(whole->Fields().Item("Cd_A").Properties("ISAUTOINCREMENT").Value()));
  whole->Fields().Item("Nm").Value(Variant("w"));
  whole->Update();
  auto after = connection_->Execute("SELECT Nm FROM TbPar ORDER BY Cd_B");
  EXPECT_EQ(CStr(after->Fields().Item(0).Value()), "x");
  after->MoveNext();
  EXPECT_EQ(CStr(after->Fields().Item(0).Value()), "w");
}

TEST_F(RecordsetTest, DetachedReportStaysReadableAfterTheConnectionCloses) {
  connection_->Execute("INSERT INTO TbBairro (Cd_Bairro, Nm_Bairro) VALUES (1, 'Centro')");
  auto report = std::make_shared<Recordset>();
  report->CursorLocation(adUseClient);
  report->Open("SELECT Nm_Bairro FROM TbBairro", connection_, adOpenStatic, adLockReadOnly);
  report->ActiveConnection(nullptr);
  connection_->Close();
  EXPECT_EQ(connection_->State(), adStateClosed);
  EXPECT_EQ(report->State(), adStateOpen);
  EXPECT_EQ(report->RecordCount(), 1);
  EXPECT_EQ(CStr(report->Fields().Item("Nm_Bairro").Value()), "Centro");
}

}  // namespace
}  // namespace vek
