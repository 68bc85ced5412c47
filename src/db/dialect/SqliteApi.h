#pragma once
// The SQLite routines as the SQL Server functions call them: the library's
// own, or, compiled into the loadable extension (VEK_SQLITE_EXTENSION),
// through the table of routines that the loading program hands over, so the
// extension works in any program that embeds SQLite.

#ifdef VEK_SQLITE_EXTENSION
#include <sqlite3ext.h>
SQLITE_EXTENSION_INIT3
#else
#include <sqlite3.h>
#endif
