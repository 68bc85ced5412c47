// The record kinds of people and addresses that follow the protocol as it
// stands: each one's exact statements and a save, load, change and delete
// beside a row of its table that must stay as it was.

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "support/TerminalDatabase.h"
#include "vek/registry/cgdCEP_Logradouro.h"
#include "vek/registry/cgdEMail.h"
#include "vek/registry/cgdEndereco.h"
#include "vek/registry/cgdLogradouro.h"
#include "vek/registry/cgdPessoa.h"
#include "vek/registry/cgdPessoaFisica.h"
#include "vek/registry/cgdPessoaJuridica.h"
#include "vek/registry/cgdTelefone.h"
#include "vek/registry/cgdTipoEndereco.h"
#include "vek/registry/cgdTipoLogradouro.h"
#include "vek/registry/cgdTituloEPatente.h"

namespace vek {
namespace {

using testing::Lines;

// One data manager behind the protocol's untyped face.
class AnyRecord {
 public:
  virtual ~AnyRecord() = default;
  virtual RecordManager& Manager() = 0;
  virtual std::shared_ptr<cgp> Consultar(bool restore) = 0;
};

template <class Manager_>
class RecordOf final : public AnyRecord {
 public:
  RecordManager& Manager() override { return manager_; }
  std::shared_ptr<cgp> Consultar(bool restore) override { return manager_.Consultar(restore); }

