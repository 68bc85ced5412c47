// Street types and titles are found by their name when their code is 0.

#include "vek/registry/cgdTipoLogradouro.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <ostream>
#include <string>

#include "support/TerminalDatabase.h"
#include "vek/foundation/MessageCatalogue.h"
#include "vek/registry/cgdTituloEPatente.h"

namespace vek {
namespace {

using testing::ErrorOf;

// What the test does with either record kind.
class NamedRecord {
 public:
  virtual ~NamedRecord() = default;
  virtual RecordManager& Manager() = 0;
  virtual std::shared_ptr<cgp> Consultar(bool restore = true) = 0;
};

template <class Manager_>
class NamedRecordOf final : public NamedRecord {
 public:
  RecordManager& Manager() override { return manager_; }
  std::shared_ptr<cgp> Consultar(bool restore) override { return manager_.Consultar(restore); }

 private:
  Manager_ manager_;
};

struct NamedKind {
  std::string class_name;
  std::function<std::unique_ptr<NamedRecord>()> make;
  std::string table, code, name, abbreviation;
  std::string name_lookup_head;  // the look-up's first two lines
};

void PrintTo(const NamedKind& kind, std::ostream* out) { *out << kind.class_name; }

const NamedKind kStreetType{"cgdTipoLogradouro",
                            [] { return std::make_unique<NamedRecordOf<cgdTipoLogradouro>>(); },
                            "TbTipoLogradouro",
                            "Cd_TipoLogradouro",
                            "Nm_TipoLogradouro",
                            "Sg_TipoLogradouro",
                            // The blank after the asterisk is the statement's own.
                            "SELECT A.* \rFROM   TbTipoLogradouro A\r"};
const NamedKind kTitle{"cgdTituloEPatente",
                       [] { return std::make_unique<NamedRecordOf<cgdTituloEPatente>>(); },
                       "TbTituloEPatente",
                       "Cd_TituloEPatente",
                       "Nm_TituloEPatente",
                       "Sg_TituloEPatente",
                       "SELECT A.*\rFROM   TbTituloEPatente A\r"};

class NamedRecordTest : public ::testing::TestWithParam<NamedKind> {
 protected:
  NamedRecordTest() : kind(GetParam()), record(kind.make()) {
    record->Manager().Ob_cgpSistema(db.session);
    Insert(1, "Avenida", "Av.");
    Insert(2, "Praça", "Pç.");
  }

  void Insert(int32_t code, const std::string& name, const std::string& abbreviation) {
    db.Query("INSERT INTO " + kind.table + " (" + kind.code + ", " + kind.name + ", " + kind.abbreviation +
             ") VALUES (" + std::to_string(code) + ", '" + name + "', '" + abbreviation + "')");
  }

  cgp& Object() { return record->Manager().RecordObject(); }

  std::string ByName(const std::string& name) const {
    return kind.name_lookup_head + "WHERE  A." + kind.name + " = '" + name + "'\r";
  }

  std::string ByCode(int32_t code) const {
    return "SELECT A.*\rFROM   " + kind.table + " A\rWHERE  A." + kind.code + " = " + std::to_string(code) +
           "\r;\r";
  }

