#pragma once
// The dBase provider: what the Visual FoxPro ODBC driver did for the ERP
// export, on the free tables (.dbf files) of one folder. Internal: only
// Driver.cpp creates it.
//
// It reads the statements as the system writes them (no translation):
//   CREATE TABLE t [FREE] (name C(n) | N(n[,d]) | D | L, ...)
//   DELETE FROM t                 marks every record deleted (kept in the file)
//   INSERT INTO t [(c, ...)] VALUES (v, ...)
// where a value is 'text' (quotes doubled inside), Null, .T./.F., or
// arithmetic on numbers (+ - * / and parentheses) evaluated exactly, so
// "12345 / 100" is 123.45. Text goes into a character field in
// Windows-1252, cut at the field's width; a number into a numeric field,
// rounded to its decimals and refused when it does not fit; 'dd/mm/yyyy'
// or '' into a date field; Null leaves a field blank. Each statement opens
// the table file, writes and closes it, so what a statement wrote stays
// when a later one fails.

#include <functional>
#include <memory>
#include <string>

#include "vek/db/Driver.h"

namespace vek {

// Opens the folder `source_db` (SourceDB=); raises 0x80004005 with Source
// "dBase" when it is not a folder that exists.
std::unique_ptr<Driver> OpenDbaseDriver(const std::string& source_db, std::function<Date()> now);

}  // namespace vek
