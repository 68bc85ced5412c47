#include "vek/db/backup/SqliteBackup.h"

#include <fcntl.h>
#include <sqlite3.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "vek/db/DbError.h"
#include "vek/db/dialect/SqliteFunctions.h"

namespace vek::backup {
namespace fs = std::filesystem;
namespace {

constexpr const char* kSource = "SQLite";
constexpr size_t kChunk = 1 << 20;

[[noreturn]] void Fail(const std::string& text) { RaiseDbError(adErrUnspecified, kSource, text); }

struct ConnectionCloser {
  void operator()(sqlite3* db) const noexcept { sqlite3_close_v2(db); }
};
using DatabaseHandle = std::unique_ptr<sqlite3, ConnectionCloser>;

// A consistent image of a database, in memory: its pages one after another.
struct Snapshot {
  DatabaseHandle holder;  // the in-memory database that owns `bytes`
  const unsigned char* bytes = nullptr;
  uint64_t size = 0;
  uint32_t page_size = 0;
  uint32_t page_count = 0;

  const unsigned char* Page(uint32_t index) const { return bytes + uint64_t{index} * page_size; }
};

Snapshot TakeSnapshot(sqlite3* db) {
  Snapshot snapshot;
  sqlite3* raw = nullptr;
  // The memdb file system keeps the copy in one block that serialize hands
  // over without copying it again.
  int code = sqlite3_open_v2("file:vek-backup-snapshot?vfs=memdb", &raw,
                             SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_URI, nullptr);
  snapshot.holder.reset(raw);
  if (code != SQLITE_OK) Fail(std::string("Cannot open the snapshot database: ") + sqlite3_errstr(code) + ".");
  sqlite3_backup* backup = sqlite3_backup_init(raw, "main", db, "main");
  if (backup == nullptr) Fail(sqlite3_errmsg(raw));
  // One step copies every page under one read transaction: a consistent
  // snapshot, while other connections keep writing (WAL).
  do {
    code = sqlite3_backup_step(backup, -1);
    if (code == SQLITE_BUSY || code == SQLITE_LOCKED) sqlite3_sleep(50);
  } while (code == SQLITE_OK || code == SQLITE_BUSY || code == SQLITE_LOCKED);
  const int finished = sqlite3_backup_finish(backup);
  if (code != SQLITE_DONE || finished != SQLITE_OK) Fail(sqlite3_errmsg(raw));
  sqlite3_int64 size = 0;
  snapshot.bytes = sqlite3_serialize(raw, "main", &size, SQLITE_SERIALIZE_NOCOPY);
  if (snapshot.bytes == nullptr) Fail("Cannot read the snapshot's pages.");
  snapshot.size = static_cast<uint64_t>(size);
  if (snapshot.size < 100) Fail("The database is empty: there is nothing to back up.");
  // The page size is in the file header, big-endian; 1 stands for 65536.
  const uint32_t stored = (uint32_t{snapshot.bytes[16]} << 8) | snapshot.bytes[17];
  snapshot.page_size = stored == 1 ? 65536 : stored;
  if (snapshot.page_size < 512 || snapshot.size % snapshot.page_size != 0) Fail("The snapshot's page size is unreadable.");
  snapshot.page_count = static_cast<uint32_t>(snapshot.size / snapshot.page_size);
  return snapshot;
}

// Feeds the pages of a full set to `page`, in order, whatever the chunks.
class PageSplitter {
 public:
  PageSplitter(uint32_t page_size, std::function<void(uint32_t index, const unsigned char* page)> page)
      : page_size_(page_size), page_(std::move(page)) {}
  void operator()(const unsigned char* data, size_t size) {
    while (size > 0) {
      if (carry_.empty() && size >= page_size_) {
        page_(index_++, data);
        data += page_size_;
        size -= page_size_;
        continue;
      }
      const size_t take = std::min<size_t>(size, page_size_ - carry_.size());
      carry_.insert(carry_.end(), data, data + take);
      data += take;
      size -= take;
      if (carry_.size() == page_size_) {
        page_(index_++, carry_.data());
        carry_.clear();
      }
    }
  }

