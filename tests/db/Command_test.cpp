#include "vek/db/Command.h"

#include <gtest/gtest.h>

#include <climits>

#include "support/TestSupport.h"
#include "vek/db/DbError.h"

namespace vek {
namespace {

using testing::ErrorOf;
using testing::OpenMemoryDatabase;

TEST(Command, StoredProcedureSetsItsOutputParameters) {
  auto connection = OpenMemoryDatabase();
  connection->Execute("CREATE TABLE TbTicket (Cd_Ticket INT PRIMARY KEY, No_Situacao INT)");
  connection->Execute("INSERT INTO TbTicket VALUES (5, 1)");
  connection->RegisterProcedure("Ticket_Liberar", [](Connection& db, Parameters& parameters) {
    const int32_t ticket = CLng(parameters.Item("@Cd_Ticket").Value());
    int32_t affected = 0;
    db.Execute("UPDATE TbTicket SET No_Situacao = 2 WHERE Cd_Ticket = " + std::to_string(ticket), affected);
    parameters.Item("@No_Retorno").Value(affected == 1 ? 0 : 1);
    parameters.Item("Ds_Erro").Value(affected == 1 ? "" : "Ticket não encontrado");
  });
  std::vector<std::string> seen;
  connection->OnStatement([&](const std::string& text) { seen.push_back(text); });

  const auto run = [&](int32_t ticket) {
    auto command = std::make_shared<Command>();
    command->ActiveConnection(connection);
    command->CommandText("Ticket_Liberar");
    command->CommandType(adCmdStoredProc);
    command->Parameters().Append(command->CreateParameter("@Cd_Ticket", adInteger, adParamInput, 0, ticket));
    command->Parameters().Append(command->CreateParameter("@No_Retorno", adInteger, adParamOutput));
    command->Parameters().Append(command->CreateParameter("@Ds_Erro", adVarChar, adParamOutput, 300));
    auto result = command->Execute();
    EXPECT_EQ(result->State(), adStateClosed);
    return command;
  };
  auto done = run(5);
  EXPECT_EQ(CLng(done->Parameters().Item("@No_Retorno").Value()), 0);
  auto missing = run(6);
  EXPECT_EQ(CLng(missing->Parameters().Item(1).Value()), 1);
  EXPECT_EQ(CStr(missing->Parameters().Item("@DS_ERRO").Value()), "Ticket não encontrado");
  // The hook sees the call, not the statements the procedure runs.
  EXPECT_EQ(seen, (std::vector<std::string>{"Ticket_Liberar", "Ticket_Liberar"}));
  EXPECT_EQ(ErrorOf([&] { missing->Parameters().Item("@Nada"); }).Number(), 3265);

  auto unknown = std::make_shared<Command>();
  unknown->ActiveConnection(connection);
  unknown->CommandText("Nao_Existe");
  unknown->CommandType(adCmdStoredProc);
  EXPECT_EQ(ErrorOf([&] { unknown->Execute(); }).Number(), adErrSyntax);
}

TEST(Command, ParametersRoundTripQuotesNullsAndIntegerLimits) {
  auto connection = OpenMemoryDatabase();
  connection->Execute("CREATE TABLE T (Id INTEGER PRIMARY KEY, Nm VARCHAR(50), Qt INT, Dt DATETIME)");
  auto insert = std::make_shared<Command>();
  insert->ActiveConnection(connection);
  insert->CommandText("INSERT INTO T (Nm, Qt, Dt) VALUES (?, ?, ?)");
  insert->Parameters().Append(insert->CreateParameter("Nm", adVarChar, adParamInput, 50, "O'Neil; DROP TABLE T --"));
  insert->Parameters().Append(insert->CreateParameter("Qt", adInteger, adParamInput, 0, INT32_MIN));
  insert->Parameters().Append(insert->CreateParameter("Dt", adDBTimeStamp, adParamInput, 0, Variant::Null()));
  int32_t affected = 0;
  insert->Execute(affected);
  EXPECT_EQ(affected, 1);
  insert->Parameters().Item("Nm").Value(Variant::Null());
  insert->Parameters().Item("Qt").Value(INT32_MAX);
  insert->Parameters().Item("Dt").Value(DateSerial(2024, 2, 29) + TimeSerial(0, 0, 0));
  insert->Execute();

  auto select = std::make_shared<Command>();
  select->ActiveConnection(connection);
  select->CommandText("SELECT Nm, Qt, Dt FROM T WHERE Id >= ? ORDER BY Id");
  select->Parameters().Append(select->CreateParameter("Id", adInteger, adParamInput, 0, 1));
  auto rows = select->Execute();
  ASSERT_EQ(rows->RecordCount(), 2);
  EXPECT_EQ(CStr(rows->Fields().Item("Nm").Value()), "O'Neil; DROP TABLE T --");
  EXPECT_EQ(CLng(rows->Fields().Item("Qt").Value()), INT32_MIN);
  EXPECT_TRUE(rows->Fields().Item("Dt").Value().IsNull());
  rows->MoveNext();
  EXPECT_TRUE(rows->Fields().Item("Nm").Value().IsNull());
  EXPECT_EQ(CLng(rows->Fields().Item("Qt").Value()), INT32_MAX);
  EXPECT_EQ(rows->Fields().Item("Dt").Value(), Variant(DateSerial(2024, 2, 29)));

  select->Parameters().Delete(0);
  EXPECT_EQ(ErrorOf([&] { select->Execute(); }).Number(), adErrUnspecified);  // a parameter short
}

}  // namespace
}  // namespace vek
