#pragma once
// BACKUP DATABASE on a PostgreSQL server: a custom-format dump of the
// database taken with the server's client tools (pg_dump), kept as a set of
// the backup media file; and its restore with pg_restore. The server has no
// differential backup: a differential set is a whole dump as well, marked
// as taken for a differential. Internal.

#include <filesystem>
#include <string>

#include "vek/db/Driver.h"
#include "vek/db/backup/BackupStatement.h"
#include "vek/db/backup/MediaFile.h"

namespace vek::backup {

// Where the tools connect; an empty part is left to libpq's environment
// (PGHOST, PGPORT, PGUSER, PGPASSWORD).
struct ServerAddress {
  std::string host;
  std::string port;
  std::string user;
  std::string password;
  std::string database;
};

// The parts of an ODBC connection string (Server, Port, Database, Uid, Pwd).
ServerAddress ServerFromConnectionString(const std::string& connection_string);
// "[user@]host[:port]", as the session's Nm_ServidorDB writes a server.
ServerAddress ServerFromSetting(const std::string& server, const std::string& database);

// Dumps the database into a new set of the statement's file. Raises
// 0x80004005 (Source "pg_dump") with the tool's own message when it fails;
// the file is then as it was.
QueryResult BackupServerDatabase(const ServerAddress& server, const BackupStatement& statement, Date now);

// Restores a dump set into `target.database`, which is created; returns
// false, doing nothing, when the database exists and `replace` is false
// (with `replace` its objects are dropped and made again). Raises 0x80004005
// with the tool's message when a tool fails.
bool RestoreServerDump(const std::filesystem::path& media, const MediaSet& set, const ServerAddress& target,
                       bool replace);

}  // namespace vek::backup
