#pragma once
// Database servers through unixODBC: PostgreSQL through psqlODBC ("PostgreSQL
// Unicode"), SQL Server through FreeTDS or the vendor's driver. Internal:
// only Driver.cpp creates it, and no ODBC header leaks out of the source.
//
// The connection string is a DSN-less ODBC string handed to SQLDriverConnect.
// For psqlODBC the driver appends the options it relies on, unless the string
// already sets them:
//   BoolsAsChar=0      boolean columns are SQL_BIT, hence adBoolean fields
//   UseDeclareFetch=0  a result comes over whole when the statement runs
//   LFConversion=0     text keeps its bare line feeds and carriage returns
//
// Names: on PostgreSQL the schema creates its names unquoted, so the server
// holds them in lower case; the rows written back name their table and
// columns in lower case between double quotes. On SQL Server names go between
// brackets as they are.
//
// Text travels as UTF-16 (the W calls and SQL_C_WCHAR), which both drivers
// convert to the server's encoding themselves.

#include <functional>
#include <memory>
#include <string>

#include "vek/db/Driver.h"

namespace vek {

// Connects; raises VekError (Source "ODBC", the driver's message) when it
// can't. The dialect comes from the server's DBMS name. The server's clock
// answers getdate(); `now` dates the backup sets the driver writes.
std::unique_ptr<Driver> OpenOdbcDriver(const std::string& connection_string, std::function<Date()> now);

}  // namespace vek
