// The database's procedures, called as the parking members call them: on
// SQLite the C++ versions, on PostgreSQL the functions of the database.

#include "vek/schema/Procedures.h"

#include <gtest/gtest.h>

#include <string>

#include "support/TerminalDatabase.h"
#include "vek/db/Command.h"
#include "vek/db/DbError.h"

namespace vek {
namespace {

using testing::TerminalDatabase;

struct Outcome {
  int32_t retorno = -1;
  std::string erro;
  std::string aviso;
};

class ProceduresTest : public ::testing::Test {
 protected:
  // The parameters in the order and with the types the parking members append them.
  Outcome Call(const std::string& procedure, const std::string& key_name, int32_t key, int32_t company = 1) {
    auto command = std::make_shared<Command>();
    command->ActiveConnection(db_.connection);
    command->CommandText(procedure);
    command->CommandType(adCmdStoredProc);
    Parameters& parameters = command->Parameters();
    parameters.Append(command->CreateParameter("@Cd_EmpresaUsuariaSistema", adInteger, adParamInput, 0, company));
    parameters.Append(command->CreateParameter(key_name, adInteger, adParamInput, 0, key));
    parameters.Append(command->CreateParameter("@No_Retorno", adInteger, adParamOutput));
    parameters.Append(command->CreateParameter("@Ds_Erro", adVarChar, adParamOutput, 300));
    parameters.Append(command->CreateParameter("@Ds_Aviso", adVarChar, adParamOutput, 5000));
    command->Execute();
    return {CLng(parameters.Item("@No_Retorno").Value()), CStr(parameters.Item("@Ds_Erro").Value()),
            CStr(parameters.Item("@Ds_Aviso").Value())};
  }

  int32_t Count(const std::string& from_where) {
    return CLng(db_.Query("SELECT Count(*) FROM " + from_where)->Fields().Item(0).Value());
  }

  void AddClient(int32_t client, const std::string& name) {
    db_.Query("INSERT INTO TbPessoa (Cd_Pessoa, Nm_Pessoa, No_TipoPessoa) VALUES (" + std::to_string(client) +
              ", '" + name + "', 1)");
    db_.Query("INSERT INTO TbClienteEstacionamento (Cd_EmpresaUsuariaSistema, Cd_ClienteEstacionamento) VALUES (1, " +
              std::to_string(client) + ")");
  }

