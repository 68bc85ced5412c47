#pragma once
// The embedded SQLite engine behind the data-access objects. Internal: only
// Driver.cpp creates it.

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "vek/db/Driver.h"

namespace vek {

// Opens `path` (a file, created when missing, or ":memory:") with WAL
// journal, a busy timeout, foreign keys enforced, the SQL Server functions
// and, beside a file database, "MDESTACIONAMENTO.db" attached under the name
// MDESTACIONAMENTO when it exists.
std::unique_ptr<Driver> OpenSqliteDriver(const std::string& path, std::function<Date()> now);

// The report database that a Jet connection string names ("Data Source=
// folder\bdTemp.mdb"): the SQLite file at that path with "/" for "\" and
// ".db" for ".mdb". It must exist (Jet's "Could not find file" otherwise);
// the driver speaks Dialect::Access.
std::string ReportDatabaseFile(std::string_view data_source);
std::unique_ptr<Driver> OpenReportDatabaseDriver(const std::string& data_source, std::function<Date()> now);

}  // namespace vek
