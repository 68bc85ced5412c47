#include "vek/platform/Settings.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <system_error>

#include "vek/platform/VekError.h"
#include "vek/platform/ProfileFile.h"

namespace vek {
namespace {

namespace fs = std::filesystem;

std::string ProfileSection(std::string_view app_name, std::string_view section) {
  std::string name(app_name);
  name.append("\\").append(section);
  return name;
}

fs::path HomeFolder() {
  const char* home = std::getenv("HOME");
  if (home != nullptr && *home != '\0') return fs::path(home);
  // A service started without HOME still has a home in the user database.
  if (const passwd* entry = ::getpwuid(::getuid()); entry != nullptr && entry->pw_dir != nullptr) {
    return fs::path(entry->pw_dir);
  }
  return fs::path(".");
}

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\v' || c == '\f'; }

// The profile drops blanks and one pair of quotes around a value; quoting
// such a setting makes it come back as it was saved.
std::string StoredForm(std::string_view setting) {
  if (setting.empty()) return std::string();
  const char first = setting.front();
  const char last = setting.back();
  const bool quoted = setting.size() >= 2 && (first == '"' || first == '\'') && last == first;
  if (IsBlank(first) || IsBlank(last) || quoted) {
    std::string stored = "\"";
    stored.append(setting).append("\"");
    return stored;
  }
  return std::string(setting);
}

bool IsEmptyName(std::string_view name) {
  return name.find_first_not_of(" \t") == std::string_view::npos;
}

bool CannotBeStored(std::string_view text) {
  return text.find_first_of(std::string_view("\r\n\0", 3)) != std::string_view::npos;
}

fs::path WritableStore() {
  const fs::path file = SettingsFilePath();
  std::error_code error;
  const bool made = fs::create_directories(file.parent_path(), error);
  if (error) RaiseRuntimeError(kPathFileAccessError);
  // Like the store inside it, the folder is its owner's alone.
  if (made) fs::permissions(file.parent_path(), fs::perms::owner_all, fs::perm_options::replace, error);
  return file;
}

}  // namespace

fs::path SettingsFilePath() {
  const char* config = std::getenv("XDG_CONFIG_HOME");
  // Relative XDG paths are invalid by the XDG rules and are ignored.
  if (config != nullptr && *config == '/') return fs::path(config) / "vek" / "settings.ini";
  return HomeFolder() / ".config" / "vek" / "settings.ini";
}

std::string GetSetting(std::string_view app_name, std::string_view section, std::string_view key,
                       std::string_view default_value) {
  try {
    std::optional<std::string> value =
        FindProfileValue(ProfileSection(app_name, section), key, SettingsFilePath());
    if (value) return std::move(*value);
  } catch (const std::exception&) {
    // An unreadable store reads as empty.
  }
  return std::string(default_value);
}

void SaveSetting(std::string_view app_name, std::string_view section, std::string_view key,
                 std::string_view setting) {
  if (IsEmptyName(app_name) || IsEmptyName(section) || IsEmptyName(key) || CannotBeStored(app_name) ||
      CannotBeStored(section) || CannotBeStored(key) || CannotBeStored(setting) ||
      key.find('=') != std::string_view::npos) {
    RaiseRuntimeError(kInvalidProcedureCall);
  }
  const fs::path file = WritableStore();
  if (!WritePrivateProfileString(ProfileSection(app_name, section), key, StoredForm(setting),
                                 file)) {
    RaiseRuntimeError(kPathFileAccessError);
  }
}

void DeleteSetting(std::string_view app_name, std::string_view section,
                   std::optional<std::string_view> key) {
  if (key && IsEmptyName(*key)) RaiseRuntimeError(kInvalidProcedureCall);
  const fs::path file = SettingsFilePath();
  std::error_code error;
  // With no store there is nothing to delete.
  if (!fs::exists(file, error)) return;
  if (!WritePrivateProfileString(ProfileSection(app_name, section), key, std::nullopt, file)) {
    RaiseRuntimeError(kPathFileAccessError);
  }
}

}  // namespace vek
