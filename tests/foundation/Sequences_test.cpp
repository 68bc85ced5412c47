#include "vek/foundation/Sequences.h"

#include <gtest/gtest.h>

#include <set>
#include <thread>

#include "support/TerminalDatabase.h"
#include "vek/foundation/MessageCatalogue.h"

namespace vek {
namespace {

using testing::ErrorOf;

TEST(cgdSequenciadores, KeepsTheCounterRowUnderItsTextKey) {
  testing::TerminalDatabase db;
  cgdSequenciadores sequencia;
  sequencia.Ob_cgpSistema(db.session);
  EXPECT_FALSE(sequencia.temCampoSequencial());
  EXPECT_TRUE(sequencia.nomeCamposSequencial().empty());

  sequencia.Ob_cgp()->Let("Nm_Atributo", Variant("Cd_Linha"));
  auto fresh = sequencia.Consultar();  // a fresh attribute comes back with defaults
  EXPECT_EQ(CLng(fresh->Get("No_Sequencial")), 0);
  EXPECT_EQ(db.statements.back(), "SELECT A.*\rFROM   TbSequenciadores A\rWHERE  A.Nm_Atributo = 'Cd_Linha'\r;\r");

  sequencia.Ob_cgp()->Let("Nm_Atributo", Variant("Cd_Linha"));
  sequencia.Ob_cgp()->Let("No_Sequencial", Variant(41));
  sequencia.Salvar();
  EXPECT_EQ(db.statements[db.statements.size() - 2],
            "SELECT A.*\rFROM   TbSequenciadores A\rWHERE  A.Nm_Atributo = 'Cd_Linha'\r;\r");
  EXPECT_EQ(db.statements.back(), "SELECT A.*\rFROM   TbSequenciadores A\rWHERE  A.Nm_Atributo = ''\r;\r");
  sequencia.Ob_cgp()->RestaurarDefault();
  sequencia.Ob_cgp()->Let("Nm_Atributo", Variant("cd_linha"));
  EXPECT_EQ(CLng(sequencia.Consultar(false)->Get("No_Sequencial")), 41);

  sequencia.Excluir();
  // The row's own spelling came back with Consultar.
  EXPECT_EQ(db.statements.back(), "DELETE \rFROM   TbSequenciadores\rWHERE  Nm_Atributo = 'Cd_Linha'\r");
  sequencia.Ob_cgp()->Let("Nm_Atributo", Variant(""));
  EXPECT_EQ(ErrorOf([&] { sequencia.Consultar(); }).Number(), kErrorNoKey);
}

TEST(cgdSequenciadores, ANameWithAnApostropheIsRefusedBeforeAnySql) {
  testing::TerminalDatabase db;
  cgdSequenciadores sequencia;
  sequencia.Ob_cgpSistema(db.session);
  sequencia.Ob_cgp()->Let("Nm_Atributo", Variant("Cd_'X"));
  const VekError refused = ErrorOf([&] { sequencia.Consultar(); });
  EXPECT_EQ(refused.Number(), kBusinessError);
  EXPECT_NE(refused.Description().find("Nm_Atributo"), std::string::npos);
  EXPECT_EQ(refused.Source(), " -> cgdSequenciadores.Consultar, ");
  EXPECT_EQ(ErrorOf([&] { sequencia.Excluir(); }).Number(), kBusinessError);
  EXPECT_TRUE(db.statements.empty());
}

TEST(NextSequenceValue, CountsFromOnePerAttribute) {
  testing::TerminalDatabase db;
  EXPECT_EQ(NextSequenceValue(*db.session, "Cd_Horario"), 1);
  EXPECT_EQ(NextSequenceValue(*db.session, "Cd_Horario"), 2);
  EXPECT_EQ(NextSequenceValue(*db.session, "Cd_Viagem"), 1);
  EXPECT_EQ(NextSequenceValue(*db.session, "Cd_Horario"), 3);
  EXPECT_EQ(ErrorOf([&] { NextSequenceValue(*db.session, ""); }).Number(), kErrorNoKey);
}

// Several workstations (each its own connection to one file) take numbers
// at once: none may get a number another got.
TEST(NextSequenceValue, NoTwoWorkstationsGetTheSameNumber) {
  testing::ScratchFolder folder;
  const std::string file = (folder.Path() / "Vek.db").string();
  {
    auto setup = std::make_shared<Connection>();
    setup->Open(file);
    schema::CreateDatabase(*setup);
  }
  constexpr int kWorkstations = 4;
  constexpr int kNumbersEach = 40;
  std::vector<std::vector<int32_t>> taken(kWorkstations);
  std::vector<std::thread> workstations;
  for (int w = 0; w < kWorkstations; ++w) {
    workstations.emplace_back([&, w] {
      cgpSistema session;
      session.Let("Ds_CaminhoDB", Variant(file));
      session.AbrirConexao();
      for (int i = 0; i < kNumbersEach; ++i) taken[w].push_back(NextSequenceValue(session, "Cd_Horario"));
    });
  }
  for (std::thread& workstation : workstations) workstation.join();
  std::set<int32_t> all;
  for (const auto& numbers : taken) all.insert(numbers.begin(), numbers.end());
  EXPECT_EQ(all.size(), static_cast<size_t>(kWorkstations * kNumbersEach));
  EXPECT_EQ(*all.begin(), 1);
  EXPECT_EQ(*all.rbegin(), kWorkstations * kNumbersEach);
}

}  // namespace
}  // namespace vek
