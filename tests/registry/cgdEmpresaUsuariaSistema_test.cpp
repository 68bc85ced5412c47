#include "vek/registry/cgdEmpresaUsuariaSistema.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "support/RecordingControls.h"
#include "support/TerminalDatabase.h"
#include "vek/foundation/MessageCatalogue.h"
#include "vek/platform/Controls.h"

namespace vek {
namespace {

using testing::ErrorOf;

std::string Consulta(int32_t code) {
  return testing::Lines({"SELECT A.*,", "       B.Qt_MinutosMaximoSaidaAposPagamento", "FROM   TbEmpresaUsuariaSistema A",
                         "       LEFT JOIN TbParametrosMadis B ON B.Cd_EmpresaUsuariaSistema = A.Cd_EmpresaUsuariaSistema",
                         "WHERE  A.Cd_EmpresaUsuariaSistema = " + std::to_string(code)}) +
         "\r";
}

std::string PlainSelect(int32_t code) {
  return "SELECT A.*\rFROM   TbEmpresaUsuariaSistema A\rWHERE  A.Cd_EmpresaUsuariaSistema = " + std::to_string(code) +
         "\r;\r";
}

const std::string kComboStatement =
    "SELECT   Tbempresausuariasistema.Cd_EmpresaUsuariaSistema,\r"
    "         TbPessoa.Nm_Pessoa\r"
    "FROM     TbEmpresaUsuariaSistema\r"
    "         Inner Join TbPessoa On TbEmpresaUsuariaSistema.Cd_Pessoa = TbPessoa.Cd_Pessoa\r"
    "ORDER BY TbPessoa.Nm_Pessoa\r";

// Company 1 has its access-control parameter, company 2 has none, and
// company 3's person is not there.
class cgdEmpresaUsuariaSistemaTest : public ::testing::Test {
 protected:
  cgdEmpresaUsuariaSistemaTest() {
    empresa.Ob_cgpSistema(db.session);
    db.session->SetProgress(progress);
    db.Query("INSERT INTO TbPessoa (Cd_Pessoa, Nm_Pessoa) VALUES (7, 'Viação Goiânia Terminal')");
    db.Query("INSERT INTO TbPessoa (Cd_Pessoa, Nm_Pessoa) VALUES (8, 'Rodoviária de Anápolis')");
    db.Query("INSERT INTO TbEmpresaUsuariaSistema (Cd_EmpresaUsuariaSistema, Cd_Pessoa, Nm_Terminal) "
             "VALUES (1, 7, 'Terminal Central')");
    db.Query("INSERT INTO TbEmpresaUsuariaSistema (Cd_EmpresaUsuariaSistema, Cd_Pessoa, Nm_Terminal) "
             "VALUES (2, 8, 'Terminal Norte')");
    db.Query("INSERT INTO TbEmpresaUsuariaSistema (Cd_EmpresaUsuariaSistema, Cd_Pessoa, Nm_Terminal) "
             "VALUES (3, 99, 'Terminal Sem Pessoa')");
    db.Query("INSERT INTO TbParametrosMadis (Cd_EmpresaUsuariaSistema, Qt_MinutosMaximoSaidaAposPagamento) VALUES (1, 15)");
  }

  int32_t StoredMinutes(int32_t company) {
    auto rows = db.Query("SELECT Qt_MinutosMaximoSaidaAposPagamento FROM TbParametrosMadis WHERE Cd_EmpresaUsuariaSistema = " +
                         std::to_string(company));
    return rows->RecordCount() == 0 ? -1 : CLng(rows->Fields().Item(0).Value());
  }