  TerminalDatabase db_;
};

TEST_F(ProceduresTest, TicketReleaseUnblocksTheGatesCodeOfTheTicket) {
  db_.Query("INSERT INTO TbTicketEstacionamento (Cd_EmpresaUsuariaSistema, Cd_TicketEstacionamento, No_Situacao, "
            "Ds_Ticket) VALUES (1, 10, 1, '12345678901234'), (1, 11, 1, '1234567890123'), (1, 12, 1, NULL), "
            "(1, 13, 1, '99999999999990')");
  db_.Query("INSERT INTO MDESTACIONAMENTO.dbo.CARTOESAVULSOSBLOQUEADOS (CODIGOCARTAO) "
            "VALUES ('1234567890123'), ('5555555555555')");
  db_.Query("INSERT INTO MDESTACIONAMENTO.dbo.CARTOESAVULSOS (CODIGOCARTAO, DATAHORAENTRADA) "
            "VALUES ('1234567890123', '2026-11-21 08:00:00')");
  const std::string name = "TicketEstacionamento_LiberarTicketMadis";

  const Outcome released = Call(name, "@Cd_TicketEstacionamento", 10);
  EXPECT_EQ(released.retorno, 0);
  EXPECT_EQ(released.erro, "");
  EXPECT_EQ(released.aviso, "");
  EXPECT_EQ(Count("MDESTACIONAMENTO.dbo.CARTOESAVULSOSBLOQUEADOS WHERE CODIGOCARTAO = '1234567890123'"), 0);
  EXPECT_EQ(Count("MDESTACIONAMENTO.dbo.CARTOESAVULSOSBLOQUEADOS"), 1);
  // The client sees the call only, whatever the procedure runs inside.
  EXPECT_EQ(db_.statements, (std::vector<std::string>{name}));

  const Outcome unseen = Call(name, "@Cd_TicketEstacionamento", 13);
  EXPECT_EQ(unseen.retorno, 0);
  EXPECT_EQ(unseen.aviso, "Ticket 9999999999999 sem entrada registrada na Madis");

  const Outcome missing = Call(name, "@Cd_TicketEstacionamento", 10, 2);
  EXPECT_EQ(missing.retorno, 1);
  EXPECT_EQ(missing.erro, "Ticket de estacionamento não encontrado");
  for (const int32_t short_code : {11, 12}) {
    const Outcome refused = Call(name, "@Cd_TicketEstacionamento", short_code);
    EXPECT_EQ(refused.retorno, 2) << short_code;
    EXPECT_EQ(refused.erro, "Ticket sem código de acesso da Madis");
    EXPECT_EQ(refused.aviso, "");
  }
}

TEST_F(ProceduresTest, ClientPushKeepsTheGatesCountAndRemovalTakesTheCardsAlong) {
  AddClient(7, "Ana D''Ávila");
  const std::string update = "ClienteEstacionamento_AtualizarClienteMadis";
  const std::string remove = "ClienteEstacionamento_ExcluirClienteMadis";

  EXPECT_EQ(Call(update, "@Cd_ClienteEstacionamento", 7).retorno, 0);
  auto client = db_.Query("SELECT NOME, VAGASEMUSO FROM MDESTACIONAMENTO.dbo.CLIENTE "
                          "WHERE IDEMPRESACADASTRO = 1 And IDCLIENTE = 7");
  ASSERT_FALSE(client->Eof());
  EXPECT_EQ(CStr(client->Fields().Item("NOME").Value()), "Ana D'Ávila");
  EXPECT_EQ(CLng(client->Fields().Item("VAGASEMUSO").Value()), 0);

  // A second push renames the client and leaves the vacancies the gates count.
  db_.Query("UPDATE MDESTACIONAMENTO.dbo.CLIENTE SET VAGASEMUSO = 2");
  db_.Query("UPDATE TbPessoa SET Nm_Pessoa = 'Ana Souza' WHERE Cd_Pessoa = 7");
  EXPECT_EQ(Call(update, "@Cd_ClienteEstacionamento", 7).aviso, "");
  EXPECT_EQ(Count("MDESTACIONAMENTO.dbo.CLIENTE WHERE NOME = 'Ana Souza' And VAGASEMUSO = 2"), 1);

  const Outcome unknown = Call(update, "@Cd_ClienteEstacionamento", 8);
  EXPECT_EQ(unknown.retorno, 1);
  EXPECT_EQ(unknown.erro, "Cliente de estacionamento não encontrado");

  db_.Query("INSERT INTO MDESTACIONAMENTO.dbo.CLIENTECARTAO (IDEMPRESACADASTRO, IDCLIENTE, IDEMPRESACARTAO, "
            "IDCARTAO, CODIGOCARTAO) VALUES (1, 7, 1, 70, 700), (1, 7, 1, 71, 710), (2, 7, 2, 72, 720)");
  const Outcome removed = Call(remove, "@Cd_ClienteEstacionamento", 7);
  EXPECT_EQ(removed.retorno, 0);
  EXPECT_EQ(removed.aviso, "");
  EXPECT_EQ(Count("MDESTACIONAMENTO.dbo.CLIENTE"), 0);
  // Only the cards the client holds in this company go.
  EXPECT_EQ(Count("MDESTACIONAMENTO.dbo.CLIENTECARTAO"), 1);
  const Outcome again = Call(remove, "@Cd_ClienteEstacionamento", 7);
  EXPECT_EQ(again.retorno, 0);
  EXPECT_EQ(again.aviso, "Cliente não cadastrado na Madis");
}

TEST_F(ProceduresTest, CardPushChecksItsClientAndCodeAndWithdrawsInactiveCards) {
  AddClient(7, "Ana");
  AddClient(8, "Bruno");
  db_.Query("INSERT INTO TbCartaoEstacionamento (Cd_EmpresaUsuariaSistema, Cd_CartaoEstacionamento, "
            "Cd_ClienteEstacionamento, Ds_IdentificacaoCartao, Nm_Portador, Ic_Ativo) VALUES "
            "(1, 70, 7, ' 000123456 ', 'Carlos', -1), (1, 71, 8, '555', 'Dora', 1), "
            "(1, 72, 7, 'A-12', 'Eva', 1), (1, 73, 7, '1234567890', 'Fábio', 1)");
  Call("ClienteEstacionamento_AtualizarClienteMadis", "@Cd_ClienteEstacionamento", 7);
  const std::string update = "CartaoEstacionamento_AtualizarClienteCartaoMadis";
  const std::string remove = "CartaoEstacionamento_ExcluirClienteCartaoMadis";

  EXPECT_EQ(Call(update, "@Cd_CartaoEstacionamento", 70).retorno, 0);
  auto card = db_.Query("SELECT IDEMPRESACADASTRO, IDCLIENTE, CODIGOCARTAO, NOMEPROPRIETARIO "
                        "FROM MDESTACIONAMENTO.dbo.CLIENTECARTAO WHERE IDEMPRESACARTAO = 1 And IDCARTAO = 70");
  ASSERT_FALSE(card->Eof());
  EXPECT_EQ(CLng(card->Fields().Item("IDCLIENTE").Value()), 7);
  EXPECT_EQ(CLng(card->Fields().Item("CODIGOCARTAO").Value()), 123456);
  EXPECT_EQ(CStr(card->Fields().Item("NOMEPROPRIETARIO").Value()), "Carlos");

  db_.Query("UPDATE TbCartaoEstacionamento SET Nm_Portador = 'Carla' WHERE Cd_CartaoEstacionamento = 70");
  EXPECT_EQ(Call(update, "@Cd_CartaoEstacionamento", 70).retorno, 0);
  EXPECT_EQ(Count("MDESTACIONAMENTO.dbo.CLIENTECARTAO WHERE NOMEPROPRIETARIO = 'Carla'"), 1);

  const Outcome missing = Call(update, "@Cd_CartaoEstacionamento", 99);
  EXPECT_EQ(missing.retorno, 1);
  EXPECT_EQ(missing.erro, "Cartão de estacionamento não encontrado");
  const Outcome client_unknown = Call(update, "@Cd_CartaoEstacionamento", 71);
  EXPECT_EQ(client_unknown.retorno, 2);
  EXPECT_EQ(client_unknown.erro, "Cliente do cartão não cadastrado na Madis");
  for (const int32_t bad_code : {72, 73}) {
    const Outcome refused = Call(update, "@Cd_CartaoEstacionamento", bad_code);
    EXPECT_EQ(refused.retorno, 3) << bad_code;
    EXPECT_EQ(refused.erro, "Identificação do cartão não é numérica");
  }
  EXPECT_EQ(Count("MDESTACIONAMENTO.dbo.CLIENTECARTAO"), 1);

  db_.Query("UPDATE TbCartaoEstacionamento SET Ic_Ativo = 0 WHERE Cd_CartaoEstacionamento = 70");
  const Outcome withdrawn = Call(update, "@Cd_CartaoEstacionamento", 70);
  EXPECT_EQ(withdrawn.retorno, 0);
  EXPECT_EQ(withdrawn.aviso, "Cartão inativo retirado da Madis");
  EXPECT_EQ(Count("MDESTACIONAMENTO.dbo.CLIENTECARTAO"), 0);

  db_.Query("INSERT INTO MDESTACIONAMENTO.dbo.CLIENTECARTAO (IDEMPRESACADASTRO, IDCLIENTE, IDEMPRESACARTAO, "
            "IDCARTAO, CODIGOCARTAO) VALUES (1, 7, 1, 74, 740)");
  EXPECT_EQ(Call(remove, "@Cd_CartaoEstacionamento", 74).aviso, "");
  EXPECT_EQ(Count("MDESTACIONAMENTO.dbo.CLIENTECARTAO"), 0);
  const Outcome unknown = Call(remove, "@Cd_CartaoEstacionamento", 74);
  EXPECT_EQ(unknown.retorno, 0);
  EXPECT_EQ(unknown.aviso, "Cartão não cadastrado na Madis");
}

TEST_F(ProceduresTest, AnUnknownProcedureIsASyntaxErrorOfTheProvider) {
  const VekError error = testing::ErrorOf([&] { Call("Procedimento_Inexistente", "@Cd", 1); });
  EXPECT_EQ(error.Number(), adErrSyntax);
  EXPECT_EQ(error.Source(), testing::ProviderSource());
  EXPECT_NE(error.Description().find(testing::NameInMessage("Procedimento_Inexistente")), std::string::npos)
      << error.Description();
}

}  // namespace
}  // namespace vek
