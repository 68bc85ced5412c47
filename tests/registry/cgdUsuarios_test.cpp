#include "vek/registry/cgdUsuarios.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/TerminalDatabase.h"
#include "vek/platform/Controls.h"

namespace vek {
namespace {

std::string GridStatement(const std::string& where_line) {
  return "SELECT   A.Cd_Usuario,\r"
         "         B.Nm_Pessoa,\r"
         "         A.Nm_Usuario\r"
         "FROM     TbUsuario A\r"
         "         Left Join TbPessoa B on A.Cd_Pessoa = B.Cd_Pessoa\r" +
         where_line + "ORDER BY A.Nm_Usuario\r;\r";
}

class cgdUsuariosTest : public ::testing::Test {
 protected:
  cgdUsuariosTest() {
    usuarios.Ob_cgpSistema(db.session);
    db.Query("INSERT INTO TbPessoa (Cd_Pessoa, Nm_Pessoa) VALUES (7, 'Maria Souza')");
    db.Query("INSERT INTO TbPessoa (Cd_Pessoa, Nm_Pessoa) VALUES (8, 'Pedro Lima')");
    db.Query("INSERT INTO TbUsuario (Cd_EmpresaUsuariaSistema, Cd_Usuario, Nm_Usuario, Cd_Pessoa) "
             "VALUES (1, 1, 'maria', 7)");
    db.Query("INSERT INTO TbUsuario (Cd_EmpresaUsuariaSistema, Cd_Usuario, Nm_Usuario, Cd_Pessoa) "
             "VALUES (1, 2, 'pedro', 8)");
    db.Query("INSERT INTO TbUsuario (Cd_EmpresaUsuariaSistema, Cd_Usuario, Nm_Usuario) VALUES (2, 3, 'caixa')");
  }

  testing::TerminalDatabase db;
  cgdUsuarios usuarios;
  ListGrid grid;
  TextBox count;
};

TEST_F(cgdUsuariosTest, ListsTheUsersOfEveryCompanyByLoginName) {
  usuarios.CarregarMSFlexGridDeBusca(grid, count);
  EXPECT_EQ(db.statements, std::vector<std::string>{GridStatement("")});
  // A user without a person keeps its line, with an empty name.
  EXPECT_EQ(grid.Lines(), (std::vector<std::string>{"\t3\t\tcaixa", "\t1\tMaria Souza\tmaria", "\t2\tPedro Lima\tpedro"}));
  EXPECT_EQ(count.Text(), "3");

  ListGrid filtered;
  usuarios.CarregarMSFlexGridDeBusca(filtered, count, "A.Cd_EmpresaUsuariaSistema = 2");
  EXPECT_EQ(db.statements.back(), GridStatement("WHERE A.Cd_EmpresaUsuariaSistema = 2\r"));
  EXPECT_EQ(filtered.Lines(), std::vector<std::string>{"\t3\t\tcaixa"});
  EXPECT_EQ(count.Text(), "1");

  ListGrid none;
  usuarios.CarregarMSFlexGridDeBusca(none, count, "B.Nm_Pessoa = 'Ninguém'");
  EXPECT_TRUE(none.Lines().empty());
  EXPECT_EQ(count.Text(), "0");
}

TEST_F(cgdUsuariosTest, ABadFilterFailsWithTheDatabasesError) {
  const VekError error = testing::ErrorOf([&] { usuarios.CarregarMSFlexGridDeBusca(grid, count, "A.Ds_Senha = 'x'"); });
  EXPECT_EQ(error.Number(), static_cast<int32_t>(0x80040E14u));
  EXPECT_NE(error.Description().find(testing::NameInMessage("Ds_Senha")), std::string::npos) << error.Description();
  EXPECT_EQ(error.Source(), testing::ProviderSource() + " -> cgdUsuarios.CarregarMSFlexGridDeBusca, ");
  EXPECT_TRUE(grid.Lines().empty());
}

}  // namespace
}  // namespace vek
