#include "vek/parking/NamedParkingRecord.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "parking/ParkingData.h"
#include "support/RecordingControls.h"
#include "vek/parking/cgdCalendarioAcessoEstacionament.h"
#include "vek/parking/cgdCategoriaClienteEstacionament.h"
#include "vek/platform/Controls.h"

namespace vek {
namespace {

using testing::Lines;

struct Category {
  using Manager = cgdCategoriaClienteEstacionament;
  static constexpr const char* kTable = "TbCategoriaClienteEstacionamento";
  static constexpr const char* kCode = "Cd_CategoriaClienteEstacionamento";
  static constexpr const char* kName = "Nm_CategoriaClienteEstacionamento";
  static constexpr const char* kCaption = "Carregando as categorias";
};
struct Calendar {
  using Manager = cgdCalendarioAcessoEstacionament;
  static constexpr const char* kTable = "TbCalendarioAcessoEstacionamento";
  static constexpr const char* kCode = "Cd_CalendarioAcessoEstacionamento";
  static constexpr const char* kName = "Nm_CalendarioAcessoEstacionamento";
  static constexpr const char* kCaption = "Carregando os calendários";
};

template <class Kind>
class NamedParkingRecordTest : public ::testing::Test {
 protected:
  NamedParkingRecordTest() {
    manager.Ob_cgpSistema(db.session);
    db.session->SetProgress(progress);
  }

  int32_t Save(int32_t company, const std::string& name) {
    auto record = manager.Ob_cgp();
    record->RestaurarDefault();
    record->Let("Cd_EmpresaUsuariaSistema", Variant(company));
    record->Let(Kind::kName, Variant(name));
    manager.Salvar();
    return CLng(record->Get(Kind::kCode));
  }

  testing::TerminalDatabase db;
  std::shared_ptr<testing::RecordingProgress> progress = std::make_shared<testing::RecordingProgress>();
  typename Kind::Manager manager;
};

using Kinds = ::testing::Types<Category, Calendar>;
TYPED_TEST_SUITE(NamedParkingRecordTest, Kinds);

TYPED_TEST(NamedParkingRecordTest, TheRowIsReadWithoutTheAliasOnTheCompany) {
  const int32_t code = this->Save(1, "PADRAO");
  ASSERT_GT(code, 0);
  auto record = this->manager.Ob_cgp();
  record->Let(TypeParam::kName, Variant("NOVO"));
  this->manager.Salvar();
  EXPECT_EQ(this->db.statements.back(),
            Lines({"SELECT A.*", std::string("FROM   ") + TypeParam::kTable + " A", "WHERE  Cd_EmpresaUsuariaSistema = 1",
                   std::string("       And A.") + TypeParam::kCode + " = " + std::to_string(code), ";"}) +
                "\r");
  record->Let(TypeParam::kName, Variant(""));
  this->manager.Consultar(false);
  EXPECT_EQ(CStr(record->Get(TypeParam::kName)), "NOVO");
  EXPECT_EQ(testing::CountOf(this->db, TypeParam::kTable), 1);
}

TYPED_TEST(NamedParkingRecordTest, ThePickListTakesEveryCompanyAndTheGridShowsTheCompanyCode) {
  const int32_t b = this->Save(1, "BETA");
  const int32_t a = this->Save(2, "ALFA");
  ListComboBox combo;
  this->manager.CarregarComboBox(combo);
  EXPECT_EQ(this->db.statements.back(), Lines({"SELECT   *", std::string("FROM     ") + TypeParam::kTable,
                                               std::string("ORDER BY ") + TypeParam::kName}) +
                                            "\r");
  EXPECT_EQ(testing::EntriesOf(combo), (testing::Entries{{"--ESCOLHA-->", 0}, {"ALFA", a}, {"BETA", b}}));
  EXPECT_EQ(this->progress->calls.front(), std::string("Show ") + TypeParam::kCaption);

  ListGrid grid;
  TextBox count;
  this->manager.CarregarMSFlexGridDeBusca(grid, count, "A.Cd_EmpresaUsuariaSistema = 2");
  EXPECT_EQ(this->db.statements.back(),
            Lines({"SELECT   A.Cd_EmpresaUsuariaSistema,", std::string("         A.") + TypeParam::kName,
                   std::string("FROM     ") + TypeParam::kTable + " A", "WHERE A.Cd_EmpresaUsuariaSistema = 2",
                   std::string("ORDER BY A.") + TypeParam::kName, ";"}) +
                "\r");
  EXPECT_EQ(grid.Lines(), (std::vector<std::string>{"\t2\tALFA"}));
  EXPECT_EQ(count.Text(), "1");
}

}  // namespace
}  // namespace vek
