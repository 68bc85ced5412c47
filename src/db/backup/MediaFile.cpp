#include "vek/db/backup/MediaFile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>
#include <zlib.h>

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <vector>

#include "vek/db/DbError.h"

namespace vek::backup {
namespace fs = std::filesystem;
namespace {

static_assert(std::endian::native == std::endian::little, "the media file is written little-endian");

constexpr char kSetMagic[8] = {'V', 'E', 'K', 'B', 'K', 'S', 'E', 'T'};
constexpr char kEndMagic[8] = {'V', 'E', 'K', 'B', 'K', 'E', 'N', 'D'};
constexpr uint32_t kVersion = 1;
constexpr size_t kTrailerSize = 12;
constexpr size_t kChunk = 1 << 20;
// A name longer than this is no name: the header is damaged.
constexpr uint32_t kMaxTextLength = 4096;

uint32_t Crc(uint32_t crc, const void* data, size_t size) {
  const auto* bytes = static_cast<const Bytef*>(data);
  while (size > 0) {
    const auto part = static_cast<uInt>(std::min<size_t>(size, 1u << 30));
    crc = static_cast<uint32_t>(crc32(crc, bytes, part));
    bytes += part;
    size -= part;
  }
  return crc;
}

template <class T>
void Put(std::string& out, T value) {
  char bytes[sizeof(T)];
  std::memcpy(bytes, &value, sizeof(T));
  out.append(bytes, sizeof(T));
}
void PutText(std::string& out, const std::string& text) {
  Put<uint32_t>(out, static_cast<uint32_t>(text.size()));
  out += text;
}

std::string EncodeHeader(const SetHeader& header) {
  std::string out(kSetMagic, sizeof kSetMagic);
  Put<uint32_t>(out, kVersion);
  Put<uint32_t>(out, static_cast<uint32_t>(header.kind));
  PutText(out, header.name);
  PutText(out, header.database);
  Put<double>(out, header.time.Serial());
  Put<uint32_t>(out, header.page_size);
  Put<uint32_t>(out, header.page_count);
  Put<uint32_t>(out, header.records);
  Put<uint64_t>(out, header.payload_length);
  Put<uint64_t>(out, header.base_offset);
  Put<uint32_t>(out, Crc(0, out.data(), out.size()));
  return out;
}

[[noreturn]] void Fail(const char* source, const std::string& text) { RaiseDbError(adErrUnspecified, source, text); }

std::string ErrnoText() { return std::strerror(errno); }

// Reads a file from an offset, for the scan.
class Input {
 public:
  Input(const fs::path& path, const char* source) : stream_(path, std::ios::binary) {
    if (!stream_) Fail(source, "Cannot open the backup file " + path.string() + ".");
    std::error_code error;
    size_ = fs::file_size(path, error);
    if (error) Fail(source, "Cannot read the size of the backup file " + path.string() + ".");
  }
  uint64_t Size() const { return size_; }
  void Seek(uint64_t offset) {
    stream_.clear();
    stream_.seekg(static_cast<std::streamoff>(offset));
  }
  bool Read(void* data, size_t size) {
    stream_.read(static_cast<char*>(data), static_cast<std::streamsize>(size));
    return static_cast<size_t>(stream_.gcount()) == size;
  }

