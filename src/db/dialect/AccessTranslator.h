#pragma once
// Translation of Jet SQL, the dialect of the report database (bdTemp), into
// SQLite statements.

#include <string_view>

#include "vek/db/dialect/ColumnKinds.h"

namespace vek::dialect {

// Jet SQL is first lowered to SQL Server's where the two read the same text
// differently, then translated as every statement is (SqliteTranslator.h):
// - "/" divides as decimals, as Jet always does: "6666 / 10000" is 0.6666,
//   never the whole-number 0 of SQL Server; "a / b" becomes "a * 1.0 / b";
// - a date between "#" signs (month first as Jet reads it, "#3/2/2026#", or
//   ISO, "#2026-03-02#", with an optional time) becomes a quoted ISO date;
// - "..." is a text, as in Jet, not a quoted name (names go between [ ]).
// A "#" that opens no date raises VekError kDialectErrorNumber.
Translation TranslateAccessToSqlite(std::string_view jet, const ColumnKinds* kinds);

// The lowering alone: Jet text as SQL Server text of the same meaning.
std::string LowerAccessToTsql(std::string_view jet);

}  // namespace vek::dialect
