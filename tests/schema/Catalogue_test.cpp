#include "vek/schema/Catalogue.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "vek/platform/Text.h"

namespace vek::schema {
namespace {

bool InKey(const TableDef& table, std::string_view column) {
  for (std::string_view key : table.primary_key) {
    if (EqualsIgnoreCase(key, column)) return true;
  }
  return false;
}

bool SameNames(const std::vector<std::string_view>& a, const std::vector<std::string_view>& b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    if (!EqualsIgnoreCase(a[i], b[i])) return false;
  }
  return true;
}

// Values of one SQL value list, counted on the commas outside quotes.
size_t CountValues(std::string_view values) {
  size_t count = 1;
  bool quoted = false;
  for (char c : values) {
    if (c == '\'') quoted = !quoted;
    if (c == ',' && !quoted) ++count;
  }
  return count;
}

size_t Position(const TableDef* table) {
  return static_cast<size_t>(table - Tables().data());
}

TEST(Catalogue, NamesAreUniqueAndFoundInAnyCase) {
  std::set<std::string> names;
  for (const TableDef& table : Tables()) {
    EXPECT_TRUE(names.insert(FoldCase(table.name)).second) << table.name;
    std::set<std::string> columns;
    for (const ColumnDef& column : table.columns) {
      EXPECT_TRUE(columns.insert(FoldCase(column.name)).second) << table.name << "." << column.name;
    }
  }

  // Statements spell the state table three ways; the catalogue keeps the usual one.
  ASSERT_NE(FindTable("TBUF"), nullptr);
  EXPECT_EQ(FindTable("tbuf"), FindTable("TbUf"));
  EXPECT_EQ(FindTable("TBUF")->name, "TbUF");
  EXPECT_EQ(FindTable("tbcep_tblogradouro")->name, "TbCEP_TbLogradouro");
  EXPECT_EQ(FindTable("TbUFs"), nullptr);
  EXPECT_EQ(FindTable(""), nullptr);

  const TableDef* ticket = FindTable("TbTicketEstacionamento");
  ASSERT_NE(ticket, nullptr);
  ASSERT_NE(ticket->FindColumn("QT_MINUTOSPERMANENCIAOOUTROSTICKETS"), nullptr);
  EXPECT_EQ(ticket->FindColumn("qt_minutospermanenciaooutrostickets")->name,
            "Qt_MinutosPermanenciaoOutrosTickets");
  EXPECT_EQ(ticket->FindColumn("Qt_MinutosPermanenciaOutrosTickets"), nullptr);
  EXPECT_EQ(ticket->FindColumn("Cd_Placa "), nullptr);
  // The card list orders by a column whose name carries a doubled "o".
  EXPECT_NE(FindTable("TbCartaoEstacionamento")->FindColumn("Nm_CartaoEstacionamentoo"), nullptr);
}

TEST(Catalogue, KeysAreDeclaredAndNumberedAsTheEntitiesSay) {
  for (const TableDef& table : Tables()) {
    int numbered = 0;
    for (std::string_view key : table.primary_key) {
      const ColumnDef* column = table.FindColumn(key);
      ASSERT_NE(column, nullptr) << table.name << "." << key;
      EXPECT_FALSE(column->nullable) << table.name << "." << key;
    }
    for (const ColumnDef& column : table.columns) {
      if (!column.numbered) continue;
      ++numbered;
      EXPECT_TRUE(InKey(table, column.name)) << table.name << "." << column.name;
      EXPECT_EQ(column.type, ColumnType::Int) << table.name << "." << column.name;
    }
    EXPECT_LE(numbered, 1) << table.name;
    EXPECT_EQ(table.HasIdentity(), numbered == 1 && table.primary_key.size() == 1) << table.name;
  }

  // Which tables number their own rows is seen at work in the schema tests.
  // Numbered, but inside a key with the tenant: numbered through TbSequenciadores.
  const TableDef* timetable = FindTable("TbHorariosLinha");
  EXPECT_TRUE(timetable->FindColumn("Cd_HorarioLinha")->numbered);
  EXPECT_FALSE(timetable->FindColumn("Cd_Linha")->numbered);

  // Statements address these rows by the keys in this order.
  EXPECT_EQ(FindTable("TbEndereco")->primary_key,
            (std::vector<std::string_view>{"Cd_TipoEndereco", "Cd_Pessoa"}));
  EXPECT_EQ(FindTable("TbVeiculoEstacionamento")->primary_key,
            (std::vector<std::string_view>{"Cd_Placa", "Cd_EmpresaUsuariaSistema"}));
  EXPECT_EQ(FindTable("TbContaReceber")->primary_key,
            (std::vector<std::string_view>{"Cd_EmpresaUsuariaSistema", "No_ContaReceber",
                                           "No_Parcela"}));
}

TEST(Catalogue, TenantIsPartOfTheKeyExceptOfTheSharedTables) {
  for (std::string_view shared : {"TbLinha", "TbEmpresaOnibus", "TbVeiculoOnibus", "TbTipoOnibus",
                                  "TbTarifa", "TbTipoReceita", "TbVeiculo", "TbCor"}) {
    const TableDef* table = FindTable(shared);
    ASSERT_NE(table, nullptr) << shared;
    EXPECT_FALSE(InKey(*table, "Cd_EmpresaUsuariaSistema")) << shared;
  }
  for (std::string_view tenant_keyed :
       {"TbUsuario", "TbHorariosLinha", "TbEscalasHorarioLinha", "TbViagemOnibus", "TbAgendaSom",
        "TbApuracaoReceita", "TbApuracaoReceita_TbTarifa", "TbCaixa", "TbContaReceber",
        "TbFechamentoDiario", "TbTicketEstacionamento", "TbTicketEstacionamento_TbTarifa",
        "TbPrecoEstacionamento", "TbClienteEstacionamento", "TbConvenioEstacionamento",
        "TbCartaoEstacionamento", "TbTicketSanitario", "TbParametrosMadis",
        "TbParametrosMicrosiga", "TbItemMapaMovimentoED", "TbItemRateioMovimentoED"}) {
    const TableDef* table = FindTable(tenant_keyed);
    ASSERT_NE(table, nullptr) << tenant_keyed;
    EXPECT_TRUE(InKey(*table, "Cd_EmpresaUsuariaSistema")) << tenant_keyed;
  }
}

TEST(Catalogue, ForeignKeysReferToEarlierTablesByTheirKeys) {
  size_t count = 0;
  for (const TableDef& table : Tables()) {
    for (const ForeignKeyDef& key : table.foreign_keys) {
      ++count;
      const TableDef* parent = FindTable(key.table);
      ASSERT_NE(parent, nullptr) << table.name << " -> " << key.table;
      EXPECT_EQ(parent->database, table.database) << table.name << " -> " << key.table;
      EXPECT_LT(Position(parent), Position(&table)) << table.name << " -> " << key.table;
      ASSERT_EQ(key.columns.size(), key.references.size()) << table.name;
      for (size_t i = 0; i < key.columns.size(); ++i) {
        const ColumnDef* child = table.FindColumn(key.columns[i]);
        const ColumnDef* referred = parent->FindColumn(key.references[i]);
        ASSERT_NE(child, nullptr) << table.name << "." << key.columns[i];
        ASSERT_NE(referred, nullptr) << key.table << "." << key.references[i];
        EXPECT_EQ(child->type, referred->type) << table.name << "." << child->name;
        // Codes 0 are written as Null, so a reference outside the key may be Null.
        EXPECT_EQ(child->nullable, !InKey(table, child->name)) << table.name << "." << child->name;
      }
      bool unique = SameNames(key.references, parent->primary_key);
      for (const IndexDef& index : parent->indexes) {
        unique = unique || (index.unique && SameNames(index.columns, key.references));
      }
      EXPECT_TRUE(unique) << table.name << " -> " << key.table;
    }
  }
  EXPECT_GE(count, 30u);

  // Deletes that must fail while rows still refer to them.
  auto refers = [](std::string_view child, std::string_view parent) {
    for (const ForeignKeyDef& key : FindTable(child)->foreign_keys) {
      if (key.table == parent) return true;
    }
    return false;
  };
  EXPECT_TRUE(refers("TbApuracaoReceita_TbTarifa", "TbTarifa"));
  EXPECT_TRUE(refers("TbTicketSanitario", "TbTarifa"));
  // Rows that stand on their own by design.
  EXPECT_FALSE(refers("TbVeiculoEstacionamento", "TbVeiculo"));
  EXPECT_FALSE(refers("TbPrecoEstacionamento", "TbTarifa"));
  EXPECT_FALSE(refers("TbPessoaFisica", "TbPessoa"));
  EXPECT_TRUE(FindTable("TbViagemOnibus")->foreign_keys.empty());
}

TEST(Catalogue, ColumnsIndexesAndFixedRowsAreConsistent) {
  for (const TableDef& table : Tables()) {
    for (const ColumnDef& column : table.columns) {
      bool text = column.type == ColumnType::VarChar || column.type == ColumnType::Char;
      if (text) {
        EXPECT_GT(column.size, 0) << table.name << "." << column.name;
      } else {
        EXPECT_EQ(column.size, 0) << table.name << "." << column.name;
      }
    }
    for (const IndexDef& index : table.indexes) {
      ASSERT_FALSE(index.columns.empty()) << table.name;
      for (std::string_view column : index.columns) {
        EXPECT_NE(table.FindColumn(column), nullptr) << table.name << "." << column;
      }
    }
    EXPECT_EQ(table.fixed_rows.empty(), table.fixed_row_columns.empty()) << table.name;
    for (std::string_view column : table.fixed_row_columns) {
      EXPECT_NE(table.FindColumn(column), nullptr) << table.name << "." << column;
    }
    for (std::string_view values : table.fixed_rows) {
      EXPECT_EQ(CountValues(values), table.fixed_row_columns.size()) << table.name << ": " << values;
    }
  }
  // Money, dates and flags by their prefixes.
  const TableDef* assessment = FindTable("TbApuracaoReceita");
  EXPECT_EQ(assessment->FindColumn("Vl_ApuracaoReceita")->type, ColumnType::Money);
  EXPECT_EQ(assessment->FindColumn("Dt_Movimento")->type, ColumnType::DateTime);
  EXPECT_EQ(assessment->FindColumn("Ic_TotalizacaoDeCaixa")->type, ColumnType::Bit);
  EXPECT_EQ(FindTable("TbUF")->FindColumn("Sg_UF")->type, ColumnType::Char);
  EXPECT_EQ(FindTable("TbUF")->FindColumn("Sg_UF")->size, 2);
}

TEST(Catalogue, WorkTablesAndTheAccessControlDatabase) {
  bool access_control_seen = false;
  for (const TableDef& table : Tables()) {
    if (table.database.empty()) {
      // The terminal's own tables come first.
      EXPECT_FALSE(access_control_seen) << table.name;
    } else {
      access_control_seen = true;
      EXPECT_EQ(table.database, "MDESTACIONAMENTO") << table.name;
    }
    bool report = table.name.substr(0, 3) == "cgr";
    EXPECT_EQ(table.report_file, report) << table.name;
  }

  EXPECT_NE(FindTable("LOGPERMANENCIAMENSALISTA")->FindColumn("Cd_TicketEstacionamento"), nullptr);
  // Work tables filled by INSERT ... SELECT take their columns by position
  // (TempCidade's are checked by the schema tests).
  const TableDef* till_report = FindTable("TempApuracaoReceita7");
  ASSERT_EQ(till_report->columns.size(), 6u);
  EXPECT_EQ(till_report->columns[0].name, "Ds_Tipo");
  EXPECT_EQ(till_report->columns[3].name, "Ds_Observacao");
  EXPECT_EQ(till_report->columns[5].name, "Vl_Total");

  const TableDef* map = FindTable("cgrMapaControleEmbarque1");
  EXPECT_NE(map->FindColumn("Qt_Dia01"), nullptr);
  EXPECT_NE(map->FindColumn("Qt_Dia31"), nullptr);
  EXPECT_EQ(map->FindColumn("Qt_Dia1"), nullptr);
  EXPECT_EQ(map->FindColumn("Qt_Dia32"), nullptr);
  EXPECT_EQ(map->columns.back().name, "Qt_Total");
  const TableDef* report = FindTable("cgrApuracaoReceita3");
  EXPECT_EQ(report->FindColumn("In_Tarifa6")->type, ColumnType::Float);
  EXPECT_EQ(report->FindColumn("Dt_Movimento")->type, ColumnType::VarChar);  // "dd/mm/yyyy" text
  EXPECT_EQ(report->FindColumn("In_Tarifa7"), nullptr);
}

}  // namespace
}  // namespace vek::schema
