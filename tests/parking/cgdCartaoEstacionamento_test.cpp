#include "vek/parking/cgdCartaoEstacionamento.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "parking/ParkingData.h"
#include "support/RecordingControls.h"
#include "vek/foundation/MessageCatalogue.h"
#include "vek/platform/Controls.h"

namespace vek {
namespace {

using testing::CountOf;
using testing::ErrorOf;
using testing::Lines;

class cgdCartaoEstacionamentoTest : public ::testing::Test {
 protected:
  cgdCartaoEstacionamentoTest() {
    cartao.Ob_cgpSistema(db.session);
    db.session->SetMessages(messages);
    testing::AddTariff(db, 30, "MENSAL", "200");
    db.Query("INSERT INTO TbPessoa (Cd_Pessoa, Nm_Pessoa) VALUES (500, 'Ana Souza'), (501, 'Bruno Lima')");
    db.Query("INSERT INTO TbClienteEstacionamento (Cd_EmpresaUsuariaSistema, Cd_ClienteEstacionamento, Cd_Tarifa) "
             "VALUES (1, 500, 30), (1, 501, 30)");
  }

  std::shared_ptr<cgpCartaoEstacionamento> NewCard(int32_t client, const std::string& code, const std::string& holder) {
    auto card = std::make_shared<cgpCartaoEstacionamento>();
    card->Let("Cd_EmpresaUsuariaSistema", Variant(1));
    card->Let("Cd_ClienteEstacionamento", Variant(client));
    card->Let("Ds_IdentificacaoCartao", Variant(code));
    card->Let("Nm_Portador", Variant(holder));
    card->Let("Nm_CartaoEstacionamentoo", Variant("CARTAO " + code));
    card->Let("Ic_Ativo", Variant(true));
    cartao.Ob_cgp(card);
    cartao.Salvar();
    return card;
  }

