#pragma once
// BACKUP DATABASE carried out by the embedded engine, and its restore.
// Internal: the SQLite driver and the restore use it.

#include <filesystem>

#include "vek/db/Driver.h"
#include "vek/db/backup/BackupStatement.h"
#include "vek/db/backup/MediaFile.h"

struct sqlite3;

namespace vek::backup {

// Appends a set to the statement's file: a full set holds every page of a
// consistent snapshot of `db`'s main database, taken with the online backup
// API (other connections keep writing meanwhile); a differential set holds
// the pages that differ from the file's last full set. Raises 0x80004005
// (Source "SQLite") when there is no full set to differ from, or the file
// can't be written; the file is then as it was.
QueryResult BackupSqliteDatabase(sqlite3* db, const BackupStatement& statement, Date now);

// Writes the database that `full` (plus `differential`, when given) holds
// into `target`, through a temporary file renamed at the end, mode 0600;
// raises when a set is damaged or the result fails SQLite's integrity check.
void RestoreSqliteSets(const std::filesystem::path& media, const MediaSet& full, const MediaSet* differential,
                       const std::filesystem::path& target);

}  // namespace vek::backup