  testing::TerminalDatabase db;
  const NamedKind& kind;
  std::unique_ptr<NamedRecord> record;
};

TEST_P(NamedRecordTest, TheNameIsTheLookUpOnlyWhenTheCodeIsZero) {
  Object().Let(kind.name, Variant("Praça"));
  auto found = record->Consultar();
  EXPECT_EQ(db.statements.back(), ByName("Praça"));
  EXPECT_EQ(CLng(found->Get(kind.code)), 2);
  EXPECT_EQ(CStr(found->Get(kind.abbreviation)), "Pç.");

  // A code wins over the name.
  Object().RestaurarDefault();
  Object().Let(kind.code, Variant(1));
  Object().Let(kind.name, Variant("Praça"));
  found = record->Consultar();
  EXPECT_EQ(db.statements.back(), ByCode(1));
  EXPECT_EQ(CStr(found->Get(kind.name)), "Avenida");

  // Names are compared whole, accents and all.
  Object().RestaurarDefault();
  Object().Let(kind.name, Variant("Praca"));
  found = record->Consultar();
  EXPECT_EQ(db.statements.back(), ByName("Praca"));
  EXPECT_EQ(CLng(found->Get(kind.code)), 0);
  EXPECT_EQ(CStr(found->Get(kind.name)), "");  // reset, not found

  Object().Let(kind.name, Variant("Travessa"));
  const VekError not_found = ErrorOf([&] { record->Consultar(false); });
  EXPECT_EQ(not_found.Number(), kErrorRecordNotFound);
  EXPECT_EQ(not_found.Source(), " -> " + kind.class_name + ".Consultar,  -> " + kind.class_name + ".Consultar, ");
}

TEST_P(NamedRecordTest, NeitherCodeNorNameIsAMissingKey) {
  Object().Let(kind.abbreviation, Variant("Av."));
  EXPECT_EQ(ErrorOf([&] { record->Consultar(); }).Number(), kErrorNoKey);
  EXPECT_EQ(ErrorOf([&] { record->Manager().Alterar(); }).Number(), kErrorNoKey);
  // Deleting still needs the code, whatever the name.
  Object().Let(kind.name, Variant("Avenida"));
  EXPECT_EQ(ErrorOf([&] { record->Manager().Excluir(); }).Number(), kErrorNoKey);
  EXPECT_TRUE(db.statements.empty());
  EXPECT_EQ(db.Query("SELECT * FROM " + kind.table)->RecordCount(), 2);
}

TEST_P(NamedRecordTest, ANameWithAnApostropheIsRefusedBeforeTheLookUp) {
  Object().Let(kind.name, Variant("Beco D'Água"));
  const VekError refused = ErrorOf([&] { record->Consultar(); });
  EXPECT_EQ(refused.Number(), kBusinessError);
  EXPECT_NE(refused.Description().find(kind.name), std::string::npos) << refused.Description();
  EXPECT_EQ(refused.Source(), " -> " + kind.class_name + ".Consultar, ");
  EXPECT_TRUE(db.statements.empty());
}

TEST_P(NamedRecordTest, SavingANewRecordInsertsItEvenUnderANameAlreadyThere) {
  // A code of 0 is a new record, whatever its name: the update is not tried.
  Object().Let(kind.name, Variant("Avenida"));
  Object().Let(kind.abbreviation, Variant("AV"));
  record->Manager().Salvar();
  EXPECT_EQ(db.statements, std::vector<std::string>{"SELECT A.*\rFROM   " + kind.table + " A\rWHERE  A." +
                                                    kind.code + " = 0\r;\r"});
  EXPECT_EQ(CLng(Object().Get(kind.code)), 3);
  auto rows = db.Query("SELECT " + kind.abbreviation + " FROM " + kind.table + " WHERE " + kind.name +
                       " = 'Avenida' ORDER BY " + kind.code);
  ASSERT_EQ(rows->RecordCount(), 2);
  EXPECT_EQ(CStr(rows->Fields().Item(0).Value()), "Av.");  // the old one untouched

  // A name holding an apostrophe is refused on every write: stored, it could
  // never be found by its name.
  Object().RestaurarDefault();
  Object().Let(kind.name, Variant("Beco D'Água"));
  const size_t sent = db.statements.size();
  const VekError refused = ErrorOf([&] { record->Manager().Salvar(); });
  EXPECT_EQ(refused.Number(), kBusinessError);
  EXPECT_NE(refused.Description().find(kind.name), std::string::npos) << refused.Description();
  EXPECT_EQ(db.statements.size(), sent);
  EXPECT_EQ(db.Query("SELECT * FROM " + kind.table)->RecordCount(), 3);
}

INSTANTIATE_TEST_SUITE_P(Registry, NamedRecordTest, ::testing::Values(kStreetType, kTitle),
                         [](const ::testing::TestParamInfo<NamedKind>& info) { return info.param.class_name; });

}  // namespace
}  // namespace vek
