#include "vek/maintenance/BackupMedia.h"

#include <fcntl.h>
#include <unistd.h>
#include <zip.h>

#include <fstream>
#include <memory>

#include "vek/db/DbError.h"
#include "vek/db/backup/MediaFile.h"
#include "vek/db/backup/ServerDump.h"
#include "vek/db/backup/SqliteBackup.h"
#include "vek/foundation/ErrorTrap.h"
#include "vek/foundation/MessageCatalogue.h"
#include "vek/platform/Text.h"

namespace vek {
namespace fs = std::filesystem;
namespace {

// Errors of the file itself start the Source chain with the member's link.
constexpr const char* kSource = "";

[[noreturn]] void Fail(const std::string& text) { RaiseDbError(adErrUnspecified, kSource, text); }

bool IsZip(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  char magic[4] = {};
  return in.read(magic, 4) && magic[0] == 'P' && magic[1] == 'K' && magic[2] == 3 && magic[3] == 4;
}

// The media file to read: the file itself, or the .bak that a zip holds,
// taken out into a private temporary file for as long as this lives.
class MediaSource {
 public:
  explicit MediaSource(const fs::path& file) : path_(file) {
    std::error_code error;
    if (!fs::is_regular_file(file, error)) Fail("The backup file " + file.string() + " does not exist.");
    if (IsZip(file)) Extract(file);
  }
  ~MediaSource() {
    std::error_code ignored;
    if (!extracted_.empty()) fs::remove(extracted_, ignored);
  }
  MediaSource(const MediaSource&) = delete;
  MediaSource& operator=(const MediaSource&) = delete;
  const fs::path& Path() const { return extracted_.empty() ? path_ : extracted_; }

 private:
  void Extract(const fs::path& file) {
    int error = 0;
    struct Closer {
      void operator()(zip_t* archive) const noexcept { zip_discard(archive); }
    };
    std::unique_ptr<zip_t, Closer> archive(zip_open(file.c_str(), ZIP_RDONLY | ZIP_CHECKCONS, &error));
    if (!archive) Fail("The zip file " + file.string() + " can't be read (it is damaged or cut short).");
    zip_int64_t chosen = -1;
    for (zip_int64_t i = 0; i < zip_get_num_entries(archive.get(), 0); ++i) {
      const char* name = zip_get_name(archive.get(), static_cast<zip_uint64_t>(i), 0);
      if (name != nullptr && LCase(fs::path(name).extension().string()) == ".bak") chosen = i;
    }
    if (chosen < 0) Fail("The zip file " + file.string() + " holds no backup file (.bak).");
    extracted_ = fs::temp_directory_path() / ("vek-restore-" + std::to_string(::getpid()) + ".bak");
    const int fd = ::open(extracted_.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (fd < 0) Fail("Cannot write " + extracted_.string() + ".");
    zip_file_t* entry = zip_fopen_index(archive.get(), static_cast<zip_uint64_t>(chosen), 0);
    bool ok = entry != nullptr;
    std::unique_ptr<char[]> buffer(new char[1 << 20]);
    zip_int64_t read = 0;
    while (ok && (read = zip_fread(entry, buffer.get(), 1 << 20)) > 0) {
      ok = ::write(fd, buffer.get(), static_cast<size_t>(read)) == read;
    }
    // A read error here is the zip's own CRC check failing.
    ok = ok && read == 0;
    if (entry != nullptr) zip_fclose(entry);
    ::close(fd);
    if (!ok) Fail("The backup inside " + file.string() + " is damaged (the zip's checksum does not hold).");
  }

  fs::path path_;
  fs::path extracted_;
};

BackupSetInfo Describe(const backup::MediaSet& set, size_t index) {
  BackupSetInfo info;
  info.number = static_cast<int32_t>(index + 1);
  info.kind = backup::KindText(set.header.kind);
  info.name = set.header.name;
  info.database = set.header.database;
  info.time = set.header.time;
  info.bytes = set.end - set.offset;
  info.pages = set.header.records;
  info.usable = set.state == backup::MediaSet::State::Complete;
  info.problem = set.problem;
  if (set.state == backup::MediaSet::State::Damaged && set.problem.find("header") != std::string::npos) {
    info.kind = "unknown";
  }
  return info;
}

BackupCheck Check(const backup::MediaContents& contents) {
  BackupCheck check;
  check.ok = true;
  for (size_t i = 0; i < contents.sets.size(); ++i) {
    check.sets.push_back(Describe(contents.sets[i], i));
    check.ok = check.ok && check.sets.back().usable;
  }
  return check;
}

}  // namespace

BackupCheck VerifyBackup(const fs::path& file) {
  return Trap("BackupMedia", "VerifyBackup", [&] {
    const MediaSource media(file);
    return Check(backup::ReadMedia(media.Path(), true, kSource));
  });
}

std::vector<BackupSetInfo> RestoreBackup(const fs::path& file, const RestoreOptions& options) {
  return Trap("BackupMedia", "RestoreBackup", [&] {
    const MediaSource media(file);
    const backup::MediaContents contents = backup::ReadMedia(media.Path(), true, kSource);
    for (size_t i = 0; i < contents.sets.size(); ++i) {
      if (contents.sets[i].state == backup::MediaSet::State::Damaged) {
        Fail("Set " + std::to_string(i + 1) + " of " + file.string() + " is damaged (" + contents.sets[i].problem +
             "); nothing was restored.");
      }
    }
    const std::optional<size_t> full = contents.LastFull();
    if (!full) Fail("The backup file " + file.string() + " holds no complete full backup set.");
    const std::optional<size_t> differential = contents.LatestDifferential(*full);
    std::vector<BackupSetInfo> used = {Describe(contents.sets[*full], *full)};
    if (differential) used.push_back(Describe(contents.sets[*differential], *differential));

    const backup::MediaSet& base = contents.sets[*full];
    if (base.header.kind == backup::SetKind::SqliteFull) {
      fs::path target = options.to.empty() ? fs::path(file).replace_extension(".db") : fs::path(options.to);
      std::error_code error;
      if (fs::exists(target, error) && !options.force) {
        throw VekError(kBusinessError, std::string(),
                       "O banco de dados " + target.string() + " já existe; use --force para substituí-lo");
      }
      backup::RestoreSqliteSets(media.Path(), base, differential ? &contents.sets[*differential] : nullptr, target);
    } else {
      if (options.to.empty()) Fail("Name the database to restore into on the server (--to DATABASE).");
      // A differential dump is a whole dump: the latest one is enough.
      const backup::MediaSet& dump = differential ? contents.sets[*differential] : base;
      if (!backup::RestoreServerDump(media.Path(), dump, backup::ServerFromSetting(options.server, options.to),
                                     options.force)) {
        throw VekError(kBusinessError, std::string(),
                       "O banco de dados " + options.to + " já existe; use --force para substituí-lo");
      }
      if (differential) used.erase(used.begin());
    }
    return used;
  });
}

}  // namespace vek
