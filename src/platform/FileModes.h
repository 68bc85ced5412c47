#pragma once
// The modes of the files the library writes for people to keep: backups,
// exports and copied templates.

#include <filesystem>

namespace vek::detail {

// Takes the write permission away from the group and from others, whatever
// the process umask allowed, so a backup or an export is changed by its owner
// only. False when the mode could not be changed; never throws.
bool KeepOthersFromWriting(const std::filesystem::path& file) noexcept;

}  // namespace vek::detail
