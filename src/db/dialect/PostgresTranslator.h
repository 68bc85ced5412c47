#pragma once
// Translation of SQL Server (T-SQL) statements into PostgreSQL statements.

#include <string>
#include <string_view>

#include "vek/db/dialect/ColumnKinds.h"

namespace vek::dialect {

// The session setting that vek_getdate() reads as the server's "now"
// ('yyyy-mm-dd hh:mm:ss'); when it is unset or empty, "now" is the start of
// the statement on the server's clock. A connection whose session has a
// fixed clock sets it ("SET vek.now = '2026-11-21 10:30:15'").
inline constexpr const char* kPostgresNowSetting = "vek.now";

// Translates SQL Server text, as the library builds it, into PostgreSQL text
// with SQL Server's meaning on a database made by schema::PostgresDdl(),
// which creates the vek_* functions and the collations this text names.
// Shares the scopes, the SQL Server 2000 qualifier rule, the typing of "+"
// and the statement forms with TranslateToSqlite (see SqliteTranslator.h);
// what differs:
// - TOP n becomes LIMIT n; a branch of a UNION with TOP is parenthesized.
// - ORDER BY items get NULLS FIRST (ascending) or NULLS LAST (descending),
//   where SQL Server puts NULLs; a UNION's ORDER BY names its columns without
//   their qualifier, as PostgreSQL requires.
// - GETDATE() and CURRENT_TIMESTAMP become vek_getdate(); ISNULL becomes
//   COALESCE; DAY, MONTH and YEAR become EXTRACT; DATEDIFF, DATEADD and
//   DATEPART become vek_datediff/vek_dateadd/vek_datepart, which count
//   boundaries as SQL Server does; LEN ignores trailing blanks; CHARINDEX,
//   REPLACE (case-insensitive) and ROUND (with its truncating argument)
//   become vek_ functions; SCOPE_IDENTITY() and @@IDENTITY become lastval().
// - CONVERT and CAST: to text through vek_text (dates in CONVERT's style,
//   numbers that do not fit as "*"), to date and datetime through
//   vek_datetime (ISO or day-first text), to int truncating, to decimal,
//   money and float as PostgreSQL casts.
// - "+" between texts becomes ||; a date plus days becomes
//   (date + (days) * interval '1 day'); operands whose type is known only at
//   run time go through vek_add.
// - LIKE becomes ILIKE (case-insensitive, accent-sensitive, as SQL Server's
//   default collation); a pattern with a [set] or one that is not a literal
//   becomes a regular expression (vek_like_regex) matched with ~*. Either
//   way the pattern is compared under the deterministic collation vek_fold,
//   since PostgreSQL refuses LIKE under the text columns' collation.
// - [names] and "names" are written in lower case ("[Tb Cor]" is "tb cor"),
//   as PostgreSQL folds the schema's unquoted names; db.dbo.table becomes
//   schema db's table (MDESTACIONAMENTO.dbo.CLIENTE is
//   mdestacionamento.cliente); sys.databases lists the schemas and the
//   database itself, names compared case-insensitively.
// - DELETE FROM t alias keeps its alias; DELETE t FROM ... JOIN ... becomes
//   DELETE FROM t AS vek_deleted USING ... WHERE vek_deleted.ctid = row.ctid;
//   TRUNCATE TABLE restarts the identity, as SQL Server's does.
// - Date literals become 'yyyy-mm-dd hh:mm:ss' (slashed dates day first),
//   which PostgreSQL reads the same whatever its DateStyle; N'...' loses its
//   N.
//
// Raises VekError 0x80040E14 (Source "PostgresTranslator") naming the
// construct for what has no faithful form: the list of TranslateToSqlite,
// and @@ROWCOUNT.
std::string TranslateToPostgres(std::string_view tsql);
Translation TranslateToPostgres(std::string_view tsql, const ColumnKinds* kinds);

}  // namespace vek::dialect
