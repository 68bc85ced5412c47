#pragma once
// Private-profile (INI) files with the behaviour of the old platform's
// GetPrivateProfileString/WritePrivateProfileString, on UTF-8 text.
//
// Reading: sections and keys compare case-insensitively (accented Latin
// letters included) and with blanks around them ignored; the first match in
// file order wins, later duplicate sections included. Lines without '=' and
// lines starting with ';' are never keys; keys above the first section
// belong to no section. CRLF and LF both read, a UTF-8 BOM is skipped, and a
// missing, unreadable or malformed file reads as having no keys. Nothing here
// throws. Each call reads the file again; nothing is cached.
//
// Values: blanks (spaces and tabs) around a value are dropped, then one pair
// of matching double or single quotes around it. Bytes that are not UTF-8
// come back as their Latin-1 characters, encoded in UTF-8.

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace vek {

// The value of `key` in `section`, or no value when the file, the section or
// the key is missing. A key written as "key=" has the empty value.
std::optional<std::string> FindProfileValue(std::string_view section, std::string_view key,
                                             const std::filesystem::path& file);

// Writes the value, cut to size - 1 characters, and a NUL character ('\0')
// over the first characters of `buffer`, leaving its later characters as
// they were (a buffer shorter than what is written grows to hold it).
// Returns the number of characters written before the NUL. A missing file,
// section or key, or an empty section or key name, gives `default_value`
// without its trailing spaces. size 0 writes nothing and returns 0.
uint32_t GetPrivateProfileString(std::string_view section, std::string_view key,
                                 std::string_view default_value, std::string& buffer,
                                 uint32_t size, const std::filesystem::path& file);

// The whole value, or `default_value` without its trailing spaces.
std::string GetPrivateProfileString(std::string_view section, std::string_view key,
                                    std::string_view default_value,
                                    const std::filesystem::path& file);

// Sets `key` of `section` to `value`, creating the file and the section as
// needed: a new section goes at the end of the file, a new key after the last
// key of its section (the first section of that name). An existing key keeps
// its spelling and place. Every other line stays as it was, byte for byte.
// key nullopt deletes every section of that name; value nullopt deletes every
// line of that key in those sections. New lines end as the file's lines do
// (CRLF in a new file, as the old platform wrote them).
//
// The file is replaced through a temporary file and a rename, so readers see
// the old file or the new one, never a part. Returns false, without
// throwing, when the folder does not exist, the write fails, or a name or
// value cannot be stored on one line (an empty section or key name, a line
// break or NUL anywhere, '=' in a key).
bool WritePrivateProfileString(std::string_view section, std::optional<std::string_view> key,
                               std::optional<std::string_view> value,
                               const std::filesystem::path& file);

// Makes `file` readable and writable by its owner only (0600), as a file that
// holds a password must be; the mode survives later writes. Returns false
// when the file can't be changed.
bool RestrictToOwner(const std::filesystem::path& file);

}  // namespace vek
