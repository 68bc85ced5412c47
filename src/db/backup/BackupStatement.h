#pragma once
// SQL Server's BACKUP DATABASE statement, read so that an engine without it
// can carry it out itself. Internal: the drivers use it.
//
//   BACKUP DATABASE name TO DISK = N'file' [WITH option, ...]
// Options understood: DIFFERENTIAL, INIT / NOINIT, FORMAT / NOFORMAT (FORMAT
// starts a new media file), NAME = N'...', DESCRIPTION = N'...', STATS [= n],
// and the tape options SKIP / NOSKIP, REWIND / NOREWIND, UNLOAD / NOUNLOAD,
// which mean nothing for a disk file.

#include <string>
#include <string_view>

namespace vek::backup {

struct BackupStatement {
  std::string database;  // the name after DATABASE, as written
  std::string disk;      // the file after TO DISK =
  std::string name;      // NAME = N'...', empty when not given
  bool differential = false;
  bool overwrite = false;  // INIT or FORMAT: the file starts again
  int stats = 0;           // STATS = n: report every n percent (0: never)
};

// True when the text's first word is BACKUP (a cheap look, for the choke point).
bool IsBackupStatement(std::string_view text);

// Reads the statement; raises 0x80040E14 (Source `source`) naming what it
// could not read.
BackupStatement ParseBackupStatement(std::string_view text, const char* source);

}  // namespace vek::backup
