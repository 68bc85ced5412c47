#include "vek/registry/cgdUsuario.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/TerminalDatabase.h"
#include "vek/foundation/MessageCatalogue.h"

namespace vek {
namespace {

using testing::ErrorOf;

const std::string kHead = "SELECT A.*\rFROM   TbUsuario A\rWHERE  A.Cd_EmpresaUsuariaSistema = ";

class cgdUsuarioTest : public ::testing::Test {
 protected:
  cgdUsuarioTest() {
    usuario.Ob_cgpSistema(db.session);
    db.Query("INSERT INTO TbPessoa (Cd_Pessoa, Nm_Pessoa) VALUES (7, 'Maria Souza')");
    db.Query("INSERT INTO TbPessoa (Cd_Pessoa, Nm_Pessoa) VALUES (8, 'Pedro Lima')");
  }

  // Maria has a login in both companies, with another password in each.
  void AddUsers() {
    AddUser(1, 1, "maria", "X9#a", 7);
    AddUser(1, 2, "pedro", "Q1!z", 8);
    AddUser(2, 1, "maria", "Z0z0", 7);
  }

  void AddUser(int32_t company, int32_t code, const std::string& name, const std::string& password,
               int32_t person) {
    db.Query("INSERT INTO TbUsuario (Cd_EmpresaUsuariaSistema, Cd_Usuario, Nm_Usuario, Ds_CriptoSenha, Cd_Pessoa) "
             "VALUES (" + std::to_string(company) + ", " + std::to_string(code) + ", '" + name + "', '" + password +
             "', " + std::to_string(person) + ")");
  }

  // A user object as a login form fills it.
  void Fill(int32_t company, int32_t code, const std::string& name, const std::string& password, int32_t person) {
    auto user = usuario.Ob_cgp();
    user->RestaurarDefault();
    user->Let("Cd_EmpresaUsuariaSistema", Variant(company));
    user->Let("Cd_Usuario", Variant(code));
    user->Let("Nm_Usuario", Variant(name));
    user->Let("Ds_CriptoSenha", Variant(password));
    user->Let("Cd_Pessoa", Variant(person));
  }

