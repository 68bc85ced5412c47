#include "vek/maintenance/cgdManutencaoBD.h"

#include <fcntl.h>
#include <unistd.h>

#include <chrono>
#include <cmath>
#include <ctime>
#include <filesystem>

#include "vek/db/Connection.h"
#include "vek/db/backup/MediaFile.h"
#include "vek/maintenance/ZqModulo.h"
#include "vek/platform/AppPath.h"
#include "vek/platform/Controls.h"
#include "vek/platform/Format.h"
#include "vek/platform/ProfileFile.h"
#include "vek/platform/Settings.h"
#include "vek/platform/Variant.h"

namespace vek {
namespace fs = std::filesystem;
namespace {

constexpr const char* kApplication = "VEK";
constexpr const char* kSection = "Backup";
constexpr const char* kLastFull = "UltimoBackupCompleto";
constexpr const char* kLastMirror = "UltimoEspelhamentoDeBackup";
constexpr const char* kFolderError = "Erro na criAção do diretório de backup ";

// A file's last modification as the date type, in local time.
Date ModifiedAt(const fs::path& file) {
  // The file clock's epoch is not the system clock's: carried over through now.
  // (to the nearest second: the two clocks are read a moment apart).
  const auto system = std::chrono::round<std::chrono::seconds>(
      fs::last_write_time(file) - fs::file_time_type::clock::now() + std::chrono::system_clock::now());
  const std::time_t seconds = std::chrono::system_clock::to_time_t(system);
  std::tm local{};
  ::localtime_r(&seconds, &local);
  return DateSerial(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday) +
         TimeSerial(local.tm_hour, local.tm_min, local.tm_sec);
}

// False when the file reads as backup media without a complete full set: a
// backup killed while it wrote the day's first set left it so, and nothing
// can be built on it. Such a file counts as missing: it is deleted, not
// kept as the previous generation, and a full backup is made. A file that
// can't be read at all is left for the backup statement to refuse.
bool HoldsFullSet(const fs::path& file) {
  std::error_code error;
  if (fs::file_size(file, error) == 0 && !error) return false;
  try {
    return backup::ReadMedia(file, false, "").LastFull().has_value();
  } catch (const VekError&) {
    return true;
  }
}

}  // namespace

void cgdManutencaoBD::Log(const std::string& text) const {
  const fs::path file = AppPath() / "Backup.log";
  const std::string line = Format(Variant(Ob_cgpSistema()->Now()), "dd/mm/yyyy hh:Nn:ss") + " - " + text + "\n";
  const int fd = ::open(file.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
  if (fd < 0) RaiseRuntimeError(kPathFileAccessError);
  const bool written = ::write(fd, line.data(), line.size()) == static_cast<ssize_t>(line.size());
  ::close(fd);
  if (!written) RaiseRuntimeError(kPathFileAccessError);
}

bool cgdManutencaoBD::DueAtDawn(const char* setting) const {
  const Date now = Ob_cgpSistema()->Now();
  // A time never stored is no day of this month.
  const std::optional<Date> last = ParseDate(GetSetting(kApplication, kSection, setting));
  return (!last || Day(*last) != Day(now)) && Hour(now) <= 4;
}

void cgdManutencaoBD::Stamp(const char* setting) const {
  SaveSetting(kApplication, kSection, setting, Format(Variant(Ob_cgpSistema()->Now()), "dd/mm/yyyy hh:Nn:Ss"));
  // The store now tells when the backups are made: the user's alone.
  RestrictToOwner(SettingsFilePath());
}

void cgdManutencaoBD::CreateFolder(const std::string& folder, const std::string& log_text) const {
  std::error_code error;
  if (fs::is_directory(folder, error)) {
    // A folder the backup can't write into fails here, before a set is begun.
    if (::access(folder.c_str(), W_OK | X_OK) != 0) throw VekError(kBusinessError, std::string(), kFolderError);
    return;
  }
  fs::create_directories(folder, error);
  if (error || !fs::is_directory(folder)) throw VekError(kBusinessError, std::string(), kFolderError);
  Log(log_text);
}

void cgdManutencaoBD::Backup() {
  Run("Backup", [&] {
    std::shared_ptr<cgpSistema> session = Ob_cgpSistema();
    ProgressWindow& progress = session->Progress();
    progress.Caption("Backup automático");
    progress.Label("Iniciando backup");
    progress.Percentage(0.0);
    progress.Show();
    std::shared_ptr<Connection> connection;
    bool opened_here = false;
    struct Finish {
      ProgressWindow& progress;
      std::shared_ptr<Connection>& connection;
      bool& opened_here;
      ~Finish() {
        if (opened_here) connection->Close();
        progress.Close();
      }
    } finish{progress, connection, opened_here};

    Log("Iniciado");
    const std::string local = CStr(session->Get("Ds_PathBkpLocal"));
    if (local.empty()) throw VekError(kBusinessError, std::string(), "Não foi configurado o diretório de backup");
    const std::string bak_file = (fs::path(local) / "VekBkp.bak").string();
    const std::string zip_file = (fs::path(local) / "VekBkp.zip").string();
    CreateFolder(local, "Criou diretório");
    connection = SessionConnection();
    // A session whose connection was closed gets it back for the backup only.
    if (connection->State() != adStateOpen) {
      connection->Open();
      opened_here = true;
    }
    Log("Abriu conexão com banco de dados");

    std::error_code error;
    const bool full = !fs::exists(bak_file, error) || !HoldsFullSet(bak_file) || DueAtDawn(kLastFull);
    progress.Percentage(10.0);
    if (full) {
      FullBackup(bak_file);
    } else {
      DifferentialBackup(bak_file);
    }
    Log("Concluiu arquivo de backup");
    progress.Percentage(60.0);

    const std::string mirror = CStr(session->Get("Ds_PathBkpEspelho"));
    if (!mirror.empty()) MirrorCopy(bak_file, zip_file, mirror);
    progress.Percentage(100.0);
    Log("Fechou conexao com o banco de dados");
  });
}

void cgdManutencaoBD::FullBackup(const std::string& bak_file) {
  Ob_cgpSistema()->Progress().Label("Iniciando backup completo, esse processo pode demorar alguns minutos.");
  Log("Iniciado backup completo");
  const fs::path folder = fs::path(bak_file).parent_path();
  const fs::path old_file = folder / "VekBkp_Old.bak";
  if (fs::exists(bak_file) && !HoldsFullSet(bak_file)) {
    // The previous generation stays: it is the last one that can be restored.
    fs::remove(bak_file);
    Log("Apagou VekBkp.bak interrompido, sem backup completo");
  } else if (fs::exists(old_file)) {
    fs::remove(old_file);
    Log("Deletou backup antigo VekBkp_Old.bak");
  }
  if (fs::exists(bak_file)) {
    fs::rename(bak_file, old_file);
    Log("Renomeou o backup atual para backup antigo");
  }
  Log("Pronto para iniciar o backup completo");
  SqlLines sql;
  sql << "BACKUP DATABASE Vek"
      << "TO  DISK = N'" + bak_file +
             "' WITH NOFORMAT, NOINIT,Name = N'Valor-Cheio Banco de Dados Backup', SKIP, NOREWIND, NOUNLOAD,  STATS = 10";
  ds_sql_ = sql;
  ExecuteStatement();
  Log("Concluído backup completo");
  Stamp(kLastFull);
}

void cgdManutencaoBD::DifferentialBackup(const std::string& bak_file) {
  Log("Iniciado backup parcial");
  Log("Iniciado backup diferencial");
  Log("Pronto para iniciar o backup incremental");
  SqlLines sql;
  sql << "BACKUP DATABASE Vek"
      << "TO  DISK = N'" + bak_file + "'"
      << "WITH  DIFFERENTIAL , NOFORMAT, NOINIT,  NAME = N'Valor-Diferencial Banco de Dados Backup', SKIP, NOREWIND, "
         "NOUNLOAD,  STATS = 10";
  ds_sql_ = sql;
  ExecuteStatement();
  if (SessionConnection()->SqlDialect() == Dialect::PostgreSQL) {
    Log("Backup diferencial gravado como completo: o PostgreSQL não tem backup diferencial");
  }
}

void cgdManutencaoBD::MirrorCopy(const std::string& bak_file, const std::string& zip_file, const std::string& mirror) {
  CreateFolder(mirror, "Criou diretório para backup espelho");
  std::error_code error;
  const fs::path mirrored = fs::path(mirror) / "VekBkp.zip";
  if (fs::exists(mirrored, error) && !DueAtDawn(kLastMirror)) return;
  const Date now = Ob_cgpSistema()->Now();
  for (const fs::directory_entry& entry : fs::directory_iterator(mirror)) {
    if (!entry.is_regular_file()) continue;
    // Whole days, as midnights passed between the file's time and now.
    if (std::floor(now.Serial()) - std::floor(ModifiedAt(entry.path()).Serial()) > 1) {
      fs::remove(entry.path());
      Log("Apagou arquivo antigo de backup");
    }
  }
  Ob_cgpSistema()->Progress().Label(
      "Copiando arquivo para diretório de espelho, esse processo pode demorar alguns minutos");
  Compacta(bak_file, zip_file);
  fs::path temporary = mirrored;
  temporary += ".tmp";
  fs::copy_file(zip_file, temporary, fs::copy_options::overwrite_existing);
  RestrictToOwner(temporary);
  fs::rename(temporary, mirrored);
  Log("Copiou arquivo de backup para o diretório de espelho (compactado)");
  Stamp(kLastMirror);
}

}  // namespace vek
