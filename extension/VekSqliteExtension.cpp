// The loadable SQLite extension: the collation SQLSERVER_CI_AS that a
// terminal database's text columns declare, and the vek_* functions its
// statements, views and indexes call, so that other programs (the sqlite3
// shell, Python) can read and write a terminal's Vek.db.
//
//   sqlite> .load libvek_sqlite
//   >>> connection.load_extension("libvek_sqlite")

#include <sqlite3ext.h>
SQLITE_EXTENSION_INIT1

#include <exception>

#include "vek/db/dialect/SqliteFunctions.h"
#include "vek/platform/Clock.h"
#include "vek/platform/VekError.h"

namespace {

// Another program has no session: its "now" is the system clock's.
int Register(sqlite3* db, char** error_message, const sqlite3_api_routines* api) {
  SQLITE_EXTENSION_INIT2(api);
  try {
    vek::dialect::RegisterSqlServerFunctions(db, [] { return vek::SystemClock().Now(); });
    return SQLITE_OK;
  } catch (const vek::VekError& error) {
    if (error_message) *error_message = sqlite3_mprintf("vek: %s", error.Description().c_str());
  } catch (const std::exception& error) {
    if (error_message) *error_message = sqlite3_mprintf("vek: %s", error.what());
  }
  return SQLITE_ERROR;
}

}  // namespace

// The entry point SQLite looks for in libvek_sqlite.so, and the generic one
// for a program that loads the file under another name.
extern "C" __attribute__((visibility("default"))) int sqlite3_veksqlite_init(
    sqlite3* db, char** error_message, const sqlite3_api_routines* api) {
  return Register(db, error_message, api);
}

extern "C" __attribute__((visibility("default"))) int sqlite3_extension_init(
    sqlite3* db, char** error_message, const sqlite3_api_routines* api) {
  return Register(db, error_message, api);
}
