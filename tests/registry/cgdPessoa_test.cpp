#include "vek/registry/cgdPessoa.h"

#include <gtest/gtest.h>

#include <string>

#include "support/TerminalDatabase.h"
#include "vek/registry/cgdPessoaFisica.h"

namespace vek {
namespace {

class cgdPessoaTest : public ::testing::Test {
 protected:
  cgdPessoaTest() {
    db.Query("INSERT INTO TbUF (Cd_UF, Nm_UF, Sg_UF) VALUES (9, 'Goiás', 'GO')");
    db.Query("INSERT INTO TbCidade (Cd_Cidade, Nm_Cidade, Cd_UF, Sg_UF) VALUES (3, 'Goiânia', 9, 'GO')");
    db.Query("INSERT INTO TbLogradouro (Cd_Logradouro, Nm_Logradouro, Cd_Cidade) VALUES (20, 'Avenida Goiás', 3)");
    db.Query("INSERT INTO TbTipoEndereco (Cd_TipoEndereco, Nm_TipoEndereco) VALUES (1, 'Residencial')");
    db.Query("INSERT INTO TbPessoa (Cd_Pessoa, Nm_Pessoa) VALUES (7, 'Maria Souza')");
    db.Query("INSERT INTO TbPessoaFisica (Cd_Pessoa, No_CPF) VALUES (7, '123.456.789-09')");
    db.Query("INSERT INTO TbPessoaJuridica (Cd_Pessoa, No_CNPJ) VALUES (7, '12.345.678/0001-90')");
    db.Query("INSERT INTO TbEndereco (Cd_TipoEndereco, Cd_Pessoa, Cd_Logradouro) VALUES (1, 7, 20)");
    db.Query("INSERT INTO TbTelefone (Cd_Pessoa, No_TipoTelefone, No_Telefone) VALUES (7, 1, '3000-0000')");
    db.Query("INSERT INTO TbEMail (Cd_Pessoa, Ds_EMail) VALUES (7, 'maria@terminal.com.br')");
  }

  int32_t Rows(const std::string& table) {
    return db.Query("SELECT * FROM " + table + " WHERE Cd_Pessoa = 7")->RecordCount();
  }

  testing::TerminalDatabase db;
};

TEST_F(cgdPessoaTest, DeletingAPersonIsOneStatementThatLeavesItsOwnRecordsInPlace) {
  cgdPessoa pessoa;
  pessoa.Ob_cgpSistema(db.session);
  pessoa.Ob_cgp()->Let("Cd_Pessoa", Variant(7));
  pessoa.Excluir();
  EXPECT_EQ(db.statements, std::vector<std::string>{"DELETE \rFROM   TbPessoa\rWHERE  Cd_Pessoa = 7\r"});
  EXPECT_EQ(Rows("TbPessoa"), 0);
  for (const char* table : {"TbPessoaFisica", "TbPessoaJuridica", "TbEndereco", "TbTelefone", "TbEMail"}) {
    EXPECT_EQ(Rows(table), 1) << table;
  }

  // The natural-person record is still found by the code of the person that went.
  cgdPessoaFisica fisica;
  fisica.Ob_cgpSistema(db.session);
  fisica.Ob_cgp()->Let("Cd_Pessoa", Variant(7));
  EXPECT_EQ(CStr(fisica.Consultar(false)->Get("No_CPF")), "123.456.789-09");
}

}  // namespace
}  // namespace vek