 private:
  uint32_t page_size_;
  std::function<void(uint32_t, const unsigned char*)> page_;
  std::vector<unsigned char> carry_;
  uint32_t index_ = 0;
};

// A page of the snapshot that differs from the full set's, and the runs of
// bytes (offset, length) in it that differ.
struct ChangedPage {
  uint32_t index = 0;  // 0-based
  std::vector<std::pair<uint32_t, uint32_t>> runs;
};

// Runs closer than a run's own bookkeeping (offset and length) are one run.
constexpr uint32_t kRunGap = 8;

std::vector<std::pair<uint32_t, uint32_t>> DifferingRuns(const unsigned char* before, const unsigned char* after,
                                                         uint32_t size) {
  std::vector<std::pair<uint32_t, uint32_t>> runs;
  uint32_t at = 0;
  while (at < size) {
    if (before[at] == after[at]) {
      ++at;
      continue;
    }
    uint32_t end = at + 1;
    uint32_t same = 0;
    for (uint32_t i = end; i < size && same <= kRunGap; ++i) {
      if (before[i] == after[i]) {
        ++same;
      } else {
        same = 0;
        end = i + 1;
      }
    }
    runs.emplace_back(at, end - at);
    at = end;
  }
  return runs;
}

// The pages of the snapshot that differ from the full set's.
std::vector<ChangedPage> ChangedPages(const Snapshot& snapshot, const fs::path& media, const MediaSet& full) {
  std::vector<ChangedPage> changed;
  const std::vector<std::pair<uint32_t, uint32_t>> whole = {{0, snapshot.page_size}};
  if (full.header.page_size != snapshot.page_size) {
    // Another page size: every page is new.
    for (uint32_t i = 0; i < snapshot.page_count; ++i) changed.push_back({i, whole});
    return changed;
  }
  PageSplitter splitter(full.header.page_size, [&](uint32_t index, const unsigned char* page) {
    if (index < snapshot.page_count && std::memcmp(page, snapshot.Page(index), snapshot.page_size) != 0) {
      changed.push_back({index, DifferingRuns(page, snapshot.Page(index), snapshot.page_size)});
    }
  });
  ReadPayload(media, full, std::ref(splitter), kSource);
  for (uint32_t i = full.header.page_count; i < snapshot.page_count; ++i) changed.push_back({i, whole});
  return changed;
}

class OutputFile {
 public:
  explicit OutputFile(const fs::path& path) : path_(path) {
    fd_ = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (fd_ < 0) Fail("Cannot create " + path.string() + ": " + std::strerror(errno) + ".");
  }
  ~OutputFile() {
    if (fd_ >= 0) ::close(fd_);
  }
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;
  void WriteAt(const unsigned char* data, size_t size, uint64_t offset) {
    while (size > 0) {
      const ssize_t done = ::pwrite(fd_, data, size, static_cast<off_t>(offset));
      if (done < 0) {
        if (errno == EINTR) continue;
        Fail("Cannot write " + path_.string() + ": " + std::strerror(errno) + ".");
      }
      data += done;
      size -= static_cast<size_t>(done);
      offset += static_cast<uint64_t>(done);
    }
  }
  void Finish(uint64_t size) {
    if (::ftruncate(fd_, static_cast<off_t>(size)) != 0 || ::fsync(fd_) != 0 || ::close(fd_) != 0) {
      fd_ = -1;
      Fail("Cannot write " + path_.string() + ": " + std::strerror(errno) + ".");
    }
    fd_ = -1;
  }

 private:
  fs::path path_;
  int fd_ = -1;
};

// Reads a differential set's changed runs as the payload streams by and
// writes each into its place in the restored file.
class RunReader {
 public:
  RunReader(uint32_t page_size, uint32_t page_count, OutputFile& out)
      : page_size_(page_size), page_count_(page_count), out_(out) {}
  void operator()(const unsigned char* data, size_t size) {
    buffer_.insert(buffer_.end(), data, data + size);
    while (Step()) {
    }
    buffer_.erase(buffer_.begin(), buffer_.begin() + static_cast<std::ptrdiff_t>(used_));
    used_ = 0;
  }
  void Finish() const {
    if (runs_left_ != 0 || used_ != buffer_.size()) Fail("A differential set ends in the middle of a page.");
  }

 private:
  // Takes one page head or one run when the buffer holds it whole.
  bool Step() {
    const size_t available = buffer_.size() - used_;
    if (available < 8) return false;
    uint32_t pair[2];
    std::memcpy(pair, buffer_.data() + used_, sizeof pair);
    if (runs_left_ == 0) {
      if (pair[0] == 0 || pair[0] > page_count_) Fail("A differential set names a page out of range.");
      page_ = pair[0];
      runs_left_ = pair[1];
      used_ += 8;
      return true;
    }
    const auto [offset, length] = std::pair{pair[0], pair[1]};
    if (offset > page_size_ || length > page_size_ - offset) Fail("A differential set names bytes out of its page.");
    if (available < 8 + size_t{length}) return false;
    out_.WriteAt(buffer_.data() + used_ + 8, length, uint64_t{page_ - 1} * page_size_ + offset);
    used_ += 8 + size_t{length};
    --runs_left_;
    return true;
  }

