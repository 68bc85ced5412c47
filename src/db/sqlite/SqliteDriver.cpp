#include "vek/db/sqlite/SqliteDriver.h"

#include <sqlite3.h>

#include <filesystem>
#include <limits>
#include <list>
#include <unordered_map>

#include "vek/db/DateText.h"
#include "vek/db/DbError.h"
#include "vek/db/backup/SqliteBackup.h"
#include "vek/db/dialect/ColumnKinds.h"
#include "vek/db/dialect/SqliteFunctions.h"
#include "vek/platform/Text.h"

namespace vek {
namespace {

constexpr const char* kSource = "SQLite";
constexpr int kBusyTimeoutMs = 30000;
constexpr size_t kMaxCachedStatements = 256;

struct ConnectionCloser {
  void operator()(sqlite3* db) const noexcept { sqlite3_close_v2(db); }
};
struct StatementFinalizer {
  void operator()(sqlite3_stmt* statement) const noexcept { sqlite3_finalize(statement); }
};
using DatabaseHandle = std::unique_ptr<sqlite3, ConnectionCloser>;
using StatementHandle = std::unique_ptr<sqlite3_stmt, StatementFinalizer>;

int32_t ErrorNumber(int code) {
  switch (code & 0xFF) {
    case SQLITE_CONSTRAINT: return adErrConstraint;
    case SQLITE_ERROR: return adErrSyntax;
    default: return adErrUnspecified;
  }
}

[[noreturn]] void RaiseSqliteError(sqlite3* db, int code) {
  RaiseDbError(ErrorNumber(code), kSource, db ? sqlite3_errmsg(db) : sqlite3_errstr(code));
}

std::string Quoted(std::string_view name) {
  std::string out = "\"";
  for (char c : name) {
    if (c == '"') out += '"';
    out += c;
  }
  return out + "\"";
}

// The field type and size of a declared column type, as a SQL Server
// provider reports its types.
void TypeFromDeclared(std::string_view declared, ColumnInfo& column) {
  const std::string type = UCase(declared);
  int32_t size = 0;
  if (const size_t open = type.find('('); open != std::string::npos) {
    size = std::atoi(type.c_str() + open + 1);
  }
  const auto has = [&](std::string_view word) { return type.find(word) != std::string::npos; };
  if (has("DATE") || has("TIME")) {
    column.type = adDBTimeStamp;
    column.defined_size = 16;
  } else if (has("MONEY")) {
    column.type = adCurrency;
    column.defined_size = 8;
  } else if (has("TINYINT")) {
    column.type = adUnsignedTinyInt;
    column.defined_size = 1;
  } else if (has("SMALLINT")) {
    column.type = adSmallInt;
    column.defined_size = 2;
  } else if (has("BIGINT")) {
    column.type = adBigInt;
    column.defined_size = 8;
  } else if (has("INT")) {
    column.type = adInteger;
    column.defined_size = 4;
  } else if (has("BIT") || has("BOOL")) {
    column.type = adBoolean;
    column.defined_size = 2;
  } else if (has("CHAR") || has("TEXT") || has("CLOB")) {
    column.type = has("NCHAR") || has("NVARCHAR") ? adVarWChar : adVarChar;
    if (type.starts_with("CHAR") || type.starts_with("NCHAR")) column.type = has("NCHAR") ? adWChar : adChar;
    column.defined_size = size > 0 ? size : std::numeric_limits<int32_t>::max();
  } else if (has("REAL") || has("FLOA") || has("DOUB")) {
    column.type = adDouble;
    column.defined_size = 8;
  } else if (has("NUMERIC") || has("DECIMAL")) {
    column.type = adNumeric;
    column.defined_size = 19;
  } else {
    column.type = adVariant;
  }
}

// An expression's column as the translation types it.
void TypeFromTranslation(DataTypeEnum type, ColumnInfo& column) {
  column.type = type;
  switch (type) {
    case adInteger: column.defined_size = 4; break;
    case adCurrency:
    case adDouble: column.defined_size = 8; break;
    case adNumeric: column.defined_size = 19; break;
    case adDBTimeStamp: column.defined_size = 16; break;
    default: column.defined_size = std::numeric_limits<int32_t>::max(); break;
  }
}

Variant IntegerValue(sqlite3_int64 value) { return Variant(static_cast<int64_t>(value)); }

// A value of a column without a declared type takes its type from itself;
// text in the canonical date-time form is a date.
Variant ValueByItself(sqlite3_stmt* statement, int index) {
  switch (sqlite3_column_type(statement, index)) {
    case SQLITE_NULL: return Variant::Null();
    case SQLITE_INTEGER: return IntegerValue(sqlite3_column_int64(statement, index));
    case SQLITE_FLOAT: return Variant(sqlite3_column_double(statement, index));
    default: {
      const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(statement, index));
      const std::string_view text(bytes ? bytes : "", static_cast<size_t>(sqlite3_column_bytes(statement, index)));
      if (text.size() >= 19 && text.size() <= 23) {
        if (auto date = ParseCanonicalDate(text)) return Variant(*date);
      }
      return Variant(std::string(text));
    }
  }
}

Variant ValueOfType(sqlite3_stmt* statement, int index, DataTypeEnum type) {
  const int stored = sqlite3_column_type(statement, index);
  if (stored == SQLITE_NULL) return Variant::Null();
  switch (type) {
    case adDBTimeStamp: {
      if (stored == SQLITE_TEXT) {
        const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, index));
        if (auto date = ParseCanonicalDate(text)) return Variant(*date);
        return Variant(std::string(text));
      }
      return Variant(Date(sqlite3_column_double(statement, index)));
    }
    case adCurrency: {
      if (stored == SQLITE_INTEGER) return Variant(Currency::FromRaw(sqlite3_column_int64(statement, index) * 10000));
      return Variant(Currency(sqlite3_column_double(statement, index)));
    }
    case adInteger:
    case adBigInt: {
      if (stored != SQLITE_INTEGER) return ValueByItself(statement, index);
      return IntegerValue(sqlite3_column_int64(statement, index));
    }
    case adSmallInt: {
      const sqlite3_int64 value = sqlite3_column_int64(statement, index);
      if (stored != SQLITE_INTEGER || value < INT16_MIN || value > INT16_MAX) return ValueByItself(statement, index);
      return Variant(static_cast<int16_t>(value));
    }
    case adUnsignedTinyInt: {
      const sqlite3_int64 value = sqlite3_column_int64(statement, index);
      if (stored != SQLITE_INTEGER || value < 0 || value > 255) return ValueByItself(statement, index);
      return Variant(static_cast<uint8_t>(value));
    }
    case adBoolean: return Variant(sqlite3_column_double(statement, index) != 0);
    case adDouble:
    case adNumeric: {
      if (stored == SQLITE_TEXT) return ValueByItself(statement, index);
      return Variant(sqlite3_column_double(statement, index));
    }
    case adChar:
    case adWChar:
    case adVarChar:
    case adVarWChar: {
      const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, index));
      return Variant(std::string(text, static_cast<size_t>(sqlite3_column_bytes(statement, index))));
    }
    default: return ValueByItself(statement, index);
  }
}

