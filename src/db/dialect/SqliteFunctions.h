#pragma once
// The SQL Server behaviour that SQLite lacks, as SQL functions and a collation
// registered on a connection. Text from TranslateToSqlite calls them, so they
// must be registered on every connection that runs translated text.
//
// Dates are text 'yyyy-mm-dd hh:mm:ss'. Every function that takes a date also
// reads 'yyyy-mm-dd', 'yyyy-mm-ddThh:mm:ss', 'yyyy-mm-dd hh:mm:ss.fff',
// day-first 'dd/mm/yyyy[ hh:mm[:ss]]', a time alone (on 1900-01-01) and, as
// SQL Server does, a number of days since 1900-01-01. A text it cannot read
// fails the statement with SQL Server's conversion message.

#include <functional>
#include <string_view>

#include "vek/platform/Date.h"

struct sqlite3;

namespace vek::dialect {

// The collation that the schema declares on text columns so that "=", ORDER
// BY, GROUP BY and DISTINCT compare as SQL Server's default collation does.
inline constexpr const char* kSqlServerCollation = "SQLSERVER_CI_AS";

// Registers on `db`:
// - vek_getdate(): `now()` as date text (the connection's clock, so that
//   tests control the server's "now"); it is read for every row, not once
//   per statement as SQL Server does.
// - vek_datediff(part, a, b): boundaries of `part` crossed from a to b, in
//   exact integer arithmetic (10:00:59 to 10:01:00 is one minute).
// - vek_dateadd(part, n, d), vek_datepart(part, d), vek_date_add(d, days)
//   (date + number), vek_date(x) (the day at midnight), vek_datetime(x).
// - vek_text(x, length, style, is_date, pad): CONVERT/CAST to a text type
//   (integers without ".0"; dates in CONVERT's style; cut to `length`
//   characters when length >= 0, padded to it when pad is 1).
// - vek_add(a, b): "+" when neither side's type is known before run time:
//   texts concatenate, numbers add, a text that is no number fails.
// - vek_substring, vek_len (trailing blanks not counted), vek_charindex,
//   vek_replace (both case-insensitive), vek_upper, vek_lower (accented
//   letters too), vek_left, vek_right, vek_round (decimal rounding, half away
//   from zero, negative lengths, the truncating third argument).
// - vek_database_name(name, file): the name sys.databases shows for a row of
//   pragma_database_list (the main database by its file's base name).
// - like(pattern, value) and like(pattern, value, escape), replacing SQLite's
//   LIKE: SQL Server's wildcards % _ [set] [^set] [a-z], case-insensitive
//   also for accented Latin letters, accent-sensitive, trailing blanks of the
//   value ignored.
// - the collation kSqlServerCollation with the same rules; trailing blanks
//   are ignored and accented letters sort beside their base letter.
// It also turns off SQLite's reading of an unknown "name" as a string (the
// translator writes [names] as "names", which must never become text).
// Raises VekError 0x80004005 with SQLite's message when registration fails.
void RegisterSqlServerFunctions(sqlite3* db, std::function<vek::Date()> now);

// The comparison of kSqlServerCollation: negative, zero or positive.
int CompareSqlServerText(std::string_view a, std::string_view b);

// SQL Server's LIKE; escape 0 means none.
bool MatchesSqlServerLike(std::string_view value, std::string_view pattern, char32_t escape = 0);

}  // namespace vek::dialect
