#include "vek/db/Connection.h"

#include <algorithm>
#include <utility>

#include "vek/db/DateText.h"
#include "vek/db/DbError.h"
#include "vek/db/Recordset.h"
#include "vek/db/StatementShape.h"
#include "vek/db/dialect/AccessTranslator.h"
#include "vek/db/backup/BackupStatement.h"
#include "vek/db/dialect/PostgresTranslator.h"
#include "vek/db/dialect/SqliteTranslator.h"
#include "vek/db/dialect/Statements.h"
#include "vek/platform/VekError.h"
#include "vek/platform/Clock.h"
#include "vek/platform/Text.h"

namespace vek {
namespace {

// Translations are kept per connection: the system runs the same few hundred
// statement texts over and over.
constexpr size_t kMaxCachedTranslations = 2048;
// A data manager alternates a handful of shapes (Salvar: its SELECT, then the
// UPDATE or the INSERT); more templates would cost more than they save.
constexpr size_t kMaxTemplates = 8;

void RefuseMoreThanOneStatement(const std::string& text) {
  if (dialect::HoldsMoreThanOneStatement(text)) {
    RaiseDbError(adErrSyntax, "vek", "Only one statement may be run per call; the text holds more than one.");
  }
}

dialect::Translation TranslateFor(Dialect dialect, std::string_view text, const dialect::ColumnKinds* kinds) {
  switch (dialect) {
    case Dialect::SQLite: return dialect::TranslateToSqlite(text, kinds);
    case Dialect::PostgreSQL: return dialect::TranslateToPostgres(text, kinds);
    case Dialect::Access: return dialect::TranslateAccessToSqlite(text, kinds);
    case Dialect::SqlServer: break;
  }
  return {std::string(text), {}};  // SQL Server text passes as it is, typed by the server
}

}  // namespace

struct Connection::KnownTemplate {
  ShapeTemplate shape_template;
  const ShapeEntry* entry;
};

Connection::Connection() : clock_(std::make_shared<SystemClock>()) {}

Connection::~Connection() { Close(); }

void Connection::Open(const std::string& connection_string) {
  if (driver_) RaiseAdoError(adErrObjectOpen, "ADODB.Connection");
  if (!connection_string.empty()) connection_string_ = connection_string;
  driver_ = OpenDriver(connection_string_, [this] { return GetClock()->Now(); });
  translations_.clear();
  ForgetShapes();
}

void Connection::ForgetShapes() {
  templates_.clear();
  shapes_.clear();
}

void Connection::Close() noexcept {
  if (driver_) {
    driver_->Close();
    driver_.reset();
  }
}

Dialect Connection::SqlDialect() const {
  return driver_ ? driver_->SqlDialect() : Dialect::SqlServer;
}

std::shared_ptr<Recordset> Connection::Execute(const std::string& text) {
  int32_t ignored = 0;
  return Execute(text, ignored);
}

std::shared_ptr<Recordset> Connection::Execute(const std::string& text, int32_t& records_affected,
                                               int32_t /*options*/) {
  QueryResult result = RunStatement(text);
  records_affected = static_cast<int32_t>(result.records_affected);
  auto recordset = std::make_shared<Recordset>();
  if (result.returns_rows) recordset->Attach(std::move(result), shared_from_this());
  return recordset;
}

void Connection::OnStatement(StatementHook hook) { hook_ = std::move(hook); }

void Connection::SetClock(std::shared_ptr<Clock> clock) {
  std::lock_guard lock(clock_mutex_);
  clock_ = clock ? std::move(clock) : std::make_shared<SystemClock>();
}

std::shared_ptr<Clock> Connection::GetClock() const {
  std::lock_guard lock(clock_mutex_);
  return clock_;
}

void Connection::RegisterProcedure(const std::string& name, Procedure procedure) {
  procedures_[FoldCase(name)] = std::move(procedure);
}

const Connection::Procedure* Connection::FindProcedure(const std::string& name) const {
  const auto hit = procedures_.find(FoldCase(name));
  return hit == procedures_.end() ? nullptr : &hit->second;
}

void Connection::CallProcedure(const std::string& name, Parameters& parameters) {
  Driver& driver = OpenDriverOrRaise("ADODB.Command");
  NotifyStatement(name);
  if (const Procedure* procedure = FindProcedure(name)) {
    StatementHook hook = std::exchange(hook_, nullptr);
    try {
      (*procedure)(*this, parameters);
    } catch (...) {
      hook_ = std::move(hook);
      throw;
    }
    hook_ = std::move(hook);
    return;
  }
  if (driver.SqlDialect() == Dialect::PostgreSQL) TellServerTheTime(driver);
  driver.CallProcedure(name, parameters);
}

void Connection::NotifyStatement(const std::string& text) {
  if (hook_) hook_(text);
}

Driver& Connection::OpenDriverOrRaise(const char* object) {
  if (!driver_) RaiseAdoError(adErrObjectClosed, object);
  return *driver_;
}

std::string Connection::TextAsRun(const std::string& text) {
  OpenDriverOrRaise("ADODB.Connection");
  if (driver_->SqlDialect() == Dialect::SqlServer) return text;
  return Translate(text).text;
}

const dialect::Translation& Connection::Translate(const std::string& text) {
  if (auto hit = translations_.find(text); hit != translations_.end()) return hit->second;
  // Only text that passed the guard is cached, so a cached text skips it.
  RefuseMoreThanOneStatement(text);
  dialect::Translation translated = TranslateFor(driver_->SqlDialect(), text, driver_->DeclaredKinds());
  if (translations_.size() >= kMaxCachedTranslations) translations_.clear();
  return translations_.emplace(text, std::move(translated)).first->second;
}

const Connection::ShapeEntry& Connection::Shape(const std::string& text, const StatementShape& shape) {
  if (auto hit = shapes_.find(shape.key); hit != shapes_.end()) return hit->second;
  // A shape is checked once: what holds for one text of it holds for all.
  RefuseMoreThanOneStatement(text);
  const Dialect dialect = driver_->SqlDialect();
  const dialect::ColumnKinds* kinds = driver_->DeclaredKinds();
  ShapeEntry entry;
  const auto translate = [&](std::string_view probe) {
    dialect::Translation translation = TranslateFor(dialect, probe, kinds);
    entry.types = std::move(translation.types);
    return std::move(translation.text);
  };
  if (auto translated = TranslateShape(text, dialect, translate)) {
    entry.usable = true;
    entry.text = std::move(translated->text);
    entry.order = std::move(translated->order);
    entry.in_order = entry.order.size() == shape.literals.size();
    for (size_t i = 0; entry.in_order && i < entry.order.size(); ++i) entry.in_order = entry.order[i] == i;
  }
  if (shapes_.size() >= kMaxCachedTranslations) ForgetShapes();
  return shapes_.emplace(shape.key, std::move(entry)).first->second;
}

QueryResult Connection::RunStatement(const std::string& text, std::span<const Variant> parameters,
                                     bool translate) {
  Driver& driver = OpenDriverOrRaise("ADODB.Connection");
  NotifyStatement(text);
  // A backup is no query: the driver carries it out (or hands it to the server) as built.
  if (backup::IsBackupStatement(text)) {
    RefuseMoreThanOneStatement(text);
    return driver.Backup(text);
  }
  const Dialect dialect = driver.SqlDialect();
  if (dialect == Dialect::PostgreSQL) TellServerTheTime(driver);
  // SQL Server's own text is not shaped: bound, its literals would change
  // type; nor is Jet's, whose "#" dates the shape would not see.
  if (translate && parameters.empty() && dialect != Dialect::SqlServer && dialect != Dialect::Access) {
    const auto run_shaped = [&driver](const ShapeEntry& entry, std::vector<Variant>& found) {
      if (entry.in_order) return driver.RunTyped(entry.text, found, &entry.types);
      std::vector<Variant> literals;
      literals.reserve(entry.order.size());
      for (size_t index : entry.order) literals.push_back(std::move(found[index]));
      return driver.RunTyped(entry.text, literals, &entry.types);
    };
    for (size_t i = 0; i < templates_.size(); ++i) {
      if (std::optional<std::vector<Variant>> found = MatchShape(text, templates_[i].shape_template)) {
        if (i != 0) std::rotate(templates_.begin(), templates_.begin() + static_cast<std::ptrdiff_t>(i),
                                templates_.begin() + static_cast<std::ptrdiff_t>(i) + 1);
        return run_shaped(*templates_.front().entry, *found);
      }
    }
    ShapeTemplate shape_template;
    if (std::optional<StatementShape> shape = ShapeOf(text, dialect, &shape_template)) {
      const ShapeEntry& entry = Shape(text, *shape);
      if (entry.usable) {
        RememberTemplate(std::move(shape_template), entry);
        return run_shaped(entry, shape->literals);
      }
    }
  }
  if (translate) {
    const dialect::Translation& translation = Translate(text);
    return driver.RunTyped(translation.text, parameters, &translation.types);
  }
  RefuseMoreThanOneStatement(text);
  return driver.Run(text, parameters);
}

void Connection::RememberTemplate(ShapeTemplate shape_template, const ShapeEntry& entry) {
  if (!shape_template.Usable()) return;
  if (templates_.size() >= kMaxTemplates) templates_.pop_back();
  templates_.insert(templates_.begin(), KnownTemplate{std::move(shape_template), &entry});
}

void Connection::TellServerTheTime(Driver& driver) {
  // A server keeps its own time; only a clock that is not the system's (a
  // session's fixed clock) is handed to it, as the setting getdate() reads.
  const std::shared_ptr<Clock> clock = GetClock();
  if (dynamic_cast<const SystemClock*>(clock.get())) return;
  const Variant now(CanonicalDateText(clock->Now()));
  driver.Run("SELECT set_config('" + std::string(dialect::kPostgresNowSetting) + "', ?, false)",
             std::span<const Variant>(&now, 1));
}

int32_t Connection::ExecuteNative(const std::string& text) {
  const int64_t affected = RunStatement(text, {}, false).records_affected;
  // The schema's DDL runs here: what was translated before it knew other columns.
  translations_.clear();
  ForgetShapes();
  return static_cast<int32_t>(affected);
}

std::optional<int64_t> Connection::InsertRow(const RowWrite& row) {
  return OpenDriverOrRaise("ADODB.Recordset").Insert(row);
}

int64_t Connection::UpdateRow(const RowWrite& row) {
  return OpenDriverOrRaise("ADODB.Recordset").Update(row);
}

}  // namespace vek