 private:
  std::ifstream stream_;
  uint64_t size_ = 0;
};

// The header at `offset`; the problem when it can't be read.
struct HeaderRead {
  bool ok = false;
  bool short_read = false;  // the file ends inside the header
  bool no_set = false;      // not even the mark of a set
  std::string problem;
};

HeaderRead ReadHeader(Input& in, uint64_t offset, MediaSet& set) {
  HeaderRead result;
  in.Seek(offset);
  std::string raw;
  auto take = [&](size_t size) -> const char* {
    const size_t at = raw.size();
    raw.resize(at + size);
    if (!in.Read(raw.data() + at, size)) return nullptr;
    return raw.data() + at;
  };
  auto number = [&](auto& value) {
    const char* bytes = take(sizeof value);
    if (bytes) std::memcpy(&value, bytes, sizeof value);
    return bytes != nullptr;
  };
  auto text = [&](std::string& value) {
    uint32_t length = 0;
    if (!number(length)) return false;
    if (length > kMaxTextLength) {
      result.problem = "the set's header is damaged";
      return false;
    }
    const char* bytes = take(length);
    if (bytes) value.assign(bytes, length);
    return bytes != nullptr;
  };
  const char* magic = take(sizeof kSetMagic);
  if (!magic) {
    result.short_read = true;
    result.problem = "the set's header is cut short";
    return result;
  }
  if (std::memcmp(magic, kSetMagic, sizeof kSetMagic) != 0) {
    result.no_set = true;
    result.problem = "no backup set begins here";
    return result;
  }
  uint32_t version = 0, kind = 0;
  double time = 0;
  SetHeader& header = set.header;
  const bool read = number(version) && number(kind) && text(header.name) && text(header.database) &&
                    number(time) && number(header.page_size) && number(header.page_count) &&
                    number(header.records) && number(header.payload_length) && number(header.base_offset);
  if (!read) {
    if (result.problem.empty()) {
      result.short_read = true;
      result.problem = "the set's header is cut short";
    }
    return result;
  }
  const uint32_t computed = Crc(0, raw.data(), raw.size());
  uint32_t stored = 0;
  if (!number(stored)) {
    result.short_read = true;
    result.problem = "the set's header is cut short";
    return result;
  }
  if (stored != computed || version != kVersion || kind < 1 || kind > 5) {
    result.problem = "the set's header is damaged (checksum)";
    return result;
  }
  header.kind = static_cast<SetKind>(kind);
  header.time = Date(time);
  set.offset = offset;
  set.payload_offset = offset + raw.size();
  set.end = set.payload_offset + header.payload_length + kTrailerSize;
  result.ok = true;
  return result;
}

// Reads the payload and trailer of a set whose header was read; returns the
// problem, empty when the set checks.
std::string CheckPayload(Input& in, const MediaSet& set,
                         const std::function<void(const unsigned char*, size_t)>* sink) {
  in.Seek(set.payload_offset);
  std::vector<unsigned char> buffer(kChunk);
  uint64_t left = set.header.payload_length;
  uint32_t crc = 0;
  while (left > 0) {
    const size_t part = static_cast<size_t>(std::min<uint64_t>(left, buffer.size()));
    if (!in.Read(buffer.data(), part)) return "the set is cut short";
    crc = Crc(crc, buffer.data(), part);
    if (sink) (*sink)(buffer.data(), part);
    left -= part;
  }
  char trailer[kTrailerSize];
  if (!in.Read(trailer, sizeof trailer)) return "the set is cut short";
  uint32_t stored = 0;
  std::memcpy(&stored, trailer + sizeof kEndMagic, sizeof stored);
  if (std::memcmp(trailer, kEndMagic, sizeof kEndMagic) != 0 || stored != crc) {
    return "the set's data is damaged (checksum)";
  }
  return std::string();
}

}  // namespace

bool IsFull(SetKind kind) { return kind == SetKind::SqliteFull || kind == SetKind::ServerDump; }
bool IsSqliteDifferential(SetKind kind) {
  return kind == SetKind::SqliteDifferential || kind == SetKind::SqliteDifferentialRuns;
}

std::string KindText(SetKind kind) {
  switch (kind) {
    case SetKind::SqliteFull: return "full";
    case SetKind::SqliteDifferential:
    case SetKind::SqliteDifferentialRuns: return "differential";
    case SetKind::ServerDump: return "full (pg_dump)";
    case SetKind::ServerDumpForDifferential: return "differential taken as full (pg_dump)";
  }
  return "unknown";
}

std::optional<size_t> MediaContents::LastFull() const {
  for (size_t i = sets.size(); i-- > 0;) {
    if (sets[i].state == MediaSet::State::Complete && IsFull(sets[i].header.kind)) return i;
  }
  return std::nullopt;
}

std::optional<size_t> MediaContents::LatestDifferential(size_t full) const {
  for (size_t i = sets.size(); i-- > full + 1;) {
    const MediaSet& set = sets[i];
    if (set.state != MediaSet::State::Complete) continue;
    if (IsSqliteDifferential(set.header.kind) && set.header.base_offset == sets[full].offset) return i;
    if (set.header.kind == SetKind::ServerDumpForDifferential) return i;
  }
  return std::nullopt;
}

MediaContents ReadMedia(const fs::path& path, bool verify_payloads, const char* source) {
  Input in(path, source);
  MediaContents contents;
  contents.file_size = in.Size();
  uint64_t offset = 0;
  while (offset < in.Size()) {
    MediaSet set;
    set.offset = offset;
    const HeaderRead header = ReadHeader(in, offset, set);
    if (!header.ok) {
      if (offset == 0 && header.no_set) {
        Fail(source, "The file " + path.string() + " is not a backup media file (" + header.problem + ").");
      }
      set.state = header.short_read ? MediaSet::State::Incomplete : MediaSet::State::Damaged;
      set.problem = header.problem;
      set.end = in.Size();
      contents.sets.push_back(std::move(set));
      break;
    }
    if (set.end > in.Size()) {
      set.state = MediaSet::State::Incomplete;
      set.problem = "the set is cut short (the backup writing it was interrupted)";
    } else if (verify_payloads) {
      set.problem = CheckPayload(in, set, nullptr);
      if (!set.problem.empty()) set.state = MediaSet::State::Damaged;
    }
    offset = set.end;
    contents.sets.push_back(std::move(set));
  }
  if (contents.sets.empty()) Fail(source, "The backup file " + path.string() + " is empty.");
  return contents;
}

void ReadPayload(const fs::path& path, const MediaSet& set,
                 const std::function<void(const unsigned char*, size_t)>& sink, const char* source) {
  Input in(path, source);
  const std::string problem = CheckPayload(in, set, &sink);
  if (!problem.empty()) {
    Fail(source, "The backup set at byte " + std::to_string(set.offset) + " of " + path.string() + " is unusable: " +
                     problem + ".");
  }
}

SetWriter::SetWriter(const fs::path& path, bool overwrite, const char* source) : path_(path), source_(source) {
  fd_ = ::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
  if (fd_ < 0) Fail(source, "Cannot open the backup file " + path.string() + ": " + ErrnoText() + ".");
  if (::flock(fd_, LOCK_EX) != 0) {
    Fail(source, "Cannot lock the backup file " + path.string() + ": " + ErrnoText() + ".");
  }
  if (overwrite && ::ftruncate(fd_, 0) != 0) {
    Fail(source, "Cannot empty the backup file " + path.string() + ": " + ErrnoText() + ".");
  }
  const off_t size = ::lseek(fd_, 0, SEEK_END);
  if (size > 0) {
    before_ = ReadMedia(path, false, source);
    for (const MediaSet& set : before_.sets) {
      if (set.state == MediaSet::State::Damaged) {
        Fail(source, "The backup file " + path.string() + " is damaged at byte " + std::to_string(set.offset) +
                         " (" + set.problem + "); start a new one (WITH INIT) or move it away.");
      }
    }
    // A set that an interrupted backup left cut short is taken out.
    if (!before_.sets.empty() && before_.sets.back().state == MediaSet::State::Incomplete) {
      const uint64_t torn = before_.sets.back().offset;
      before_.sets.pop_back();
      if (::ftruncate(fd_, static_cast<off_t>(torn)) != 0) {
        Fail(source, "Cannot repair the backup file " + path.string() + ": " + ErrnoText() + ".");
      }
    }
  }
  offset_ = static_cast<uint64_t>(::lseek(fd_, 0, SEEK_END));
}

SetWriter::Descriptor::~Descriptor() {
  if (fd >= 0) ::close(fd);
}

SetWriter::~SetWriter() {
  if (fd_ >= 0 && !finished_) {
    // A set that failed halfway is taken back out; the file is as before.
    [[maybe_unused]] const int ignored = ::ftruncate(fd_, static_cast<off_t>(offset_));
  }
}

void SetWriter::WriteAll(const void* data, size_t size) {
  const auto* bytes = static_cast<const char*>(data);
  while (size > 0) {
    const ssize_t done = ::write(fd_, bytes, size);
    if (done < 0) {
      if (errno == EINTR) continue;
      Fail(source_, "Cannot write the backup file " + path_.string() + ": " + ErrnoText() + ".");
    }
    bytes += done;
    size -= static_cast<size_t>(done);
  }
}

void SetWriter::Begin(const SetHeader& header) {
  const std::string encoded = EncodeHeader(header);
  WriteAll(encoded.data(), encoded.size());
  expected_ = header.payload_length;
}

void SetWriter::Write(const void* data, size_t size) {
  if (written_ + size > expected_) Fail(source_, "The backup set holds more than its header announced.");
  crc_ = Crc(crc_, data, size);
  WriteAll(data, size);
  written_ += size;
}

void SetWriter::Finish() {
  if (written_ != expected_) Fail(source_, "The backup set holds less than its header announced.");
  std::string trailer(kEndMagic, sizeof kEndMagic);
  Put<uint32_t>(trailer, crc_);
  WriteAll(trailer.data(), trailer.size());
  if (::fsync(fd_) != 0) Fail(source_, "Cannot flush the backup file " + path_.string() + ": " + ErrnoText() + ".");
  finished_ = true;
}

uint32_t FileCrc32(const fs::path& path, const char* source) {
  Input in(path, source);
  std::vector<unsigned char> buffer(kChunk);
  uint64_t left = in.Size();
  uint32_t crc = 0;
  while (left > 0) {
    const size_t part = static_cast<size_t>(std::min<uint64_t>(left, buffer.size()));
    if (!in.Read(buffer.data(), part)) Fail(source, "Cannot read " + path.string() + ".");
    crc = Crc(crc, buffer.data(), part);
    left -= part;
  }
  return crc;
}

}  // namespace vek::backup
