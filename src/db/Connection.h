#pragma once
// A connection to the terminal's database, with the members and semantics of
// the classic data-access Connection. Every statement of every object passes
// through one choke point here: the statement hook sees the text exactly as
// built, text holding more than one statement is refused before anything
// runs, and the text is translated for the connection's dialect and run.
//
// Connection strings: "Driver=SQLite3;Database=<file or :memory:>" (a bare
// path or ":memory:" is read the same way).

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

#include "vek/db/Driver.h"
#include "vek/db/dialect/ColumnKinds.h"
#include "vek/db/Enums.h"

namespace vek {

class Clock;
class Parameters;
class Recordset;
struct StatementShape;
struct ShapeTemplate;

class Connection : public std::enable_shared_from_this<Connection> {
 public:
  // A stored procedure written in C++: reads its input parameters and sets
  // its output parameters; it may run statements on the connection.
  using Procedure = std::function<void(Connection& connection, Parameters& parameters)>;
  using StatementHook = std::function<void(const std::string& text)>;

  Connection();
  ~Connection();
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;

  // Opens the given string, or ConnectionString() when empty. Raises 3705 when
  // already open and the driver's error when the database can't be opened.
  void Open(const std::string& connection_string = "");
  // Closes the connection; closing a closed connection does nothing.
  void Close() noexcept;
  int32_t State() const { return driver_ ? adStateOpen : adStateClosed; }

  const std::string& ConnectionString() const { return connection_string_; }
  void ConnectionString(std::string text) { connection_string_ = std::move(text); }
  Dialect SqlDialect() const;

  // Runs one statement. Row-returning text gives an open, read-only record
  // set; other text gives a closed one. records_affected receives the rows
  // that an INSERT, UPDATE or DELETE touched (-1 for a query).
  std::shared_ptr<Recordset> Execute(const std::string& text);
  std::shared_ptr<Recordset> Execute(const std::string& text, int32_t& records_affected,
                                     int32_t options = adOptionUnspecified);

  // Runs text already written in the connection's own dialect (the schema's
  // DDL): the hook sees it and the one-statement guard holds, but nothing is
  // translated.
  int32_t ExecuteNative(const std::string& text);

  // Every statement's text, exactly as built, before it runs. An empty hook
  // removes the current one.
  void OnStatement(StatementHook hook);
  // The hook set (empty when none): a data manager that opens a connection of
  // its own (the report database, a workbook) hands it on, so one hook sees
  // every statement the session sends.
  const StatementHook& OnStatement() const { return hook_; }

  // The clock that the database's getdate() reads (the system clock unless set).
  void SetClock(std::shared_ptr<Clock> clock);
  std::shared_ptr<Clock> GetClock() const;

  // Stored procedures written in C++, looked up by name in any case; they
  // stand in for the database's own procedures on an engine without them.
  void RegisterProcedure(const std::string& name, Procedure procedure);
  const Procedure* FindProcedure(const std::string& name) const;
  // Calls a stored procedure: the one registered under the name, else the
  // database's own. The hook sees the procedure's name only, as a client of
  // a server sees only the call.
  void CallProcedure(const std::string& name, Parameters& parameters);

  // The choke point (used by Recordset and Command as well).
  QueryResult RunStatement(const std::string& text, std::span<const Variant> parameters = {},
                           bool translate = true);
  // The text that runs on this connection for `text` (SQL Server's): the
  // translation for its database, typed by that database's columns.
  std::string TextAsRun(const std::string& text);
  // Writes a row back through the driver; raises 3704 when closed.
  std::optional<int64_t> InsertRow(const RowWrite& row);
  int64_t UpdateRow(const RowWrite& row);

 private:
  void NotifyStatement(const std::string& text);
  Driver& OpenDriverOrRaise(const char* object);
  const dialect::Translation& Translate(const std::string& text);

  void TellServerTheTime(Driver& driver);
  struct ShapeEntry;
  const ShapeEntry& Shape(const std::string& text, const StatementShape& shape);
  void RememberTemplate(ShapeTemplate shape_template, const ShapeEntry& entry);
  void ForgetShapes();

  std::string connection_string_;
  std::unique_ptr<Driver> driver_;
  StatementHook hook_;
  mutable std::mutex clock_mutex_;
  std::shared_ptr<Clock> clock_;
  std::unordered_map<std::string, Procedure> procedures_;  // by folded name
  // Translations by text, and by shape (text without its literals).
  std::unordered_map<std::string, dialect::Translation> translations_;
  struct ShapeEntry {
    bool usable = false;  // false: texts of this shape are translated one by one
    std::string text;
    dialect::ResultTypes types;
    std::vector<size_t> order;
    bool in_order = false;  // order is 0, 1, 2 ...: the literals go as found
  };
  std::unordered_map<std::string, ShapeEntry> shapes_;
  // The templates of the usable shapes run last, most recent first: a text
  // that matches one skips the tokenizer. They point into shapes_.
  struct KnownTemplate;
  std::vector<KnownTemplate> templates_;
};

}  // namespace vek