  testing::TerminalDatabase db;
  cgdUsuario usuario;
};

TEST_F(cgdUsuarioTest, TheCodeComesBeforeTheLoginAndTheLoginBeforeThePerson) {
  AddUsers();
  Fill(1, 2, "maria", "X9#a", 7);
  EXPECT_EQ(CStr(usuario.Consultar()->Get("Nm_Usuario")), "pedro");
  EXPECT_EQ(db.statements.back(), kHead + "1\r       And  A.Cd_Usuario = 2\r;\r");

  Fill(1, 0, "maria", "X9#a", 8);
  EXPECT_EQ(CLng(usuario.Consultar()->Get("Cd_Usuario")), 1);
  EXPECT_EQ(db.statements.back(), kHead + "1\r       And  A.Nm_Usuario = 'maria'\r       And  A.Ds_CriptoSenha = 'X9#a'\r");
  EXPECT_EQ(CLng(usuario.Ob_cgp()->Get("Cd_Pessoa")), 7);  // the stored person, not the one asked

  Fill(1, 0, "", "Q1!z", 8);
  EXPECT_EQ(CStr(usuario.Consultar()->Get("Nm_Usuario")), "pedro");
  EXPECT_EQ(db.statements.back(), kHead + "1\r       And  A.Cd_Pessoa = 8\r       And  A.Ds_CriptoSenha = 'Q1!z'\r");

  // Each company has its own users.
  Fill(2, 0, "maria", "Z0z0", 0);
  auto other_company = usuario.Consultar();
  EXPECT_EQ(CLng(other_company->Get("Cd_EmpresaUsuariaSistema")), 2);
  EXPECT_EQ(CLng(other_company->Get("Cd_Usuario")), 1);
  Fill(2, 0, "maria", "X9#a", 0);
  EXPECT_EQ(CLng(usuario.Consultar()->Get("Cd_Usuario")), 0);
}

TEST_F(cgdUsuarioTest, WithoutCodeAndPasswordThereIsNothingToLookUpBy) {
  AddUsers();
  for (const auto& [name, person] : std::vector<std::pair<std::string, int32_t>>{{"maria", 0}, {"maria", 7}, {"", 7}}) {
    Fill(1, 0, name, "", person);
    const VekError no_key = ErrorOf([&] { usuario.Consultar(); });
    EXPECT_EQ(no_key.Number(), static_cast<int32_t>(0x80040201u)) << name << person;
    EXPECT_EQ(no_key.Source(), " -> cgdUsuario.Consultar,  -> cgdUsuario.Consultar, ");
    EXPECT_EQ(ErrorOf([&] { usuario.Alterar(); }).Number(), kErrorNoKey);
  }
  EXPECT_TRUE(db.statements.empty());
}

TEST_F(cgdUsuarioTest, AWrongPasswordIsAUserNotFound) {
  AddUsers();
  Fill(1, 0, "maria", "errada", 7);
  auto returned = usuario.Consultar();
  EXPECT_EQ(returned, usuario.Ob_cgp());
  EXPECT_EQ(CLng(returned->Get("Cd_Usuario")), 0);
  EXPECT_EQ(CStr(returned->Get("Nm_Usuario")), "");  // reset to its defaults
  EXPECT_EQ(CLng(returned->Get("Cd_EmpresaUsuariaSistema")), 0);

  Fill(1, 0, "maria", "errada", 7);
  const VekError not_found = ErrorOf([&] { usuario.Consultar(false); });
  EXPECT_EQ(not_found.Number(), static_cast<int32_t>(0x80040202u));
  EXPECT_EQ(not_found.Source(), " -> cgdUsuario.Consultar,  -> cgdUsuario.Consultar, ");
}

TEST_F(cgdUsuarioTest, ANameOrPasswordWithAnApostropheIsRefusedBeforeAnyStatement) {
  AddUsers();
  struct Case {
    std::string name, password;
    int32_t person;
    std::string field;
  };
  for (const Case& c : {Case{"o'brien", "x", 0, "Nm_Usuario"}, Case{"maria", "a' OR '1'='1", 0, "Ds_CriptoSenha"},
                        Case{"", "a'b", 7, "Ds_CriptoSenha"}}) {
    Fill(1, 0, c.name, c.password, c.person);
    const VekError refused = ErrorOf([&] { usuario.Consultar(); });
    EXPECT_EQ(refused.Number(), static_cast<int32_t>(0x80040458u)) << c.name << c.password;
    EXPECT_NE(refused.Description().find(c.field), std::string::npos) << refused.Description();
    Fill(1, 0, c.name, c.password, c.person);
    EXPECT_EQ(ErrorOf([&] { usuario.Salvar(); }).Number(), kBusinessError);
  }
  EXPECT_TRUE(db.statements.empty());
  EXPECT_EQ(db.Query("SELECT * FROM TbUsuario")->RecordCount(), 3);
}

TEST_F(cgdUsuarioTest, AnEmptyUserTableIsTheFirstAccessOfTheWholeInstallation) {
  EXPECT_TRUE(usuario.EPrimeiroAcesso());
  EXPECT_EQ(db.statements, std::vector<std::string>{"SELECT A.*\rFROM   TbUsuario A\r"});
  AddUser(2, 5, "outra", "s", 8);  // a user of another company counts too
  EXPECT_FALSE(usuario.EPrimeiroAcesso());
}

TEST_F(cgdUsuarioTest, DeletingTakesTheCompanyAndTheCode) {
  AddUsers();
  Fill(1, 1, "", "", 0);
  usuario.Excluir();
  EXPECT_EQ(db.statements,
            std::vector<std::string>{"DELETE \rFROM   TbUsuario\rWHERE  Cd_EmpresaUsuariaSistema = 1\r"
                                     "       And  Cd_Usuario = 1\r"});
  auto rows = db.Query("SELECT Cd_EmpresaUsuariaSistema, Cd_Usuario FROM TbUsuario ORDER BY 1, 2");
  ASSERT_EQ(rows->RecordCount(), 2);
  EXPECT_EQ(CLng(rows->Fields().Item(0).Value()), 1);
  EXPECT_EQ(CLng(rows->Fields().Item(1).Value()), 2);
  rows->MoveNext();
  EXPECT_EQ(CLng(rows->Fields().Item(0).Value()), 2);  // the other company's user 1 stays

  // A login is no key for deleting.
  Fill(1, 0, "pedro", "Q1!z", 8);
  EXPECT_EQ(ErrorOf([&] { usuario.Excluir(); }).Number(), kErrorNoKey);
  EXPECT_EQ(CStr(usuario.Ob_cgp()->Get("Nm_Usuario")), "");
  EXPECT_EQ(db.statements.size(), 1u);
}

TEST_F(cgdUsuarioTest, NewUsersOfEveryCompanyAreNumberedFromTheOneCounterOfCd_Usuario) {
  AddUsers();
  db.Query("INSERT INTO TbSequenciadores (Nm_Atributo, No_Sequencial) VALUES ('Cd_Usuario', 2)");
  const std::string empty = kHead + "0\r       And  A.Cd_Usuario = 0\r;\r";

  Fill(1, 0, "joão", "s3nh@", 7);
  usuario.Salvar();
  EXPECT_EQ(CLng(usuario.Ob_cgp()->Get("Cd_Usuario")), 3);
  // The login was looked up first and not found.
  EXPECT_EQ(db.statements.front(), kHead + "1\r       And  A.Nm_Usuario = 'joão'\r       And  A.Ds_CriptoSenha = 's3nh@'\r");
  EXPECT_EQ(db.statements.back(), empty);

  Fill(2, 0, "ana", "", 0);
  usuario.Salvar();
  EXPECT_EQ(CLng(usuario.Ob_cgp()->Get("Cd_Usuario")), 4);
  EXPECT_EQ(db.statements.back(), empty);
  EXPECT_EQ(CLng(db.Query("SELECT No_Sequencial FROM TbSequenciadores WHERE Nm_Atributo = 'Cd_Usuario'")
                     ->Fields()
                     .Item(0)
                     .Value()),
            4);

  // A code given by the caller is kept and takes no number.
  Fill(2, 9, "bia", "b", 0);
  usuario.Salvar();
  EXPECT_EQ(CLng(usuario.Ob_cgp()->Get("Cd_Usuario")), 9);

  auto rows = db.Query("SELECT Cd_EmpresaUsuariaSistema, Cd_Usuario, Nm_Usuario FROM TbUsuario "
                       "WHERE Cd_Usuario > 2 ORDER BY Cd_Usuario");
  ASSERT_EQ(rows->RecordCount(), 3);
  EXPECT_EQ(CStr(rows->Fields().Item(2).Value()), "joão");
  EXPECT_EQ(CLng(rows->Fields().Item(0).Value()), 1);
  rows->MoveNext();
  EXPECT_EQ(CLng(rows->Fields().Item(0).Value()), 2);
  EXPECT_EQ(CStr(rows->Fields().Item(2).Value()), "ana");
}

TEST_F(cgdUsuarioTest, ChangingAPasswordKeepsTheUsersCode) {
  AddUsers();
  Fill(1, 0, "pedro", "Q1!z", 8);
  usuario.Consultar();
  usuario.Ob_cgp()->Let("Ds_CriptoSenha", Variant("N0v@"));
  usuario.Salvar();
  EXPECT_EQ(db.statements.back(), kHead + "1\r       And  A.Cd_Usuario = 2\r;\r");
  auto rows = db.Query("SELECT Cd_Usuario FROM TbUsuario WHERE Ds_CriptoSenha = 'N0v@'");
  ASSERT_EQ(rows->RecordCount(), 1);
  EXPECT_EQ(CLng(rows->Fields().Item(0).Value()), 2);
  EXPECT_EQ(db.Query("SELECT * FROM TbUsuario")->RecordCount(), 3);
  EXPECT_EQ(usuario.nomeCamposSequencial(), std::vector<std::string>{"Cd_Usuario"});
}

}  // namespace
}  // namespace vek