  testing::TerminalDatabase db;
  std::shared_ptr<testing::RecordingProgress> progress = std::make_shared<testing::RecordingProgress>();
  cgdEmpresaUsuariaSistema empresa;
};

TEST_F(cgdEmpresaUsuariaSistemaTest, ACompanyIsReadWithItsAccessControlParameterOrNull) {
  empresa.Ob_cgp()->Let("Cd_EmpresaUsuariaSistema", Variant(1));
  auto company = empresa.Consultar();
  EXPECT_EQ(db.statements, std::vector<std::string>{Consulta(1)});
  EXPECT_EQ(CStr(company->Get("Nm_Terminal")), "Terminal Central");
  EXPECT_EQ(CLng(company->Get("Cd_Pessoa")), 7);
  EXPECT_EQ(CLng(company->Get("Qt_MinutosMaximoSaidaAposPagamento")), 15);

  company->Let("Cd_EmpresaUsuariaSistema", Variant(2));
  company = empresa.Consultar(false);
  EXPECT_EQ(db.statements.back(), Consulta(2));
  EXPECT_EQ(CStr(company->Get("Nm_Terminal")), "Terminal Norte");
  EXPECT_TRUE(company->Get("Qt_MinutosMaximoSaidaAposPagamento").IsNull());

  company->Let("Cd_EmpresaUsuariaSistema", Variant(9));
  const VekError not_found = ErrorOf([&] { empresa.Consultar(false); });
  EXPECT_EQ(not_found.Number(), kErrorRecordNotFound);
  EXPECT_EQ(not_found.Source(), " -> cgdEmpresaUsuariaSistema.Consultar,  -> cgdEmpresaUsuariaSistema.Consultar, ");
  company->Let("Cd_EmpresaUsuariaSistema", Variant(0));
  const size_t sent = db.statements.size();
  EXPECT_EQ(ErrorOf([&] { empresa.Consultar(); }).Number(), kErrorNoKey);
  EXPECT_EQ(db.statements.size(), sent);
  EXPECT_EQ(empresa.nomeCamposSequencial(), std::vector<std::string>{"Cd_EmpresaUsuariaSistema"});
}

TEST_F(cgdEmpresaUsuariaSistemaTest, SavingNeverWritesTheAccessControlParameter) {
  empresa.Ob_cgp()->Let("Cd_EmpresaUsuariaSistema", Variant(1));
  auto company = empresa.Consultar();
  company->Let("Nm_Terminal", Variant("Terminal Rodoviário de Goiânia"));
  company->Let("Qt_MinutosMaximoSaidaAposPagamento", Variant(40));
  empresa.Salvar();
  EXPECT_EQ(db.statements.back(), PlainSelect(1));
  EXPECT_EQ(StoredMinutes(1), 15);
  EXPECT_EQ(CStr(db.Query("SELECT Nm_Terminal FROM TbEmpresaUsuariaSistema WHERE Cd_EmpresaUsuariaSistema = 1")
                     ->Fields()
                     .Item(0)
                     .Value()),
            "Terminal Rodoviário de Goiânia");

  // A company without a parameter row is given none.
  company->Let("Cd_EmpresaUsuariaSistema", Variant(2));
  company->Let("Qt_MinutosMaximoSaidaAposPagamento", Variant(30));
  empresa.Alterar();
  EXPECT_EQ(db.statements.back(), PlainSelect(2));
  EXPECT_EQ(StoredMinutes(2), -1);

  empresa.Ob_cgp()->RestaurarDefault();
  empresa.Ob_cgp()->Let("Cd_Pessoa", Variant(8));
  empresa.Ob_cgp()->Let("Nm_Terminal", Variant("Terminal Sul"));
  empresa.Ob_cgp()->Let("Qt_MinutosMaximoSaidaAposPagamento", Variant(20));
  empresa.Salvar();
  EXPECT_EQ(db.statements.back(), PlainSelect(0));
  const int32_t code = CLng(empresa.Ob_cgp()->Get("Cd_EmpresaUsuariaSistema"));
  EXPECT_EQ(code, 4);
  EXPECT_EQ(StoredMinutes(code), -1);
  EXPECT_TRUE(empresa.Consultar()->Get("Qt_MinutosMaximoSaidaAposPagamento").IsNull());

  empresa.Excluir();
  EXPECT_EQ(db.statements.back(), "DELETE \rFROM   TbEmpresaUsuariaSistema\rWHERE  Cd_EmpresaUsuariaSistema = 4\r");
  EXPECT_EQ(db.Query("SELECT * FROM TbEmpresaUsuariaSistema")->RecordCount(), 3);
}

TEST_F(cgdEmpresaUsuariaSistemaTest, ThePickListIgnoresTheFilterAndOffersNoChooseEntry) {
  ListComboBox combo;
  combo.AddItem("left from before");
  empresa.CarregarComboBox(combo, "Cd_EmpresaUsuariaSistema = 1");
  EXPECT_EQ(db.statements, std::vector<std::string>{kComboStatement});
  // The company without its person is left out; no "--ESCOLHA-->" before two rows.
  EXPECT_EQ(testing::EntriesOf(combo), (testing::Entries{{"Rodoviária de Anápolis", 2}, {"Viação Goiânia Terminal", 1}}));
  // No window is shown or touched.
  EXPECT_TRUE(progress->calls.empty());
  EXPECT_TRUE(progress->steps.empty());
  EXPECT_EQ(progress->Caption(), "");

  empresa.CarregarComboBox(combo, "syntax error here");
  EXPECT_EQ(db.statements.back(), kComboStatement);
  EXPECT_EQ(combo.ListCount(), 2);

  db.Query("DELETE FROM TbEmpresaUsuariaSistema WHERE Cd_EmpresaUsuariaSistema <> 1");
  empresa.CarregarComboBox(combo);
  EXPECT_EQ(testing::EntriesOf(combo), (testing::Entries{{"Viação Goiânia Terminal", 1}}));
  db.Query("DELETE FROM TbEmpresaUsuariaSistema");
  empresa.CarregarComboBox(combo);
  EXPECT_EQ(combo.ListCount(), 0);
  EXPECT_TRUE(progress->calls.empty());
}

}  // namespace
}  // namespace vek