  testing::TerminalDatabase db;
  std::shared_ptr<SilentMessageBox> messages = std::make_shared<SilentMessageBox>();
  cgdCartaoEstacionamento cartao;
};

TEST_F(cgdCartaoEstacionamentoTest, TheUpdateReadsTheCardNumberBetweenQuotesTheQueryAndDeleteBare) {
  auto card = NewCard(500, "1001", "Ana");
  const int32_t number = CLng(card->Get("Cd_CartaoEstacionamento"));
  ASSERT_GT(number, 0);
  const std::string n = std::to_string(number);
  card->Let("Nm_Portador", Variant("Ana Souza"));
  cartao.Salvar();
  EXPECT_EQ(db.statements.back(), Lines({"SELECT A.*", "FROM   TbCartaoEstacionamento A",
                                         "WHERE  A.Cd_EmpresaUsuariaSistema = 1",
                                         "       And Cd_CartaoEstacionamento = '" + n + "'", ";"}) +
                                      "\r");
  EXPECT_EQ(CountOf(db, "TbCartaoEstacionamento WHERE Nm_Portador = 'Ana Souza'"), 1);
  card->Let("Nm_Portador", Variant(""));
  cartao.Consultar(false);
  EXPECT_EQ(db.statements.back(), Lines({"SELECT A.*", "FROM   TbCartaoEstacionamento A",
                                         "WHERE  A.Cd_EmpresaUsuariaSistema = 1",
                                         "       and A.Cd_CartaoEstacionamento = " + n, ";"}) +
                                      "\r");
  EXPECT_EQ(CStr(card->Get("Nm_Portador")), "Ana Souza");
  cartao.Excluir();
  EXPECT_EQ(db.statements.back(), Lines({"DELETE ", "FROM   TbCartaoEstacionamento", "WHERE  Cd_EmpresaUsuariaSistema = 1",
                                         "       And Cd_CartaoEstacionamento = " + n}) +
                                      "\r");
  EXPECT_EQ(CountOf(db, "TbCartaoEstacionamento"), 0);

  db.statements.clear();
  card->Let("Ds_IdentificacaoCartao", Variant("10'01"));
  const VekError refused = ErrorOf([&] { cartao.Salvar(); });
  EXPECT_EQ(refused.Number(), kBusinessError);
  EXPECT_NE(refused.Description().find("Ds_IdentificacaoCartao"), std::string::npos);
  EXPECT_TRUE(db.statements.empty());
}

TEST_F(cgdCartaoEstacionamentoTest, TheCompanysCardsArePickedByNameAndListedByClientAndHolder) {
  ListComboBox combo;
  cartao.Ob_cgp()->Let("Cd_EmpresaUsuariaSistema", Variant(1));
  cartao.CarregarComboBox(combo);
  EXPECT_EQ(db.statements.back(), Lines({"SELECT   *", "FROM     TbCartaoEstacionamento",
                                         "WHERE    Cd_EmpresaUsuariaSistema = 1", "ORDER BY Nm_CartaoEstacionamentoo"}) +
                                      "\r");
  EXPECT_EQ(testing::EntriesOf(combo), (testing::Entries{{"NENHUM", 0}}));
  EXPECT_EQ(messages->Messages().back().prompt, "Não existe nenhuma cor cadastrada");

  const int32_t bruno = CLng(NewCard(501, "2001", "Bruno")->Get("Cd_CartaoEstacionamento"));
  const int32_t ana_b = CLng(NewCard(500, "1002", "Beatriz")->Get("Cd_CartaoEstacionamento"));
  const int32_t ana_a = CLng(NewCard(500, "1001", "Ana")->Get("Cd_CartaoEstacionamento"));
  cartao.CarregarComboBox(combo);
  EXPECT_EQ(testing::EntriesOf(combo), (testing::Entries{{"--ESCOLHA-->", 0},
                                                         {"CARTAO 1001", ana_a},
                                                         {"CARTAO 1002", ana_b},
                                                         {"CARTAO 2001", bruno}}));
  ListGrid grid;
  TextBox count;
  cartao.CarregarMSFlexGridDeBusca(grid, count);
  EXPECT_EQ(db.statements.back(),
            Lines({"SELECT   TbCartaoEstacionamento.Cd_CartaoEstacionamento,",
                   "         TbCartaoEstacionamento.Ds_IdentificacaoCartao,", "         TbPessoa.Nm_Pessoa,",
                   "         TbCartaoEstacionamento.Nm_Portador", "From     TbCartaoEstacionamento",
                   "         INNER JOIN TbPessoa ON TbPessoa.Cd_Pessoa = TbCartaoEstacionamento.Cd_ClienteEstacionamento",
                   "Where    TbCartaoEstacionamento.Cd_EmpresaUsuariaSistema = 1", "ORDER BY TbPessoa.Nm_Pessoa,",
                   "         TbCartaoEstacionamento.Nm_Portador"}) +
                "\r");
  EXPECT_EQ(grid.Lines(), (std::vector<std::string>{"\t" + std::to_string(ana_a) + "\t1001\tAna Souza\tAna",
                                                    "\t" + std::to_string(ana_b) + "\t1002\tAna Souza\tBeatriz",
                                                    "\t" + std::to_string(bruno) + "\t2001\tBruno Lima\tBruno"}));
  EXPECT_EQ(count.Text(), "3");
}

TEST_F(cgdCartaoEstacionamentoTest, ACardReachesTheGatesOnlyWhenItsClientIsThere) {
  auto card = NewCard(500, "1001", "Ana");
  std::string aviso;
  const VekError refused = ErrorOf([&] { cartao.AtualizarClienteCartaoMadis(aviso); });
  EXPECT_EQ(refused.Number(), kBusinessError);
  EXPECT_EQ(refused.Description(), "Cliente do cartão não cadastrado na Madis");
  EXPECT_EQ(db.statements.back(), "CartaoEstacionamento_AtualizarClienteCartaoMadis");

  db.Query("INSERT INTO MDESTACIONAMENTO.dbo.CLIENTE (IDEMPRESACADASTRO, IDCLIENTE, NOME, VAGASEMUSO) "
           "VALUES (1, 500, 'ANA', 0)");
  cartao.AtualizarClienteCartaoMadis(aviso);
  EXPECT_EQ(aviso, "");
  EXPECT_EQ(CountOf(db, "MDESTACIONAMENTO.dbo.CLIENTECARTAO WHERE CODIGOCARTAO = 1001 And IDCLIENTE = 500"), 1);
  cartao.ExcluirClienteCartaoMadis(aviso);
  EXPECT_EQ(db.statements.back(), "CartaoEstacionamento_ExcluirClienteCartaoMadis");
  EXPECT_EQ(CountOf(db, "MDESTACIONAMENTO.dbo.CLIENTECARTAO"), 0);
  cartao.ExcluirClienteCartaoMadis(aviso);
  EXPECT_EQ(aviso, "Cartão não cadastrado na Madis");
}

}  // namespace
}  // namespace vek
