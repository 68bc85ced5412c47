#pragma once
// The other half of a backup: checking a backup media file ("VekBkp.bak",
// or the "VekBkp.zip" that holds it) and rebuilding the database from it.
// A file holds full and differential sets, each with its own checksum; the
// database is rebuilt from the last full set plus the latest differential
// set taken after it.

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "vek/platform/Date.h"

namespace vek {

struct BackupSetInfo {
  int32_t number = 0;         // 1 for the file's first set
  std::string kind;           // "full", "differential", "full (pg_dump)", ...
  std::string name;           // the NAME the statement gave it
  std::string database;       // the database the statement named
  Date time;                  // when it was taken (the session's clock)
  uint64_t bytes = 0;         // its size in the file, header and trailer included
  uint32_t pages = 0;         // SQLite: pages it holds
  bool usable = true;         // its checksum holds and it is whole
  std::string problem;        // why not
};

struct BackupCheck {
  std::vector<BackupSetInfo> sets;
  // True when every set is whole and its checksum holds. A last set cut
  // short (a backup that was interrupted) makes it false, but a restore
  // still works from the sets before it.
  bool ok = false;
};

// Reads every set and compares its checksum (RESTORE VERIFYONLY). Raises
// 0x80004005 when the file can't be read, or is not a backup file at all.
BackupCheck VerifyBackup(const std::filesystem::path& file);

struct RestoreOptions {
  // SQLite sets: the database file to write. PostgreSQL sets: the database
  // to create on the server.
  std::string to;
  // PostgreSQL: "[user@]host[:port]"; empty leaves it to libpq's
  // environment (PGHOST, PGPORT, PGUSER, PGPASSWORD).
  std::string server;
  bool force = false;  // replace an existing database
};

// Checks every set, then rebuilds the database from the last full set and
// the latest differential set after it; returns the sets it used. Refuses
// (0x80004005) a file with a damaged set and (0x80040458) an existing target
// without `force`. A SQLite database is written to a temporary file that
// must pass SQLite's integrity check before it takes the target's name.
std::vector<BackupSetInfo> RestoreBackup(const std::filesystem::path& file, const RestoreOptions& options);

}  // namespace vek