DataTypeEnum TypeOfValue(const Variant& value) {
  switch (value.Type()) {
    case VariantType::Long:
    case VariantType::Integer:
    case VariantType::Byte: return adInteger;
    case VariantType::Double: return adDouble;
    case VariantType::Currency: return adCurrency;
    case VariantType::Date: return adDBTimeStamp;
    case VariantType::Boolean: return adBoolean;
    default: return adVarChar;
  }
}

class SqliteDriver final : public Driver {
 public:
  SqliteDriver(DatabaseHandle db, std::function<Date()> now, Dialect dialect = Dialect::SQLite)
      : db_(std::move(db)), now_(std::move(now)), dialect_(dialect) {}
  ~SqliteDriver() override { Close(); }

  Dialect SqlDialect() const override { return dialect_; }

  QueryResult RunTyped(const std::string& text, std::span<const Variant> parameters,
                       const dialect::ResultTypes* types) override {
    CachedStatement& cached = Prepare(text);
    sqlite3_stmt* statement = cached.handle.get();
    Bind(statement, parameters);
    QueryResult result;
    const int column_count = sqlite3_column_count(statement);
    result.returns_rows = column_count > 0;
    if (result.returns_rows && (!cached.column_set || !cached.described_with.Same(types))) {
      DescribeColumns(cached, types);
    }
    const bool untyped_columns = cached.untyped;
    const int64_t changes_before = sqlite3_total_changes64(db_.get());
    int code;
    while ((code = sqlite3_step(statement)) == SQLITE_ROW) {
      Row row;
      row.reserve(static_cast<size_t>(column_count));
      for (int i = 0; i < column_count; ++i) {
        const ColumnInfo& column = cached.columns[static_cast<size_t>(i)];
        row.push_back(column.type == adVariant ? ValueByItself(statement, i)
                                               : ValueOfType(statement, i, column.type));
      }
      result.rows.push_back(std::move(row));
    }
    if (code != SQLITE_DONE) {
      sqlite3_reset(statement);
      RaiseSqliteError(db_.get(), code);
    }
    sqlite3_reset(statement);
    if (result.returns_rows) {
      result.columns = untyped_columns ? TypedColumns(cached.columns, result.rows) : cached.column_set;
    } else {
      result.records_affected =
          sqlite3_total_changes64(db_.get()) != changes_before ? sqlite3_changes64(db_.get()) : 0;
      if (!sqlite3_stmt_readonly(statement) && cached.changes_schema) ForgetSchema();
    }
    return result;
  }

