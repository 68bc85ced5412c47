#include "vek/registry/cgdPessoas.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/TerminalDatabase.h"
#include "vek/platform/Controls.h"

namespace vek {
namespace {

std::string GridStatement(const std::string& where_line) {
  return "SELECT   A.Cd_Pessoa,\r"
         "         A.Nm_Pessoa,\r"
         "         B.No_CPF,\r"
         "         C.No_CNPJ\r"
         "FROM     TbPessoa A\r"
         "         Left Join TbPessoaFisica B On A.Cd_Pessoa = B.Cd_Pessoa\r"
         "         Left Join TbPessoaJuridica C On A.Cd_Pessoa = C.Cd_Pessoa\r" +
         where_line +
         "ORDER BY A.Nm_Pessoa,\r"
         "         A.Cd_Pessoa\r"
         ";\r";
}

class cgdPessoasTest : public ::testing::Test {
 protected:
  cgdPessoasTest() {
    pessoas.Ob_cgpSistema(db.session);
    // Two namesakes, a company, and a person with neither record.
    db.Query("INSERT INTO TbPessoa (Cd_Pessoa, Nm_Pessoa) VALUES (12, 'José da Silva')");
    db.Query("INSERT INTO TbPessoa (Cd_Pessoa, Nm_Pessoa) VALUES (5, 'José da Silva')");
    db.Query("INSERT INTO TbPessoa (Cd_Pessoa, Nm_Pessoa) VALUES (7, 'Viação Araguaína')");
    db.Query("INSERT INTO TbPessoa (Cd_Pessoa, Nm_Pessoa) VALUES (9, 'Ana Sem Documento')");
    db.Query("INSERT INTO TbPessoaFisica (Cd_Pessoa, No_CPF) VALUES (12, '123.456.789-09')");
    db.Query("INSERT INTO TbPessoaFisica (Cd_Pessoa, No_CPF) VALUES (5, '987.654.321-00')");
    db.Query("INSERT INTO TbPessoaJuridica (Cd_Pessoa, No_CNPJ) VALUES (7, '12.345.678/0001-90')");
  }

  testing::TerminalDatabase db;
  cgdPessoas pessoas;
  ListGrid grid;
  TextBox count;
};

TEST_F(cgdPessoasTest, TheGridShowsEachPersonsDocumentsInNameThenCodeOrder) {
  pessoas.CarregarMSFlexGridDeBusca(grid, count);
  EXPECT_EQ(db.statements, std::vector<std::string>{GridStatement("")});
  EXPECT_EQ(grid.Lines(), (std::vector<std::string>{"\t9\tAna Sem Documento\t\t",
                                                    "\t5\tJosé da Silva\t987.654.321-00\t",
                                                    "\t12\tJosé da Silva\t123.456.789-09\t",
                                                    "\t7\tViação Araguaína\t\t12.345.678/0001-90"}));
  EXPECT_EQ(count.Text(), "4");

  ListGrid companies;
  pessoas.CarregarMSFlexGridDeBusca(companies, count, "C.No_CNPJ Is Not Null");
  EXPECT_EQ(db.statements.back(), GridStatement("WHERE C.No_CNPJ Is Not Null\r"));
  EXPECT_EQ(companies.Lines(), std::vector<std::string>{"\t7\tViação Araguaína\t\t12.345.678/0001-90"});
  EXPECT_EQ(count.Text(), "1");

  ListGrid none;
  pessoas.CarregarMSFlexGridDeBusca(none, count, "A.Nm_Pessoa Like 'Zé%'");
  EXPECT_TRUE(none.Lines().empty());
  EXPECT_EQ(count.Text(), "0");
}

TEST_F(cgdPessoasTest, ABadFilterFailsWithTheDatabasesErrorAndTheLoadersLink) {
  const VekError error = testing::ErrorOf([&] { pessoas.CarregarMSFlexGridDeBusca(grid, count, "A.No_RG = '1'"); });
  EXPECT_EQ(error.Number(), static_cast<int32_t>(0x80040E14u));
  EXPECT_NE(error.Description().find(testing::NameInMessage("No_RG")), std::string::npos) << error.Description();
  EXPECT_EQ(error.Source(), testing::ProviderSource() + " -> cgdPessoas.CarregarMSFlexGridDeBusca, ");
  EXPECT_TRUE(grid.Lines().empty());
  EXPECT_EQ(count.Text(), "");
}

}  // namespace
}  // namespace vek