 private:
  Manager_ manager_;
};

using Columns = std::vector<std::pair<std::string, Variant>>;

struct RecordKind {
  std::string name;
  std::function<std::unique_ptr<AnyRecord>()> make;
  std::string table;
  // Rows the record refers to, and one row of its own that must stay as it was.
  std::vector<std::string> rows_before;
  Columns keys = {};     // given by the caller (none for a record the database numbers)
  Columns values = {};   // written by the first save
  Columns changes = {};  // written by the second save
  std::string numbered_column = {};  // empty when nothing is numbered
  int32_t number = 0;           // the number the new record gets
  std::string select;           // Consultar's and Alterar's statement for the new record
  std::string remove;           // Excluir's statement for the new record
  std::string empty_select;     // Incluir's statement
};

// Test names and failures name the kind, not its bytes.
void PrintTo(const RecordKind& kind, std::ostream* out) { *out << kind.name; }

template <class Manager_>
std::function<std::unique_ptr<AnyRecord>()> Make() {
  return [] { return std::make_unique<RecordOf<Manager_>>(); };
}

std::string Select(const std::string& table, const std::string& where) {
  return Lines({"SELECT A.*", "FROM   " + table + " A", where, ";"}) + "\r";
}

std::string Delete(const std::string& table, const std::string& where) {
  return Lines({"DELETE ", "FROM   " + table, where}) + "\r";
}

const std::vector<RecordKind>& Kinds() {
  static const std::vector<RecordKind> kinds = {
      {.name = "cgdPessoa",
       .make = Make<cgdPessoa>(),
       .table = "TbPessoa",
       .rows_before = {"INSERT INTO TbPessoa (Cd_Pessoa, Nm_Pessoa, No_TipoPessoa) VALUES (40, 'Já Cadastrada', 1)"},
       .values = {{"Nm_Pessoa", Variant("João Araújo Gonçalves")}, {"No_TipoPessoa", Variant(1)}},
       // A value written through the record set may hold an apostrophe.
       .changes = {{"Nm_Pessoa", Variant("José D'Ávila")}, {"No_TipoPessoa", Variant(2)}},
       .numbered_column = "Cd_Pessoa",
       .number = 41,
       .select = Select("TbPessoa", "WHERE  A.Cd_Pessoa = 41"),
       .remove = Delete("TbPessoa", "WHERE  Cd_Pessoa = 41"),
       .empty_select = Select("TbPessoa", "WHERE  A.Cd_Pessoa = 0")},
      {.name = "cgdPessoaFisica",
       .make = Make<cgdPessoaFisica>(),
       .table = "TbPessoaFisica",
       .rows_before = {"INSERT INTO TbTituloEPatente (Cd_TituloEPatente, Nm_TituloEPatente) VALUES (2, 'Doutor')",
                       "INSERT INTO TbPessoaFisica (Cd_Pessoa, No_CPF) VALUES (40, '111.111.111-11')"},
       .keys = {{"Cd_Pessoa", Variant(41)}},
       .values = {{"No_CPF", Variant("123.456.789-09")},
                  {"Dt_Nascimento", Variant(DateSerial(1980, 5, 17))},
                  {"Cd_TituloEPatente", Variant(2)}},
       .changes = {{"Dt_Nascimento", Variant(DateSerial(1981, 12, 31))}, {"Cd_TituloEPatente", Variant(0)}},
       .select = Select("TbPessoaFisica", "WHERE  A.Cd_Pessoa = 41"),
       .remove = Delete("TbPessoaFisica", "WHERE  Cd_Pessoa = 41"),
       .empty_select = Select("TbPessoaFisica", "WHERE  A.Cd_Pessoa = 0")},
      {.name = "cgdPessoaJuridica",
       .make = Make<cgdPessoaJuridica>(),
       .table = "TbPessoaJuridica",
       .rows_before = {"INSERT INTO TbPessoaJuridica (Cd_Pessoa, No_CNPJ) VALUES (40, '11.111.111/0001-11')"},
       .keys = {{"Cd_Pessoa", Variant(41)}},
       .values = {{"No_CNPJ", Variant("12.345.678/0001-90")},
                  {"Ds_InscricaoEstadual", Variant("10.123.456-7")},
                  {"Nm_Fantasia", Variant("Viação Araguaína")}},
       .changes = {{"Nm_Fantasia", Variant("Expresso São Luiz")}},
       .select = Select("TbPessoaJuridica", "WHERE  A.Cd_Pessoa = 41"),
       .remove = Delete("TbPessoaJuridica", "WHERE  Cd_Pessoa = 41"),
       .empty_select = Select("TbPessoaJuridica", "WHERE  A.Cd_Pessoa = 0")},
      {.name = "cgdEndereco",
       .make = Make<cgdEndereco>(),
       .table = "TbEndereco",
       .rows_before = {"INSERT INTO TbTipoEndereco (Cd_TipoEndereco, Nm_TipoEndereco) VALUES (1, 'Residencial')",
                       "INSERT INTO TbLogradouro (Cd_Logradouro, Nm_Logradouro, Cd_Cidade) VALUES (20, 'Avenida Goiás', 3)",
                       "INSERT INTO TbBairro (Cd_Bairro, Nm_Bairro, Cd_Cidade) VALUES (5, 'Setor Oeste', 3)",
                       "INSERT INTO TbEndereco (Cd_TipoEndereco, Cd_Pessoa, No_Imovel) VALUES (1, 40, 10)"},
       .keys = {{"Cd_TipoEndereco", Variant(1)}, {"Cd_Pessoa", Variant(41)}},
       .values = {{"Cd_Logradouro", Variant(20)},
                  {"Cd_EP", Variant("74000-000")},
                  {"No_Imovel", Variant(1200)},
                  {"Ds_Complemento", Variant("Qd. 5, Lt. 3 – Edifício Ipê")},
                  {"Cd_Bairro", Variant(5)}},
       .changes = {{"No_Imovel", Variant(15)}, {"Ds_Complemento", Variant("Sala d'água")}},
       .select = Select("TbEndereco", "WHERE  A.Cd_TipoEndereco = 1\r       and A.Cd_Pessoa = 41"),
       .remove = Delete("TbEndereco", "WHERE  Cd_TipoEndereco = 1\r       And Cd_Pessoa = 41"),
       .empty_select = Select("TbEndereco", "WHERE  A.Cd_TipoEndereco = 0\r       and A.Cd_Pessoa = 0")},
      {.name = "cgdTelefone",
       .make = Make<cgdTelefone>(),
       .table = "TbTelefone",
       // The same person's telephone of another type.
       .rows_before = {"INSERT INTO TbTelefone (Cd_Pessoa, No_TipoTelefone, No_Telefone) VALUES (41, 1, '(62) 3000-0000')"},
       .keys = {{"Cd_Pessoa", Variant(41)}, {"No_TipoTelefone", Variant(2)}},
       .values = {{"No_Telefone", Variant("(62) 99999-0001")}},
       .changes = {{"No_Telefone", Variant("(62) 98888-0002")}},
       .select = Select("TbTelefone", "WHERE  A.Cd_Pessoa = 41\r       and A.No_TipoTelefone = 2"),
       .remove = Delete("TbTelefone", "WHERE  Cd_Pessoa = 41\r       And No_TipoTelefone = 2"),
       .empty_select = Select("TbTelefone", "WHERE  A.Cd_Pessoa = 0\r       and A.No_TipoTelefone = 0")},
      {.name = "cgdEMail",
       .make = Make<cgdEMail>(),
       .table = "TbEMail",
       .rows_before = {"INSERT INTO TbEMail (Cd_Pessoa, Ds_EMail) VALUES (40, 'outra@terminal.com.br')"},
       .keys = {{"Cd_Pessoa", Variant(41)}},
       .values = {{"Ds_EMail", Variant("joão@viação.com.br")}},
       .changes = {{"Ds_EMail", Variant("contato@terminal.com.br")}},
       .select = Select("TbEMail", "WHERE  A.Cd_Pessoa = 41"),
       .remove = Delete("TbEMail", "WHERE  Cd_Pessoa = 41"),
       .empty_select = Select("TbEMail", "WHERE  A.Cd_Pessoa = 0")},
      {.name = "cgdLogradouro",
       .make = Make<cgdLogradouro>(),
       .table = "TbLogradouro",
       .rows_before = {"INSERT INTO TbTipoLogradouro (Cd_TipoLogradouro, Nm_TipoLogradouro) VALUES (1, 'Avenida')",
                       "INSERT INTO TbLogradouro (Cd_Logradouro, Nm_Logradouro, Cd_Cidade) VALUES (20, 'Rua 1', 3)"},
       .values = {{"Nm_Logradouro", Variant("Avenida Anhangüera")},
                  {"Cd_TipoLogradouro", Variant(1)},
                  {"Cd_Cidade", Variant(3)}},
       .changes = {{"Nm_Logradouro", Variant("Rua 7 de Setembro")}, {"Cd_TipoLogradouro", Variant(0)}},
       .numbered_column = "Cd_Logradouro",
       .number = 21,
       .select = Select("TbLogradouro", "WHERE  A.Cd_Logradouro = 21"),
       .remove = Delete("TbLogradouro", "WHERE  Cd_Logradouro = 21"),
       .empty_select = Select("TbLogradouro", "WHERE  A.Cd_Logradouro = 0")},
      {.name = "cgdCEP_Logradouro",
       .make = Make<cgdCEP_Logradouro>(),
       .table = "TbCEP_TbLogradouro",
       .rows_before = {"INSERT INTO TbLogradouro (Cd_Logradouro, Nm_Logradouro, Cd_Cidade) VALUES (20, 'Avenida Goiás', 3)",
                       "INSERT INTO TbCEP_TbLogradouro (Cd_Logradouro, Cd_EP) VALUES (20, '74000-000')"},
       // The same street's second postcode: the postcode is part of the key.
       .keys = {{"Cd_Logradouro", Variant(20)}, {"Cd_EP", Variant("74001-000")}},
       .select = Select("TbCEP_TbLogradouro", "WHERE  A.Cd_Logradouro = 20\r       and A.Cd_EP = '74001-000'"),
       .remove = Delete("TbCEP_TbLogradouro", "WHERE  Cd_Logradouro = 20\r       And Cd_EP = '74001-000'"),
       .empty_select = Select("TbCEP_TbLogradouro", "WHERE  A.Cd_Logradouro = 0\r       and A.Cd_EP = ''")},
      {.name = "cgdTipoLogradouro",
       .make = Make<cgdTipoLogradouro>(),
       .table = "TbTipoLogradouro",
       .rows_before = {"INSERT INTO TbTipoLogradouro (Cd_TipoLogradouro, Nm_TipoLogradouro, Sg_TipoLogradouro) "
                       "VALUES (1, 'Avenida', 'Av.')"},
       .values = {{"Nm_TipoLogradouro", Variant("Praça")}, {"Sg_TipoLogradouro", Variant("Pç.")}},
       .changes = {{"Sg_TipoLogradouro", Variant("Pça.")}},
       .numbered_column = "Cd_TipoLogradouro",
       .number = 2,
       .select = Select("TbTipoLogradouro", "WHERE  A.Cd_TipoLogradouro = 2"),
       .remove = Delete("TbTipoLogradouro", "WHERE  Cd_TipoLogradouro = 2"),
       .empty_select = Select("TbTipoLogradouro", "WHERE  A.Cd_TipoLogradouro = 0")},
      {.name = "cgdTipoEndereco",
       .make = Make<cgdTipoEndereco>(),
       .table = "TbTipoEndereco",
       .rows_before = {"INSERT INTO TbTipoEndereco (Cd_TipoEndereco, Nm_TipoEndereco) VALUES (1, 'Residencial')"},
       .values = {{"Nm_TipoEndereco", Variant("Comércio")}},
       .changes = {{"Nm_TipoEndereco", Variant("Cobrança")}},
       .numbered_column = "Cd_TipoEndereco",
       .number = 2,
       .select = Select("TbTipoEndereco", "WHERE  A.Cd_TipoEndereco = 2"),
       .remove = Delete("TbTipoEndereco", "WHERE  Cd_TipoEndereco = 2"),
       .empty_select = Select("TbTipoEndereco", "WHERE  A.Cd_TipoEndereco = 0")},
      {.name = "cgdTituloEPatente",
       .make = Make<cgdTituloEPatente>(),
       .table = "TbTituloEPatente",
       .rows_before = {"INSERT INTO TbTituloEPatente (Cd_TituloEPatente, Nm_TituloEPatente, Sg_TituloEPatente) "
                       "VALUES (1, 'Doutor', 'Dr.')"},
       .values = {{"Nm_TituloEPatente", Variant("Capitão")}, {"Sg_TituloEPatente", Variant("Cap.")}},
       .changes = {{"Nm_TituloEPatente", Variant("Capitão-Tenente")}, {"Sg_TituloEPatente", Variant("CT")}},
       .numbered_column = "Cd_TituloEPatente",
       .number = 2,
       .select = Select("TbTituloEPatente", "WHERE  A.Cd_TituloEPatente = 2"),
       .remove = Delete("TbTituloEPatente", "WHERE  Cd_TituloEPatente = 2"),
       .empty_select = Select("TbTituloEPatente", "WHERE  A.Cd_TituloEPatente = 0")},
  };
  return kinds;
}

class RegistryRecordTest : public ::testing::TestWithParam<RecordKind> {
 protected:
  RegistryRecordTest() {
    db.Query("INSERT INTO TbUF (Cd_UF, Nm_UF, Sg_UF) VALUES (9, 'Goiás', 'GO')");
    db.Query("INSERT INTO TbCidade (Cd_Cidade, Nm_Cidade, Cd_UF, Sg_UF) VALUES (3, 'Goiânia', 9, 'GO')");
  }