  std::optional<int64_t> Insert(const RowWrite& row) override {
    Run(InsertText(row, QualifiedTable(row), Quoted), row.values);
    if (row.identity_column.empty()) return std::nullopt;
    return sqlite3_last_insert_rowid(db_.get());
  }

  int64_t Update(const RowWrite& row) override {
    const WriteStatement update =
        UpdateStatement(row, QualifiedTable(row), Quoted, Table(row.database, row.table).key_columns, kSource);
    return Run(update.text, update.values).records_affected;
  }

  // SQLite has no procedures: the system's own are registered on the
  // connection in C++, so a call that reaches the driver names none.
  void CallProcedure(const std::string& name, Parameters& /*parameters*/) override {
    RaiseDbError(adErrSyntax, kSource, "Could not find stored procedure '" + name + "'.");
  }

  // The engine has no BACKUP DATABASE: the driver writes the media file.
  QueryResult Backup(const std::string& text) override {
    return backup::BackupSqliteDatabase(db_.get(), backup::ParseBackupStatement(text, kSource), now_());
  }

  void Close() noexcept override {
    last_ = nullptr;
    statements_.clear();
    lru_.clear();
    db_.reset();
  }

 private:
  struct CachedStatement {
    StatementHandle handle;
    std::vector<ColumnInfo> columns;
    std::shared_ptr<const ColumnSet> column_set;
    dialect::ResultTypes described_with;  // the translation's types the columns took
    bool untyped = false;
    bool changes_schema = false;
    std::list<std::string>::iterator lru_position;
  };
  struct TableInfo {
    std::vector<std::string> key_columns;
    bool integer_key = false;  // a single INTEGER PRIMARY KEY: the identity
  };

  static std::string QualifiedTable(const RowWrite& row) {
    return (row.database.empty() ? "" : Quoted(row.database) + ".") + Quoted(row.table);
  }

  CachedStatement& Prepare(const std::string& text) {
    // The statement run last is the front of the LRU; the same text again
    // (a data manager's look-up in a loop) needs no hashing.
    if (last_ != nullptr && *last_->lru_position == text) return *last_;
    if (auto hit = statements_.find(text); hit != statements_.end()) {
      lru_.splice(lru_.begin(), lru_, hit->second.lru_position);
      last_ = &hit->second;
      return hit->second;
    }
    sqlite3_stmt* raw = nullptr;
    const char* tail = nullptr;
    const int code = sqlite3_prepare_v2(db_.get(), text.c_str(), static_cast<int>(text.size()), &raw, &tail);
    StatementHandle handle(raw);
    if (code != SQLITE_OK) RaiseSqliteError(db_.get(), code);
    if (!handle) RaiseDbError(adErrSyntax, kSource, "The statement is empty.");
    for (; tail && *tail; ++tail) {
      if (*tail != ' ' && *tail != '\t' && *tail != '\r' && *tail != '\n' && *tail != ';') {
        RaiseDbError(adErrSyntax, kSource, "Only one statement may be run per call.");
      }
    }
    if (statements_.size() >= kMaxCachedStatements) {
      statements_.erase(lru_.back());
      lru_.pop_back();
    }
    lru_.push_front(text);
    CachedStatement& cached = statements_[text];
    last_ = &cached;
    cached.handle = std::move(handle);
    cached.lru_position = lru_.begin();
    const std::string first_word = UCase(Left(LTrim(text), 6));
    cached.changes_schema = first_word.starts_with("CREATE") || first_word.starts_with("ALTER") ||
                            first_word.starts_with("DROP") || first_word.starts_with("ATTACH") ||
                            first_word.starts_with("DETACH");
    return cached;
  }

