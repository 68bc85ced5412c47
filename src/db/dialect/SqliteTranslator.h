#pragma once
// Translation of SQL Server (T-SQL) statements into SQLite statements.

#include <string>
#include <string_view>

#include "vek/db/dialect/ColumnKinds.h"
#include "vek/db/dialect/Tokenizer.h"

namespace vek::dialect {

// Translates SQL Server text, as the library builds it (clauses joined by a
// bare carriage return), into SQLite text with the same meaning on a
// connection prepared by RegisterSqlServerFunctions. Works on tokens: one
// pass over each statement's scopes for its qualifiers, one that writes the
// text, and a small pass over the operands of "+"; both are linear in the
// tokens, and TranslateToPostgres shares them (TranslatorBase.h). Several
// statements separated by ";" are translated one by one.
//
// What changes:
// - SELECT TOP n / TOP (n) becomes LIMIT n at the end of that SELECT (a
//   branch of a UNION is wrapped as SELECT * FROM (branch LIMIT n)).
// - GETDATE(), CURRENT_TIMESTAMP, DATEDIFF, DATEADD, DATEPART, DAY, MONTH,
//   YEAR, CONVERT, CAST (to text, date, datetime, integer, decimal, money,
//   float), ISNULL, SUBSTRING, LEN, CHARINDEX, UPPER, LOWER, LEFT, RIGHT,
//   REPLACE, ROUND, SCOPE_IDENTITY(), @@IDENTITY, @@ROWCOUNT become SQLite
//   built-ins or the registered vek_* functions.
// - "+" is typed from its operands: a string literal, a text function or a
//   column named Nm_, Ds_, Sg_ makes the chain a concatenation (||); a date
//   (Dt_ or Hr_ column, GETDATE(), CONVERT to a date) plus numbers adds days;
//   numbers (Qt_, Vl_, No_, Ic_ columns, literals) add; otherwise the
//   operation is decided on the values at run time (vek_add).
// - db.dbo.table and db.dbo.table.column lose "dbo" (SQLite's
//   schema.table.column), dbo.table becomes table; sys.databases becomes a
//   sub-select over the attached databases (columns name, database_id =
//   pragma sequence + 1, create_date = NULL; the main database is named after
//   its file without extension, "main" when in memory; names compare
//   case-insensitively).
// - A qualifier that names a table by its real name while the FROM clause of
//   its SELECT (or its UPDATE or DELETE) gives that table an alias is
//   written as the alias, as SQL Server 2000 read it: "SELECT TbBairro.*
//   FROM TbBairro A" selects A.*. An alias or an unaliased table of that
//   name in the scope keeps the qualifier as it stands, and so does a name
//   that several aliased tables of the scope share (SQLite refuses it); a
//   sub-query looks its qualifiers up from its own scope outwards.
// - DELETE FROM t alias WHERE ..., DELETE t FROM t WHERE ... and DELETE t
//   FROM ... JOIN ... become SQLite deletes (through rowid where a join or an
//   alias needs it); UPDATE t SET t.c = ... loses the qualifier; INSERT t
//   gets INTO; TRUNCATE TABLE t becomes DELETE FROM t; BEGIN/COMMIT/ROLLBACK
//   TRAN become ... TRANSACTION; SELECT alias = expr becomes expr AS alias.
// - N'...' loses its N; [name] becomes "name"; !< and !> become >= and <=;
//   comments become blanks (SQLite would run a -- comment past a carriage
//   return); a string literal that is a whole date ('dd/mm/yyyy[ hh:mm[:ss]]'
//   day first, or 'yyyy-mm-dd[ hh:mm[:ss]]') becomes 'yyyy-mm-dd hh:mm:ss'.
//
// Raises VekError kDialectErrorNumber (0x80040E14) naming the construct for
// what has no faithful SQLite form: TOP ... PERCENT / WITH TIES, TOP in
// DELETE, INSERT or UPDATE, UPDATE ... FROM repeating its target, SELECT ...
// INTO, EXEC, BACKUP, RESTORE, DECLARE, SET and the other procedural
// statements, IDENTITY in CREATE TABLE, sys views other than sys.databases,
// unknown DATEDIFF/DATEADD/DATEPART parts, CONVERT styles and target types
// without a faithful form, date + text, date + date, number - date, "-"
// between texts; also for unbalanced parentheses, CASE without END and what
// the tokenizer refuses.
std::string TranslateToSqlite(std::string_view tsql);
// The same, typing names by the database's declared column kinds (none:
// by the schema's naming rule), with the types of the result's columns.
Translation TranslateToSqlite(std::string_view tsql, const ColumnKinds* kinds);

// Whether a String or NationalString token is a whole date ('dd/mm/yyyy[
// hh:mm[:ss]]' day first, or 'yyyy-mm-dd[ hh:mm[:ss]]'), which translated
// text writes as 'yyyy-mm-dd hh:mm:ss'. False for any other token.
bool IsSqliteDateLiteral(const Token& token);

// The text that a String or NationalString token stands for in translated
// text: the date as 'yyyy-mm-dd hh:mm:ss' (with '.fff' when it has
// milliseconds) for a whole date, otherwise the value without quotes or N
// and with '' read as '. Empty for any other token.
std::string SqliteStringLiteralValue(const Token& token);

}  // namespace vek::dialect