  std::unique_ptr<AnyRecord> NewManager() {
    auto record = GetParam().make();
    record->Manager().Ob_cgpSistema(db.session);
    return record;
  }

  int32_t RowCount() { return db.Query("SELECT * FROM " + GetParam().table)->RecordCount(); }

  testing::TerminalDatabase db;
};

TEST_P(RegistryRecordTest, IsSavedLoadedChangedAndDeletedWithItsOwnStatements) {
  const RecordKind& kind = GetParam();
  for (const std::string& row : kind.rows_before) db.Query(row);

  auto writer = NewManager();
  cgp& written = writer->Manager().RecordObject();
  for (const auto& [column, value] : kind.keys) written.Let(column, value);
  for (const auto& [column, value] : kind.values) written.Let(column, value);
  writer->Manager().Salvar();
  if (kind.numbered_column.empty()) {
    // The update looked for the row first and found none.
    EXPECT_EQ(db.statements, (std::vector<std::string>{kind.select, kind.empty_select}));
  } else {
    // A key of 0 is always a new record: no update is tried.
    EXPECT_EQ(db.statements, std::vector<std::string>{kind.empty_select});
    EXPECT_EQ(CLng(written.Get(kind.numbered_column)), kind.number);
  }
  EXPECT_EQ(RowCount(), 2);

  db.statements.clear();
  auto reader = NewManager();
  cgp& keys = reader->Manager().RecordObject();
  for (const auto& [column, value] : kind.keys) keys.Let(column, value);
  if (!kind.numbered_column.empty()) keys.Let(kind.numbered_column, Variant(kind.number));
  auto loaded = reader->Consultar(false);
  EXPECT_EQ(db.statements, std::vector<std::string>{kind.select});
  for (const auto& [column, value] : kind.values) {
    EXPECT_EQ(loaded->Get(column), written.Get(column)) << column;
  }

  for (const auto& [column, value] : kind.changes) loaded->Let(column, value);
  reader->Manager().Salvar();
  EXPECT_EQ(db.statements.back(), kind.select);
  EXPECT_EQ(db.statements.size(), 2u);  // found: nothing inserted
  EXPECT_EQ(RowCount(), 2);
  auto check = NewManager();
  for (const auto& [column, value] : kind.keys) check->Manager().RecordObject().Let(column, value);
  if (!kind.numbered_column.empty()) check->Manager().RecordObject().Let(kind.numbered_column, Variant(kind.number));
  auto changed = check->Consultar(false);
  for (const auto& [column, value] : kind.changes) {
    EXPECT_EQ(changed->Get(column), loaded->Get(column)) << column;
  }

  reader->Manager().Excluir();
  EXPECT_EQ(db.statements.back(), kind.remove);
  EXPECT_EQ(RowCount(), 1);  // the row that was there before
  const size_t sent = db.statements.size();
  EXPECT_EQ(CLng(check->Consultar(true)->Get(kind.keys.empty() ? kind.numbered_column : kind.keys[0].first)), 0);
  EXPECT_EQ(db.statements.size(), sent + 1);
}

TEST_P(RegistryRecordTest, NamesItsNumberedColumn) {
  const RecordKind& kind = GetParam();
  auto record = NewManager();
  const std::vector<std::string> expected =
      kind.numbered_column.empty() ? std::vector<std::string>{} : std::vector<std::string>{kind.numbered_column};
  EXPECT_EQ(record->Manager().nomeCamposSequencial(), expected);
  EXPECT_EQ(record->Manager().temCampoSequencial(), !kind.numbered_column.empty());
}

INSTANTIATE_TEST_SUITE_P(Registry, RegistryRecordTest, ::testing::ValuesIn(Kinds()),
                         [](const ::testing::TestParamInfo<RecordKind>& info) { return info.param.name; });

// A postcode is part of the key of a street's postcodes and is written between
// quotes: one holding an apostrophe must never reach the database.
TEST(cgdCEP_LogradouroTest, APostcodeWithAnApostropheIsRefusedBeforeAnyStatement) {
  testing::TerminalDatabase db;
  cgdCEP_Logradouro postcode;
  postcode.Ob_cgpSistema(db.session);
  postcode.Ob_cgp()->Let("Cd_Logradouro", Variant(20));
  postcode.Ob_cgp()->Let("Cd_EP", Variant("74000'000"));
  for (const auto& [member, body] : std::vector<std::pair<std::string, std::function<void()>>>{
           {"Consultar", [&] { postcode.Consultar(); }},
           {"Alterar", [&] { postcode.Alterar(); }},
           {"Excluir", [&] { postcode.Excluir(); }},
           {"Salvar", [&] { postcode.Salvar(); }}}) {
    const VekError refused = testing::ErrorOf(body);
    EXPECT_EQ(refused.Number(), static_cast<int32_t>(0x80040458u)) << member;
    EXPECT_NE(refused.Description().find("Cd_EP"), std::string::npos) << member << ": " << refused.Description();
    EXPECT_NE(refused.Source().find("cgdCEP_Logradouro." + member), std::string::npos) << refused.Source();
  }
  EXPECT_TRUE(db.statements.empty());
}

}  // namespace
}  // namespace vek