  // Every parameter is bound on every run (the count must match), so the
  // previous run's values need no clearing.
  void Bind(sqlite3_stmt* statement, std::span<const Variant> parameters) {
    const int expected = sqlite3_bind_parameter_count(statement);
    if (static_cast<int>(parameters.size()) != expected) {
      RaiseDbError(adErrUnspecified, kSource,
                   "The statement expects " + std::to_string(expected) + " parameter(s), " +
                       std::to_string(parameters.size()) + " given.");
    }
    for (int i = 0; i < expected; ++i) {
      const Variant& value = parameters[static_cast<size_t>(i)];
      const int at = i + 1;
      int code = SQLITE_OK;
      switch (value.Type()) {
        case VariantType::Empty:
        case VariantType::Null: code = sqlite3_bind_null(statement, at); break;
        case VariantType::Boolean: code = sqlite3_bind_int(statement, at, *value.Get<bool>() ? 1 : 0); break;
        case VariantType::Byte: code = sqlite3_bind_int64(statement, at, *value.Get<uint8_t>()); break;
        case VariantType::Integer: code = sqlite3_bind_int64(statement, at, *value.Get<int16_t>()); break;
        case VariantType::Long: code = sqlite3_bind_int64(statement, at, *value.Get<int32_t>()); break;
        case VariantType::Double: code = sqlite3_bind_double(statement, at, *value.Get<double>()); break;
        case VariantType::Currency:
          code = sqlite3_bind_double(statement, at, value.Get<Currency>()->ToDouble());
          break;
        case VariantType::Date: {
          const std::string text = CanonicalDateText(*value.Get<Date>());
          code = sqlite3_bind_text(statement, at, text.data(), static_cast<int>(text.size()), SQLITE_TRANSIENT);
          break;
        }
        case VariantType::String: {
          const std::string& text = *value.Get<std::string>();
          code = sqlite3_bind_text(statement, at, text.data(), static_cast<int>(text.size()), SQLITE_TRANSIENT);
          break;
        }
      }
      if (code != SQLITE_OK) RaiseSqliteError(db_.get(), code);
    }
  }

  const dialect::ColumnKinds* DeclaredKinds() override {
    if (!kinds_read_) {
      kinds_ = ReadDeclaredKinds();
      kinds_read_ = true;
    }
    return &kinds_;
  }

  // Every column of every table and view of the main and attached databases.
  dialect::ColumnKinds ReadDeclaredKinds() {
    dialect::ColumnKinds kinds;
    std::vector<std::string> databases;
    ForEachRow("SELECT name FROM pragma_database_list WHERE name <> 'temp'",
               [&](sqlite3_stmt* row) { databases.emplace_back(reinterpret_cast<const char*>(sqlite3_column_text(row, 0))); });
    for (const std::string& database : databases) {
      ForEachRow("SELECT p.name, p.type FROM " + Quoted(database) + ".sqlite_master AS m, pragma_table_info(m.name, '" +
                     Replace(database, "'", "''") + "') AS p WHERE m.type IN ('table', 'view')",
                 [&](sqlite3_stmt* row) {
                   const auto* name = reinterpret_cast<const char*>(sqlite3_column_text(row, 0));
                   const auto* type = reinterpret_cast<const char*>(sqlite3_column_text(row, 1));
                   if (name) kinds.Add(name, dialect::KindOfDeclaredType(type ? type : ""));
                 });
    }
    return kinds;
  }

