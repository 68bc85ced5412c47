// vek init: makes a folder ready to run a terminal on the embedded database:
// Vek.ini, the database with every table and fixed row, the access-control
// database beside it, and the Modelos folder.

#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "cli/Commands.h"
#include "vek/db/Connection.h"
#include "vek/foundation/MessageCatalogue.h"
#include "vek/foundation/SessionSettings.h"
#include "vek/platform/VekError.h"
#include "vek/foundation/cgpSistema.h"
#include "vek/platform/ProfileFile.h"
#include "vek/platform/Text.h"
#include "vek/revenue/MicrosigaTitles.h"
#include "vek/revenue/MonthlyWorkbookTemplate.h"
#include "vek/schema/CreateDatabase.h"
#include "vek/schema/ReportDatabase.h"

namespace vek::cli {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kSettingsFile = "Vek.ini";
constexpr std::string_view kDatabaseFile = "Vek.db";
constexpr std::string_view kAccessControlFile = "MDESTACIONAMENTO.db";
constexpr std::string_view kTemplatesFolder = "Modelos";
constexpr std::string_view kReportDatabaseTemplate = "bdTemp.db";

struct InitOptions {
  std::string folder = ".";
  bool force = false;
  std::string kind = "sqlite";
  ServerDatabase server;
};

struct SettingValue {
  const SettingDef* setting;
  std::string text;
};

// What a new installation starts with: the embedded database in the folder,
// keyset cursors with optimistic locks, ISO dates, and a plain default for
// every other key, so that the settings load without a conversion error.
std::vector<SettingValue> InstallationSettings(const fs::path& folder, const ServerDatabase* postgres) {
  const struct {
    std::string_view property;
    std::string text;
  } chosen[] = {
      {"Cursor", "1"},
      {"LockType", "3"},
      {"Cd_DB", postgres ? "41" : "31"},
      {"Ds_CaminhoDB", postgres ? postgres->database : (folder / kDatabaseFile).string()},
      {"Nm_ServidorDB", postgres ? postgres->server : std::string()},
      {"Ds_FormatoData", "yyyy-mm-dd"},
      {"Ds_CaminhoAplicacao", folder.string()},
      {"Ds_PathBkpLocal", (folder / "Backup").string()},
      {"Ds_PathBkpEspelho", (folder / "BackupEspelho").string()},
      {"Ds_PathArquivosSom", (folder / "Som").string()},
  };
  std::vector<SettingValue> values;
  for (const SettingDef& setting : SessionSettings()) {
    if (setting.in_user_store) continue;
    std::string text;
    switch (setting.type) {
      case PropertyType::Boolean: text = "False"; break;
      case PropertyType::String: break;
      default: text = "0"; break;
    }
    for (const auto& choice : chosen) {
      if (EqualsIgnoreCase(choice.property, setting.property)) text = choice.text;
    }
    values.push_back({&setting, std::move(text)});
  }
  return values;
}

void WriteSetting(std::string_view section, std::string_view key, const std::string& value,
                  const fs::path& file) {
  if (!WritePrivateProfileString(section, key, value, file)) {
    throw VekError(kBusinessError, std::string(),
                   "could not write " + std::string(key) + " into " + file.string());
  }
}

}  // namespace

