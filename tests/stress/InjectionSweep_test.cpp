// Every text that a record kind's statements put between quotes, tried with
// hostile values through the protocol (Salvar, Consultar, Excluir). Each
// value is refused with 0x80040458 naming the field before any statement is
// sent, or stored and read back byte for byte; only a value longer than its
// column may end otherwise (refused by the database with its message, or cut
// to the column where the record's own INSERT cuts texts). The tables stay
// as they were.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <regex>
#include <set>
#include <string>
#include <vector>

#include "stress/RecordKinds.h"
#include "support/TerminalDatabase.h"

namespace vek {
namespace {

struct Payload {
  std::string name;
  std::string value;
};

const std::vector<Payload>& Payloads() {
  static const std::vector<Payload> payloads = {
      {"apostrophe", "O'Brien"},
      {"second statement", "'; DROP TABLE TbBairro; --"},
      {"doubled apostrophe", "D''Avila"},
      {"backslash before a quote", "C:\\'x"},
      {"NUL", std::string("a\0b", 3)},
      {"64 KiB", std::string(65536, 'Z')},
      {"invalid UTF-8", "\xC3\x28\xFF"},
  };
  return payloads;
}

const schema::TableDef* TableOf(const cgp& record) {
  const PropertyList& properties = record.Properties();
  for (const schema::TableDef& table : schema::Tables()) {
    if (static_cast<int32_t>(table.columns.size()) > properties.Count()) continue;
    bool same = true;
    for (size_t i = 0; i < table.columns.size() && same; ++i) {
      same = EqualsIgnoreCase(table.columns[i].name, properties.At(static_cast<int32_t>(i)).name);
    }
    if (same) return &table;
  }
  return nullptr;
}

bool IsText(const schema::ColumnDef& column) {
  return column.type == schema::ColumnType::VarChar || column.type == schema::ColumnType::Char;
}

// Gives the record a key of its own (`serial` keeps attempts apart; numbered
// columns stay 0 for the protocol to number) and `value` in `column`.
void Fill(cgp& record, const schema::TableDef& table, int32_t serial, std::string_view column,
          const std::string& value) {
  record.RestaurarDefault();
  for (std::string_view key : table.primary_key) {
    const schema::ColumnDef& definition = *table.FindColumn(key);
    if (definition.numbered) continue;
    if (EqualsIgnoreCase(key, "Cd_EmpresaUsuariaSistema")) {
      record.Let(key, Variant(1));
    } else if (IsText(definition)) {
      record.Let(key, Variant("K" + std::to_string(serial)));
    } else if (definition.type == schema::ColumnType::DateTime) {
      record.Let(key, Variant(DateSerial(2026, 3, 2) + static_cast<double>(serial)));
    } else {
      record.Let(key, Variant(serial % 30000 + 1));
    }
  }
  record.Let(column, Variant(value));
}

// The record's key as the save left it (numbers included), on another
// manager of its kind.
void CopyKey(const cgp& from, cgp& to, const schema::TableDef& table) {
  to.RestaurarDefault();
  for (std::string_view key : table.primary_key) to.Let(key, from.Get(key));
}

// Every value of a column, as the database holds it.
std::vector<std::string> ColumnValues(testing::TerminalDatabase& db, const schema::TableDef& table,
                                      std::string_view column) {
  std::vector<std::string> values;
  for (auto rows = db.Query("SELECT " + std::string(column) + " FROM " + std::string(table.name)); !rows->Eof();
       rows->MoveNext()) {
    const Variant value = rows->Fields().Item(0).Value();
    if (!value.IsNull()) values.push_back(CStr(value));
  }
  return values;
}

bool Holds(const std::vector<std::string>& values, const std::string& value) {
  return std::find(values.begin(), values.end(), value) != values.end();
}

// Consultar with the column alone (the look-up of records found by a text
// when their key is 0); a kind that needs its key says so with 0x80040201.
void LookUpByColumn(testing::TerminalDatabase& db, const testing::RegisteredKind& kind, const schema::TableDef& table,
                    std::string_view column, const std::string& value) {
  auto finder = kind.make();
  finder->Manager().Ob_cgpSistema(db.session);
  cgp& record = finder->Manager().RecordObject();
  record.RestaurarDefault();
  if (table.FindColumn("Cd_EmpresaUsuariaSistema")) record.Let("Cd_EmpresaUsuariaSistema", Variant(1));
  record.Let(column, Variant(value));
  try {
    finder->Consultar(true);
  } catch (const VekError& error) {
    if (error.Number() != kErrorNoKey) throw;
  }
}

// Excluir of the saved record, all its values given (some kinds delete by
// another column than the table's key).
void Remove(testing::TerminalDatabase& db, const testing::RegisteredKind& kind, const cgp& saved) {
  auto remover = kind.make();
  remover->Manager().Ob_cgpSistema(db.session);
  cgp& record = remover->Manager().RecordObject();
  for (int32_t i = 0; i < saved.Properties().Count(); ++i) {
    const std::string& name = saved.Properties().At(i).name;
    record.Let(name, saved.Get(name));
  }
  remover->Manager().Excluir();
}

struct Outcome {
  int refused = 0;
  int stored = 0;
  int too_long_refused = 0;
  int too_long_cut = 0;
  std::vector<std::string> failures;
};

// One value in one column of one kind: saved, read back, deleted.
void Try(testing::TerminalDatabase& db, const testing::RegisteredKind& kind, const schema::TableDef& table,
         const schema::ColumnDef& column, const Payload& payload, int32_t serial, Outcome& outcome) {
  const std::string where = kind.name + "." + std::string(column.name) + " (" + payload.name + "): ";
  auto saver = kind.make();
  saver->Manager().Ob_cgpSistema(db.session);
  cgp& record = saver->Manager().RecordObject();
  Fill(record, table, serial, column.name, payload.value);
  db.statements.clear();
  try {
    saver->Manager().Salvar();
  } catch (const VekError& error) {
    const bool too_long = static_cast<int32_t>(payload.value.size()) > column.size;
    if (error.Number() == kBusinessError) {
      if (error.Description().find(std::string(column.name)) == std::string::npos) {
        outcome.failures.push_back(where + "refused without naming the field: " + error.Description());
      } else if (!db.statements.empty()) {
        outcome.failures.push_back(where + "refused after a statement was sent: " + db.statements.front());
      } else {
        ++outcome.refused;
      }
    } else if (too_long && payload.value.find('\'') == std::string::npos && !error.Description().empty()) {
      ++outcome.too_long_refused;
    } else {
      outcome.failures.push_back(where + "failed with " + std::to_string(error.Number()) + " " +
                                 error.Description());
    }
    return;
  }
  try {
    auto reader = kind.make();
    reader->Manager().Ob_cgpSistema(db.session);
    CopyKey(record, reader->Manager().RecordObject(), table);
    // The protocol's look-up by the key (which may hold the value), then the
    // table itself, read by the test.
    reader->Consultar(true);
    const std::vector<std::string> stored = ColumnValues(db, table, column.name);
    if (Holds(stored, payload.value)) {
      ++outcome.stored;
    } else if (payload.value.size() > static_cast<size_t>(column.size) &&
               Holds(stored, Left(payload.value, column.size))) {
      ++outcome.too_long_cut;
    } else {
      outcome.failures.push_back(where + "saved, but not read back as it was");
    }
    LookUpByColumn(db, kind, table, column.name, payload.value);
    Remove(db, kind, record);
    if (Holds(ColumnValues(db, table, column.name), payload.value)) {
      outcome.failures.push_back(where + "still there after Excluir");
    }
    // What a later attempt finds must be its own.
    db.Query("DELETE FROM " + std::string(table.name));
  } catch (const VekError& error) {
    outcome.failures.push_back(where + "stored, then " + std::to_string(error.Number()) + " " + error.Description());
  }
}

// The record classes of src/, by their declarations.
std::set<std::string> RecordClassesInSources() {
  const std::regex declaration(
      R"(class\s+(cgd\w+)\s*(final\s*)?:\s*public\s+(cgdRecord|cgdRecordFoundByText|NamedParkingRecord)\s*<\s*cgp)");
  std::set<std::string> classes;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(VEK_SOURCE_DIR "/src")) {
    if (entry.path().extension() != ".h") continue;
    std::ifstream in(entry.path());
    const std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    for (std::sregex_iterator it(text.begin(), text.end(), declaration), end; it != end; ++it) {
      classes.insert((*it)[1]);
    }
  }
  return classes;
}

TEST(InjectionSweep, EveryRecordKindIsSwept) {
  std::set<std::string> registered;
  for (const testing::RegisteredKind& kind : testing::RecordKinds()) registered.insert(kind.name);
  const std::set<std::string> declared = RecordClassesInSources();
  EXPECT_GT(declared.size(), 40u);
  for (const std::string& name : declared) EXPECT_TRUE(registered.contains(name)) << name << " is not in RecordKinds()";
  for (const std::string& name : registered) EXPECT_TRUE(declared.contains(name)) << name << " is not a record class";
}

TEST(InjectionSweep, EveryQuotedTextIsRefusedOrStoredAsItIs) {
  testing::ScratchFolder folder;
  testing::TerminalDatabase db((folder.Path() / "Vek.db").string());
  db.Query("INSERT INTO TbTarifa (Cd_Tarifa, Cd_EmpresaUsuariaSistema, Ds_Tarifa, Vl_Tarifa, Cd_TipoReceita) "
           "VALUES (1, 1, 'EMBARQUE', 5, 1)");
  // Each kind is written alone, without the rows it refers to.
  testing::IgnoreForeignKeys(db);
  const std::string kMarker = "Qx7Marker";

  Outcome outcome;
  int splice_points = 0;
  int32_t serial = 100;
  for (const testing::RegisteredKind& kind : testing::RecordKinds()) {
    const schema::TableDef* table = TableOf(kind.make()->Manager().RecordObject());
    if (!table) {
      outcome.failures.push_back(kind.name + ": no catalogue table matches its properties");
      continue;
    }
    for (const schema::ColumnDef& column : table->columns) {
      if (!IsText(column)) continue;
      // A plain value first: the column is a splice point when the value
      // shows in the statements the protocol sends.
      ++serial;
      const std::string plain = kMarker.substr(0, std::min<size_t>(kMarker.size(), column.size));
      auto probe = kind.make();
      probe->Manager().Ob_cgpSistema(db.session);
      Fill(probe->Manager().RecordObject(), *table, serial, column.name, plain);
      db.statements.clear();
      try {
        probe->Manager().Salvar();
        auto reader = kind.make();
        reader->Manager().Ob_cgpSistema(db.session);
        CopyKey(probe->Manager().RecordObject(), reader->Manager().RecordObject(), *table);
        reader->Consultar(true);
        LookUpByColumn(db, kind, *table, column.name, plain);
        Remove(db, kind, probe->Manager().RecordObject());
        db.Query("DELETE FROM " + std::string(table->name));
      } catch (const VekError& error) {
        outcome.failures.push_back(kind.name + "." + std::string(column.name) + " (plain value): " +
                                   std::to_string(error.Number()) + " " + error.Description());
        continue;
      }
      bool spliced = false;
      for (const std::string& statement : db.statements) {
        spliced = spliced || statement.find("'" + plain) != std::string::npos;
      }
      if (!spliced) continue;
      ++splice_points;
      std::cout << "[ sweep    ] " << kind.name << "." << column.name << "\n";
      for (const Payload& payload : Payloads()) Try(db, kind, *table, column, payload, ++serial, outcome);
    }
  }
  std::cout << "[ sweep    ] " << Payloads().size() << " payloads x " << splice_points << " splice points: "
            << outcome.refused << " refused before any statement, " << outcome.stored << " stored as they were, "
            << outcome.too_long_refused << " too long refused by the database, " << outcome.too_long_cut
            << " too long cut to the column\n";
  EXPECT_GT(splice_points, 5);
  for (const std::string& failure : outcome.failures) ADD_FAILURE() << failure;

  // Every table is there (TbBairro among them) and whole.
  EXPECT_EQ(testing::DatabaseCheck(db), "ok");
}

}  // namespace
}  // namespace vek