  template <class Visit>
  void ForEachRow(const std::string& text, Visit&& visit) {
    sqlite3_stmt* raw = nullptr;
    if (sqlite3_prepare_v2(db_.get(), text.c_str(), -1, &raw, nullptr) != SQLITE_OK) {
      RaiseSqliteError(db_.get(), sqlite3_errcode(db_.get()));
    }
    StatementHandle statement(raw);
    while (sqlite3_step(raw) == SQLITE_ROW) visit(raw);
  }

  void DescribeColumns(CachedStatement& cached, const dialect::ResultTypes* types) {
    cached.described_with = types ? *types : dialect::ResultTypes();
    cached.untyped = false;
    sqlite3_stmt* statement = cached.handle.get();
    const int count = sqlite3_column_count(statement);
    cached.columns.resize(static_cast<size_t>(count));
    for (int i = 0; i < count; ++i) {
      ColumnInfo& column = cached.columns[static_cast<size_t>(i)];
      column.name = sqlite3_column_name(statement, i);
      const char* declared = sqlite3_column_decltype(statement, i);
      const char* table = sqlite3_column_table_name(statement, i);
      const DataTypeEnum translated = types ? types->Of(static_cast<size_t>(i), static_cast<size_t>(count)) : adEmpty;
      if (declared) {
        TypeFromDeclared(declared, column);
      } else if (translated != adEmpty) {
        TypeFromTranslation(translated, column);
      } else {
        // Known only from the rows (a parameter selected, a derived table's
        // expression): typed as the server would type its value.
        column.type = adVariant;
        cached.untyped = true;
      }
      if (table) {
        column.base_database = sqlite3_column_database_name(statement, i);
        column.base_table = table;
        column.base_column = sqlite3_column_origin_name(statement, i);
        const TableInfo& info = Table(column.base_database, column.base_table);
        for (const std::string& key : info.key_columns) {
          if (EqualsIgnoreCase(key, column.base_column)) column.is_key = true;
        }
        column.is_autoincrement = column.is_key && info.integer_key;
      }
    }
    cached.column_set = std::make_shared<const ColumnSet>(cached.columns);
  }

  // Columns without a declared type take the type of their first value.
  static std::shared_ptr<const ColumnSet> TypedColumns(std::vector<ColumnInfo> columns,
                                                       const std::vector<Row>& rows) {
    for (size_t i = 0; i < columns.size(); ++i) {
      ColumnInfo& column = columns[i];
      if (column.type != adVariant) continue;
      column.type = adVarChar;
      for (const Row& row : rows) {
        if (!row[i].IsNull()) {
          column.type = TypeOfValue(row[i]);
          break;
        }
      }
    }
    return std::make_shared<const ColumnSet>(std::move(columns));
  }

  const TableInfo& Table(const std::string& database, const std::string& table) {
    const std::string key = FoldCase(database) + "." + FoldCase(table);
    if (auto hit = tables_.find(key); hit != tables_.end()) return hit->second;
    TableInfo info;
    const std::string text = "SELECT name, type, pk FROM " + Quoted(database.empty() ? "main" : database) +
                             ".pragma_table_info(?) WHERE pk > 0 ORDER BY pk";
    sqlite3_stmt* raw = nullptr;
    if (sqlite3_prepare_v2(db_.get(), text.c_str(), -1, &raw, nullptr) != SQLITE_OK) {
      RaiseSqliteError(db_.get(), sqlite3_errcode(db_.get()));
    }
    StatementHandle statement(raw);
    sqlite3_bind_text(raw, 1, table.c_str(), -1, SQLITE_TRANSIENT);
    std::string key_type;
    while (sqlite3_step(raw) == SQLITE_ROW) {
      info.key_columns.emplace_back(reinterpret_cast<const char*>(sqlite3_column_text(raw, 0)));
      key_type = UCase(reinterpret_cast<const char*>(sqlite3_column_text(raw, 1)));
    }
    // Only a rowid alias is numbered by the database: an INTEGER key of a
    // WITHOUT ROWID table is the caller's to give.
    info.integer_key = info.key_columns.size() == 1 && key_type == "INTEGER" && HasRowid(database, table);
    return tables_.emplace(key, std::move(info)).first->second;
  }

