#pragma once
// The per-user settings store of the old platform (GetSetting, SaveSetting,
// DeleteSetting), kept as one private-profile file per user:
// $XDG_CONFIG_HOME/vek/settings.ini, or $HOME/.config/vek/settings.ini when
// XDG_CONFIG_HOME is unset, empty or not absolute. Each application section
// is the profile section app_name + "\" + section ("VEK\Execucao").
// Names compare case-insensitively, as in ProfileFile.h.

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace vek {

// Where the store lives now (the environment is read on every call).
std::filesystem::path SettingsFilePath();

// The stored text exactly as saved, or `default_value` when it was never
// saved. Never raises: an unreadable store reads as empty.
std::string GetSetting(std::string_view app_name, std::string_view section, std::string_view key,
                       std::string_view default_value = "");

// Stores `setting` so that GetSetting returns it unchanged (blanks and quotes
// around it included), creating the folders and the file as needed.
// Raises error 5 when a name is empty, a name or the setting holds a line
// break or NUL, or the key holds '='; error 75 when the store cannot be
// written.
void SaveSetting(std::string_view app_name, std::string_view section, std::string_view key,
                 std::string_view setting);

// Deletes one setting, or the whole section when `key` is omitted. Deleting
// what is not there does nothing. Raises error 75 when the store cannot be
// written.
void DeleteSetting(std::string_view app_name, std::string_view section,
                   std::optional<std::string_view> key = std::nullopt);

}  // namespace vek
