#include "vek/maintenance/ZqModulo.h"
#include "vek/platform/FileModes.h"

#include <zip.h>

#include <filesystem>
#include <memory>

#include "vek/db/backup/MediaFile.h"
#include "vek/foundation/ErrorTrap.h"

namespace vek {
namespace fs = std::filesystem;
namespace {

constexpr const char* kFailure = "Erro na compactação do arquivo";

struct ZipCloser {
  void operator()(zip_t* archive) const noexcept { zip_discard(archive); }
};
using ZipHandle = std::unique_ptr<zip_t, ZipCloser>;

[[noreturn]] void Fail() { throw VekError(kBusinessError, std::string(), kFailure); }

void Compress(const fs::path& source, const fs::path& zip_file) {
  int error = 0;
  ZipHandle archive(zip_open(zip_file.c_str(), ZIP_CREATE | ZIP_TRUNCATE, &error));
  if (!archive) Fail();
  zip_source_t* data = zip_source_file(archive.get(), source.c_str(), 0, 0);
  if (data == nullptr) Fail();
  const zip_int64_t index = zip_file_add(archive.get(), source.filename().c_str(), data, ZIP_FL_ENC_UTF_8);
  if (index < 0) {
    zip_source_free(data);
    Fail();
  }
  if (zip_set_file_compression(archive.get(), static_cast<zip_uint64_t>(index), ZIP_CM_DEFLATE, 6) != 0) Fail();
  if (zip_close(archive.get()) != 0) Fail();
  archive.release();  // closed: nothing left to discard
  detail::KeepOthersFromWriting(zip_file);
}

// Reads the entry back through the library (which checks the data against
// the CRC it stored) and compares that CRC with the source file's own.
void CheckZip(const fs::path& source, const fs::path& zip_file) {
  int error = 0;
  ZipHandle archive(zip_open(zip_file.c_str(), ZIP_RDONLY | ZIP_CHECKCONS, &error));
  if (!archive || zip_get_num_entries(archive.get(), 0) != 1) Fail();
  zip_stat_t stat;
  zip_stat_init(&stat);
  if (zip_stat_index(archive.get(), 0, 0, &stat) != 0 || !(stat.valid & ZIP_STAT_CRC)) Fail();
  zip_file_t* entry = zip_fopen_index(archive.get(), 0, 0);
  if (entry == nullptr) Fail();
  std::unique_ptr<char[]> buffer(new char[1 << 20]);
  zip_int64_t read = 0;
  zip_uint64_t total = 0;
  while ((read = zip_fread(entry, buffer.get(), 1 << 20)) > 0) total += static_cast<zip_uint64_t>(read);
  zip_fclose(entry);
  if (read < 0 || total != stat.size) Fail();
  if (stat.crc != backup::FileCrc32(source, "ZqModulo")) Fail();
}

}  // namespace

void Compacta(const std::string& Ds_Origem, const std::string& Ds_ArquivoZip) {
  Trap("ZqModulo", "Compacta", [&] {
    const fs::path source(Ds_Origem);
    const fs::path target(Ds_ArquivoZip);
    fs::path temporary = target;
    temporary += ".tmp";
    try {
      if (!fs::is_regular_file(source)) Fail();
      Compress(source, temporary);
      CheckZip(source, temporary);
      fs::permissions(temporary, fs::perms::owner_read | fs::perms::owner_write, fs::perm_options::replace);
      fs::rename(temporary, target);
    } catch (...) {
      std::error_code ignored;
      fs::remove(temporary, ignored);
      // Whatever failed, the caller sees the one message of the module.
      Fail();
    }
  });
}

}  // namespace vek