  uint32_t page_size_;
  uint32_t page_count_;
  OutputFile& out_;
  std::vector<unsigned char> buffer_;
  size_t used_ = 0;
  uint32_t page_ = 0;
  uint32_t runs_left_ = 0;
};

void CheckIntegrity(const fs::path& file) {
  sqlite3* raw = nullptr;
  const int code = sqlite3_open_v2(file.c_str(), &raw, SQLITE_OPEN_READWRITE, nullptr);
  DatabaseHandle db(raw);
  if (code != SQLITE_OK) Fail("The restored database can't be opened: " + std::string(sqlite3_errstr(code)) + ".");
  // The indexes are ordered by the SQL Server collations the schema names.
  dialect::RegisterSqlServerFunctions(raw, [] { return Date(); });
  sqlite3_stmt* statement = nullptr;
  std::string answer;
  if (sqlite3_prepare_v2(raw, "PRAGMA integrity_check", -1, &statement, nullptr) == SQLITE_OK) {
    while (sqlite3_step(statement) == SQLITE_ROW) {
      const auto* text = sqlite3_column_text(statement, 0);
      answer += (answer.empty() ? "" : "; ") + std::string(text ? reinterpret_cast<const char*>(text) : "");
    }
  } else {
    answer = sqlite3_errmsg(raw);
  }
  sqlite3_finalize(statement);
  if (answer != "ok") Fail("The restored database fails the integrity check: " + answer);
}

}  // namespace

QueryResult BackupSqliteDatabase(sqlite3* db, const BackupStatement& statement, Date now) {
  const fs::path media(statement.disk);
  SetWriter writer(media, statement.overwrite, kSource);
  const Snapshot snapshot = TakeSnapshot(db);
  SetHeader header;
  header.name = statement.name;
  header.database = statement.database;
  header.time = now;
  header.page_size = snapshot.page_size;
  header.page_count = snapshot.page_count;
  QueryResult result;
  if (!statement.differential) {
    header.kind = SetKind::SqliteFull;
    header.records = snapshot.page_count;
    header.payload_length = snapshot.size;
    writer.Begin(header);
    for (uint64_t at = 0; at < snapshot.size; at += kChunk) {
      writer.Write(snapshot.bytes + at, static_cast<size_t>(std::min<uint64_t>(kChunk, snapshot.size - at)));
    }
  } else {
    const MediaContents& before = writer.Before();
    const std::optional<size_t> full = before.LastFull();
    if (!full || before.sets[*full].header.kind != SetKind::SqliteFull) {
      Fail("Cannot perform a differential backup for database \"" + statement.database +
           "\", because a current database backup does not exist. Perform a full database backup by reissuing "
           "BACKUP DATABASE, omitting the WITH DIFFERENTIAL option.");
    }
    const MediaSet& base = before.sets[*full];
    const std::vector<ChangedPage> changed = ChangedPages(snapshot, media, base);
    header.kind = SetKind::SqliteDifferentialRuns;
    header.records = static_cast<uint32_t>(changed.size());
    header.payload_length = 0;
    for (const ChangedPage& page : changed) {
      header.payload_length += 8;
      for (const auto& [offset, length] : page.runs) header.payload_length += 8 + length;
    }
    header.base_offset = base.offset;
    writer.Begin(header);
    for (const ChangedPage& page : changed) {
      const uint32_t head[2] = {page.index + 1, static_cast<uint32_t>(page.runs.size())};
      writer.Write(head, sizeof head);
      const unsigned char* bytes = snapshot.Page(page.index);
      for (const auto& [offset, length] : page.runs) {
        const uint32_t run[2] = {offset, length};
        writer.Write(run, sizeof run);
        writer.Write(bytes + offset, length);
      }
    }
  }
  writer.Finish();
  result.records_affected = header.records;
  return result;
}

void RestoreSqliteSets(const fs::path& media, const MediaSet& full, const MediaSet* differential,
                       const fs::path& target) {
  fs::path temporary = target;
  temporary += ".restoring";
  struct Cleanup {
    fs::path path;
    bool keep = false;
    ~Cleanup() {
      if (keep) return;
      std::error_code ignored;
      for (const char* suffix : {"", "-wal", "-shm"}) fs::remove(fs::path(path.string() + suffix), ignored);
    }
  } cleanup{temporary};
  uint64_t size = uint64_t{full.header.page_count} * full.header.page_size;
  {
    OutputFile out(temporary);
    const bool same_pages = differential == nullptr || differential->header.page_size == full.header.page_size;
    if (same_pages) {
      uint64_t at = 0;
      ReadPayload(media, full, [&](const unsigned char* data, size_t length) {
        out.WriteAt(data, length, at);
        at += length;
      }, kSource);
    }
    if (differential != nullptr) {
      const uint32_t page_size = differential->header.page_size;
      size = uint64_t{differential->header.page_count} * page_size;
      const uint32_t page_count = differential->header.page_count;
      if (differential->header.kind == SetKind::SqliteDifferential) {
        // Each record: its page number, then the page.
        PageSplitter records(4 + page_size, [&](uint32_t, const unsigned char* record) {
          uint32_t number = 0;
          std::memcpy(&number, record, sizeof number);
          if (number == 0 || number > page_count) Fail("A differential set names a page out of range.");
          out.WriteAt(record + 4, page_size, uint64_t{number - 1} * page_size);
        });
        ReadPayload(media, *differential, std::ref(records), kSource);
      } else {
        RunReader runs(page_size, page_count, out);
        ReadPayload(media, *differential, std::ref(runs), kSource);
        runs.Finish();
      }
    }
    out.Finish(size);
  }
  CheckIntegrity(temporary);
  std::error_code error;
  fs::rename(temporary, target, error);
  if (error) Fail("Cannot put the restored database in place at " + target.string() + ": " + error.message() + ".");
  cleanup.keep = true;
  for (const char* suffix : {"-wal", "-shm"}) fs::remove(fs::path(temporary.string() + suffix), error);
}

}  // namespace vek::backup
