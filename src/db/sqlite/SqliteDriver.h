#pragma once
// The embedded SQLite engine behind the data-access objects. Internal: only
// Driver.cpp creates it.

#include <functional>
#include <memory>
#include <string>

#include "vek/db/Driver.h"

namespace vek {

// Opens `path` (a file, created when missing, or ":memory:") with WAL
// journal, a busy timeout, foreign keys enforced, the SQL Server functions
// and, beside a file database, "MDESTACIONAMENTO.db" attached under the name
// MDESTACIONAMENTO when it exists.
std::unique_ptr<Driver> OpenSqliteDriver(const std::string& path, std::function<Date()> now);

}  // namespace vek
