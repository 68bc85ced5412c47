// The registry's plain pick lists: one table, its names in order, the
// "--ESCOLHA-->" entry before more than one row, a progress window under the
// list's own caption.

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "support/RecordingControls.h"
#include "support/TerminalDatabase.h"
#include "vek/platform/Controls.h"
#include "vek/registry/cgdCidades.h"
#include "vek/registry/cgdLogradouros.h"
#include "vek/registry/cgdTiposEndereco.h"
#include "vek/registry/cgdTiposLogradouro.h"
#include "vek/registry/cgdTitulosEPatentes.h"

namespace vek {
namespace {

using testing::Entries;

using Loader = std::function<void(std::shared_ptr<cgpSistema>, ComboBox&, const std::string&)>;

template <class List>
Loader Load() {
  return [](std::shared_ptr<cgpSistema> session, ComboBox& combo, const std::string& filter) {
    List list;
    list.Ob_cgpSistema(std::move(session));
    list.CarregarComboBox(combo, filter);
  };
}

struct PickList {
  std::string class_name;
  Loader load;
  std::string table, code, name, caption;
};

void PrintTo(const PickList& list, std::ostream* out) { *out << list.class_name; }

const std::vector<PickList>& PickLists() {
  static const std::vector<PickList> lists = {
      {"cgdCidades", Load<cgdCidades>(), "TbCidade", "Cd_Cidade", "Nm_Cidade", "Carregando as cidades"},
      {"cgdLogradouros", Load<cgdLogradouros>(), "TbLogradouro", "Cd_Logradouro", "Nm_Logradouro",
       "Carregando os logradouros"},
      {"cgdTiposLogradouro", Load<cgdTiposLogradouro>(), "TbTipoLogradouro", "Cd_TipoLogradouro", "Nm_TipoLogradouro",
       "Carregando os tipos de logradouro"},
      {"cgdTitulosEPatentes", Load<cgdTitulosEPatentes>(), "TbTituloEPatente", "Cd_TituloEPatente",
       "Nm_TituloEPatente", "Carregando os títulos e patentes"},
      {"cgdTiposEndereco", Load<cgdTiposEndereco>(), "TbTipoEndereco", "Cd_TipoEndereco", "Nm_TipoEndereco",
       "Carregando os tipos de endereço"},
  };
  return lists;
}

class PickListTest : public ::testing::TestWithParam<PickList> {
 protected:
  PickListTest() { db.session->SetProgress(progress); }

  void Insert(int32_t code, const std::string& name) {
    const PickList& list = GetParam();
    db.Query("INSERT INTO " + list.table + " (" + list.code + ", " + list.name + ") VALUES (" + std::to_string(code) +
             ", '" + name + "')");
  }

  void Load(const std::string& filter = "") { GetParam().load(db.session, combo, filter); }

  std::string Statement(const std::string& where_line) const {
    const PickList& list = GetParam();
    return "SELECT A.*\rFROM   " + list.table + " A\r" + where_line + "ORDER BY A." + list.name + "\r;\r";
  }

  testing::TerminalDatabase db;
  std::shared_ptr<testing::RecordingProgress> progress = std::make_shared<testing::RecordingProgress>();
  ListComboBox combo;
};

TEST_P(PickListTest, TheChooseEntryComesOnlyBeforeMoreThanOneRow) {
  const PickList& list = GetParam();
  combo.AddItem("left from before");
  Load();
  EXPECT_EQ(combo.ListCount(), 0);
  EXPECT_EQ(db.statements, std::vector<std::string>{Statement("")});
  EXPECT_EQ(progress->calls, (std::vector<std::string>{"Show " + list.caption, "Close"}));

  Insert(4, "Zona Rural");
  Load();
  EXPECT_EQ(testing::EntriesOf(combo), (Entries{{"Zona Rural", 4}}));

  Insert(2, "Centro Histórico");
  Insert(9, "Ipê Amarelo");
  Load();
  EXPECT_EQ(testing::EntriesOf(combo),
            (Entries{{"--ESCOLHA-->", 0}, {"Centro Histórico", 2}, {"Ipê Amarelo", 9}, {"Zona Rural", 4}}));
  EXPECT_EQ(progress->steps.back(), 100.0);
  EXPECT_FALSE(progress->Visible());

  const std::string filter = "A." + list.code + " <> 2";
  Load(filter);
  EXPECT_EQ(db.statements.back(), Statement("WHERE " + filter + "\r"));
  EXPECT_EQ(testing::EntriesOf(combo), (Entries{{"--ESCOLHA-->", 0}, {"Ipê Amarelo", 9}, {"Zona Rural", 4}}));
}

TEST_P(PickListTest, ABadFilterFailsWithTheDatabasesErrorAndClosesTheWindow) {
  const PickList& list = GetParam();
  const VekError error = testing::ErrorOf([&] { Load("A." + list.name + " = = 'x'"); });
  EXPECT_EQ(error.Number(), static_cast<int32_t>(0x80040E14u));
  EXPECT_EQ(error.Source(), testing::ProviderSource() + " -> " + list.class_name + ".CarregarComboBox, ");
  EXPECT_EQ(progress->calls.back(), "Close");
  EXPECT_FALSE(progress->Visible());
}

INSTANTIATE_TEST_SUITE_P(Registry, PickListTest, ::testing::ValuesIn(PickLists()),
                         [](const ::testing::TestParamInfo<PickList>& info) { return info.param.class_name; });

}  // namespace
}  // namespace vek