  bool HasRowid(const std::string& database, const std::string& table) {
    const std::string text = "SELECT rowid FROM " + (database.empty() ? "" : Quoted(database) + ".") +
                             Quoted(table) + " LIMIT 0";
    sqlite3_stmt* raw = nullptr;
    const bool has_rowid = sqlite3_prepare_v2(db_.get(), text.c_str(), -1, &raw, nullptr) == SQLITE_OK;
    sqlite3_finalize(raw);
    return has_rowid;
  }

  void ForgetSchema() {
    tables_.clear();
    kinds_read_ = false;
    for (auto& [text, cached] : statements_) {
      cached.columns.clear();
      cached.column_set.reset();
      cached.untyped = false;
    }
  }

  DatabaseHandle db_;
  std::function<Date()> now_;
  Dialect dialect_;
  std::unordered_map<std::string, CachedStatement> statements_;
  std::list<std::string> lru_;
  CachedStatement* last_ = nullptr;  // the front of lru_, or nullptr
  std::unordered_map<std::string, TableInfo> tables_;
  dialect::ColumnKinds kinds_;
  bool kinds_read_ = false;
};

void RunPragma(sqlite3* db, const std::string& text) {
  char* message = nullptr;
  if (sqlite3_exec(db, text.c_str(), nullptr, nullptr, &message) != SQLITE_OK) {
    std::string description = message ? message : "unknown error";
    sqlite3_free(message);
    RaiseDbError(adErrUnspecified, kSource, description);
  }
}

}  // namespace

std::unique_ptr<Driver> OpenSqliteDriver(const std::string& path, std::function<Date()> now) {
  sqlite3* raw = nullptr;
  const int code = sqlite3_open_v2(path.c_str(), &raw,
                                   SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_URI |
                                       SQLITE_OPEN_NOMUTEX, nullptr);
  DatabaseHandle db(raw);
  if (code != SQLITE_OK) RaiseSqliteError(db.get(), code);
  sqlite3_extended_result_codes(db.get(), 1);
  sqlite3_busy_timeout(db.get(), kBusyTimeoutMs);
  const bool in_memory = path == ":memory:" || path.empty() || path.starts_with("file::memory:");
  if (!in_memory) RunPragma(db.get(), "PRAGMA journal_mode=WAL");
  RunPragma(db.get(), "PRAGMA foreign_keys=ON");
  dialect::RegisterSqlServerFunctions(db.get(), now);
  if (!in_memory) {
    const std::filesystem::path access_control =
        std::filesystem::path(path).parent_path() / "MDESTACIONAMENTO.db";
    std::error_code ignored;
    if (std::filesystem::exists(access_control, ignored)) {
      std::string attach = "ATTACH DATABASE '" + Replace(access_control.string(), "'", "''") +
                           "' AS MDESTACIONAMENTO";
      RunPragma(db.get(), attach);
    }
  }
  return std::make_unique<SqliteDriver>(std::move(db), std::move(now));
}

std::string ReportDatabaseFile(std::string_view data_source) {
  std::string path = Replace(std::string(data_source), "\\", "/");
  if (path.size() >= 4 && EqualsIgnoreCase(std::string_view(path).substr(path.size() - 4), ".mdb")) {
    path.replace(path.size() - 4, 4, ".db");
  }
  return path;
}

std::unique_ptr<Driver> OpenReportDatabaseDriver(const std::string& data_source, std::function<Date()> now) {
  const std::string path = ReportDatabaseFile(data_source);
  std::error_code missing;
  if (path.empty() || !std::filesystem::is_regular_file(path, missing)) {
    RaiseDbError(adErrUnspecified, "Microsoft JET Database Engine", "Could not find file '" + path + "'.");
  }
  sqlite3* raw = nullptr;
  // An existing file only, and no journal left beside it: the report writer
  // reads the file alone once the work tables are filled.
  const int code = sqlite3_open_v2(path.c_str(), &raw, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr);
  DatabaseHandle db(raw);
  if (code != SQLITE_OK) RaiseSqliteError(db.get(), code);
  sqlite3_extended_result_codes(db.get(), 1);
  sqlite3_busy_timeout(db.get(), kBusyTimeoutMs);
  dialect::RegisterSqlServerFunctions(db.get(), now);
  return std::make_unique<SqliteDriver>(std::move(db), std::move(now), Dialect::Access);
}

}  // namespace vek