namespace {

// The text a key already has in Vek.ini (where sessions read it, else where
// they write it); nothing when the file lacks it.
std::optional<std::string> ExistingSetting(const fs::path& file, const SettingDef& setting) {
  constexpr std::string_view kMissing = "\x01";  // no setting's text
  for (std::string_view section : {setting.read_section, setting.write_section}) {
    std::string text = GetPrivateProfileString(section, setting.key, kMissing, file);
    if (text != kMissing) return text;
  }
  return std::nullopt;
}

// The keys that say which database the terminal uses.
bool NamesTheDatabase(const SettingDef& setting) {
  for (std::string_view property : {"Cd_DB", "Ds_CaminhoDB", "Nm_ServidorDB"}) {
    if (EqualsIgnoreCase(setting.property, property)) return true;
  }
  return false;
}

// Writes Vek.ini into the folder: every key, the one read from another
// section under both, so that a session loads from the file as it is. A key
// the file already holds keeps its text (a repair never changes a setting,
// nor which database the terminal uses), except the database keys that a
// PostgreSQL init names itself.
std::shared_ptr<cgpSistema> WriteSettings(const fs::path& folder, const ServerDatabase* postgres,
                                          std::ostream& out) {
  const fs::path settings_file = folder / kSettingsFile;
  auto session = std::make_shared<cgpSistema>();
  for (const SettingValue& value : InstallationSettings(folder, postgres)) {
    const SettingDef& setting = *value.setting;
    std::string text = value.text;
    if (!(postgres && NamesTheDatabase(setting))) {
      if (std::optional<std::string> kept = ExistingSetting(settings_file, setting)) text = std::move(*kept);
    }
    WriteSetting(setting.write_section, setting.key, text, settings_file);
    if (!EqualsIgnoreCase(setting.read_section, setting.write_section)) {
      WriteSetting(setting.read_section, setting.key, text, settings_file);
    }
    session->Let(setting.property, Variant(text));
  }
  // It holds the database password.
  RestrictToOwner(settings_file);
  out << "settings  " << settings_file.string() << "\n";
  return session;
}

bool OnServer(const cgpSistema& session) { return CLng(session.Get("Cd_DB")) == BancoDadosPostgreSQL; }

// Gives the server's database what it misses, keeping what is there.
void CompleteServerDatabase(cgpSistema& session, std::ostream& out) {
  auto connection = session.AbrirConexao();
  schema::CreateDatabase(*connection);
  connection->Close();
  out << "database  " << CStr(session.Get("Ds_CaminhoDB")) << " on " << CStr(session.Get("Nm_ServidorDB"))
      << " (tables, functions and fixed rows; what was there is kept)\n";
}

fs::path MakeFolder(const fs::path& folder_argument, std::ostream& out) {
  const bool folder_existed = fs::is_directory(folder_argument);
  fs::create_directories(folder_argument);
  const fs::path folder = fs::canonical(folder_argument);
  out << "folder    " << folder.string() << (folder_existed ? " (already there)" : "") << "\n";
  return folder;
}

void MakeTemplatesFolder(const fs::path& folder, std::ostream& out) {
  const fs::path templates = folder / kTemplatesFolder;
  const bool templates_existed = fs::is_directory(templates);
  fs::create_directories(templates);
  out << "folder    " << templates.string() << (templates_existed ? " (already there)" : "")
      << "\n";
  // A template the installation has changed is kept.
  const fs::path report_database = templates / kReportDatabaseTemplate;
  const bool report_database_existed = fs::exists(report_database);
  if (!report_database_existed) schema::WriteReportDatabaseTemplate(report_database);
  out << "template  " << report_database.string() << (report_database_existed ? " (already there)" : "")
      << "\n";
  // The ERP's empty title table, which the receivables' dBase export fills.
  const bool titles_existed = fs::exists(templates / "SE1.dbf");
  if (!titles_existed) CreateMicrosigaTitleTable(templates, "SE1");
  out << "template  " << (templates / "SE1.dbf").string() << (titles_existed ? " (already there)" : "") << "\n";
  // The monthly movement workbook's template; one the owner changed is kept.
  const fs::path monthly_workbook = templates / "MovimentoMensal.xlsx";
  const bool monthly_workbook_existed = fs::exists(monthly_workbook);
  if (!monthly_workbook_existed) WriteMonthlyWorkbookTemplate(monthly_workbook);
  out << "template  " << monthly_workbook.string() << (monthly_workbook_existed ? " (already there)" : "") << "\n";
}

}  // namespace

void InitTerminalFolder(const fs::path& folder_argument, bool force, std::ostream& out) {
  const fs::path database_file = (fs::absolute(folder_argument) / kDatabaseFile).lexically_normal();
  if (fs::exists(database_file) && !force) {
    throw VekError(kBusinessError, std::string(),
                   database_file.string() +
                       " already exists; use --force to keep its data and add what is missing");
  }
  const fs::path folder = MakeFolder(folder_argument, out);
  auto session = WriteSettings(folder, nullptr, out);
  if (OnServer(*session)) {
    // A terminal on the server stays there.
    CompleteServerDatabase(*session, out);
    MakeTemplatesFolder(folder, out);
    return;
  }

  const bool database_existed = fs::exists(folder / kDatabaseFile);
  const bool access_control_existed = fs::exists(folder / kAccessControlFile);
  auto connection = session->AbrirConexao();
  schema::CreateDatabase(*connection);
  connection->Close();
  constexpr std::string_view kKept = " (kept its data, added what was missing)";
  out << "database  " << (folder / kDatabaseFile).string() << (database_existed ? kKept : "")
      << "\n";
  out << "database  " << (folder / kAccessControlFile).string()
      << (access_control_existed ? kKept : "") << "\n";
  MakeTemplatesFolder(folder, out);
}

void InitTerminalFolder(const fs::path& folder_argument, const ServerDatabase& postgres,
                        std::ostream& out) {
  if (postgres.server.empty() || postgres.database.empty()) {
    throw VekError(kBusinessError, std::string(),
                   "a PostgreSQL terminal needs --server HOST[:PORT] and --database NAME");
  }
  const fs::path folder = MakeFolder(folder_argument, out);
  auto session = WriteSettings(folder, &postgres, out);
  CompleteServerDatabase(*session, out);
  MakeTemplatesFolder(folder, out);
}

void AddInitCommand(CLI::App& app) {
  auto options = std::make_shared<InitOptions>();
  CLI::App* command = app.add_subcommand(
      "init", "Make a folder ready for a terminal: Vek.ini, the database (Vek.db) and Modelos");
  command->add_option("folder", options->folder, "The folder (made when missing)")
      ->capture_default_str();
  command->add_flag("-f,--force", options->force,
                    "Go on when Vek.db is there: keep its data and every setting of Vek.ini, "
                    "and add what is missing");
  command->add_option("-k,--kind", options->kind, "Where the database lives")
      ->check(CLI::IsMember({"sqlite", "postgresql"}))
      ->capture_default_str();
  command->add_option("-s,--server", options->server.server,
                      "PostgreSQL server, [user@]host[:port] (with --kind postgresql)");
  command->add_option("-d,--database", options->server.database,
                      "PostgreSQL database, which must exist (with --kind postgresql)");
  command->callback([options] {
    if (options->kind == "postgresql") {
      InitTerminalFolder(options->folder, options->server, std::cout);
    } else {
      InitTerminalFolder(options->folder, options->force, std::cout);
    }
  });
}

}  // namespace vek::cli
