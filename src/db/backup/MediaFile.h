#pragma once
// The backup media file that BACKUP DATABASE writes on engines without
// SQL Server's own: an append-only sequence of backup sets. Internal.
//
// A set, all numbers little-endian:
//   "VEKBKSET", version u32 (1), kind u32, name (u32 length + UTF-8),
//   database (u32 length + UTF-8), time f64 (the date type's serial),
//   page size u32, page count u32, records u32, payload length u64,
//   base offset u64 (a differential's full set), header CRC-32 u32;
//   the payload;
//   "VEKBKEND", payload CRC-32 u32.
// A full SQLite set's payload is every page in order; a differential's is,
// per page that differs from its full set, page number u32, run count u32
// and the runs of bytes that differ (offset u32, length u32, the bytes):
// a row changed here and there costs its bytes, not its page. Kind 2, whole
// pages (page number u32, page), is still read. A server dump's payload is
// the dump file as the server's tools wrote it.
// A set whose trailer is missing was cut short (the writing process died);
// the next writer cuts it off before appending, and readers ignore it.

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "vek/platform/Date.h"

namespace vek::backup {

enum class SetKind : uint32_t {
  SqliteFull = 1,
  SqliteDifferential = 2,
  ServerDump = 3,                 // PostgreSQL custom-format dump
  ServerDumpForDifferential = 4,  // the same, taken where a differential was asked for
  SqliteDifferentialRuns = 5,     // the changed bytes of each changed page
};
bool IsSqliteDifferential(SetKind kind);
bool IsFull(SetKind kind);
std::string KindText(SetKind kind);

struct SetHeader {
  SetKind kind = SetKind::SqliteFull;
  std::string name;
  std::string database;
  Date time;
  uint32_t page_size = 0;
  uint32_t page_count = 0;
  uint32_t records = 0;
  uint64_t payload_length = 0;
  uint64_t base_offset = 0;
};

struct MediaSet {
  enum class State { Complete, Damaged, Incomplete };
  SetHeader header;
  uint64_t offset = 0;          // the set's first byte
  uint64_t payload_offset = 0;  // the payload's first byte
  uint64_t end = 0;             // one past the trailer
  State state = State::Complete;
  std::string problem;  // why a set is damaged or incomplete
};

// What a reading of the file found. A set whose header can't be read ends
// the reading (nothing after it can be found).
struct MediaContents {
  std::vector<MediaSet> sets;
  uint64_t file_size = 0;
  // The last complete full set, and the latest complete differential after
  // it that belongs to it: what a restore starts from.
  std::optional<size_t> LastFull() const;
  std::optional<size_t> LatestDifferential(size_t full) const;
};

// Reads the sets of `path`. With `verify_payloads` every payload and trailer
// is read and its checksum compared; else only headers and sizes. Raises
// 0x80004005 (Source `source`) when the file can't be read or is not a
// backup media file at all.
MediaContents ReadMedia(const std::filesystem::path& path, bool verify_payloads, const char* source);

// Streams a complete set's payload to `sink` in chunks, checking its
// checksum; raises 0x80004005 when the set is damaged.
void ReadPayload(const std::filesystem::path& path, const MediaSet& set,
                 const std::function<void(const unsigned char* data, size_t size)>& sink, const char* source);

// Appends one set. The file is created (mode 0600) when missing, emptied
// first when `overwrite`, and held under an exclusive lock while writing; a
// set cut short at its end is cut off first. Raises 0x80004005 when the file
// can't be written or holds a set that can't be read (nothing then appended).
// A writer left without Finish() takes its partial set back out.
class SetWriter {
 public:
  SetWriter(const std::filesystem::path& path, bool overwrite, const char* source);
  ~SetWriter();
  SetWriter(const SetWriter&) = delete;
  SetWriter& operator=(const SetWriter&) = delete;

  // What the file held before this set.
  const MediaContents& Before() const { return before_; }
  uint64_t Offset() const { return offset_; }
  void Begin(const SetHeader& header);
  void Write(const void* data, size_t size);
  // Writes the trailer and flushes the file to disk.
  void Finish();

 private:
  void WriteAll(const void* data, size_t size);
  // Closes the file however the writer ends, a failed constructor included.
  struct Descriptor {
    int fd = -1;
    ~Descriptor();
  };
  std::filesystem::path path_;
  const char* source_;
  Descriptor file_;
  int& fd_ = file_.fd;
  MediaContents before_;
  uint64_t offset_ = 0;
  uint64_t expected_ = 0;
  uint64_t written_ = 0;
  uint32_t crc_ = 0;
  bool finished_ = false;
};

// CRC-32 of a whole file (the zip format's checksum).
uint32_t FileCrc32(const std::filesystem::path& path, const char* source);

}  // namespace vek::backup
