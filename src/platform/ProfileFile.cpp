#include "vek/platform/ProfileFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <fstream>
#include <mutex>
#include <sstream>
#include <system_error>
#include <vector>

#include "vek/platform/Text.h"

namespace vek {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view kBom = "\xEF\xBB\xBF";

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\v' || c == '\f'; }

std::string_view TrimBlanks(std::string_view text) {
  size_t first = 0;
  while (first < text.size() && IsBlank(text[first])) ++first;
  size_t last = text.size();
  while (last > first && IsBlank(text[last - 1])) --last;
  return text.substr(first, last - first);
}

enum class LineKind { kBlank, kComment, kSection, kKey, kOther };

struct Line {
  std::string text;  // without its line end
  std::string end;   // "\r\n", "\n" or "" (last line of the file)
  LineKind kind = LineKind::kOther;
  std::string name;   // section or key name, trimmed
  std::string value;  // key value, trimmed, quotes still on
};

void Classify(Line& line) {
  const std::string_view body = TrimBlanks(line.text);
  if (body.empty()) {
    line.kind = LineKind::kBlank;
    return;
  }
  if (body.front() == ';') {
    line.kind = LineKind::kComment;
    return;
  }
  if (body.front() == '[') {
    const size_t close = body.rfind(']');
    if (close != std::string_view::npos && close > 0) {
      line.kind = LineKind::kSection;
      line.name = std::string(TrimBlanks(body.substr(1, close - 1)));
      return;
    }
    // A bracket that never closes is no header; the old platform then read
    // the line as a key, so we do the same.
  }
  const size_t equals = body.find('=');
  if (equals == std::string_view::npos) {
    line.kind = LineKind::kOther;
    return;
  }
  line.kind = LineKind::kKey;
  line.name = std::string(TrimBlanks(body.substr(0, equals)));
  line.value = std::string(TrimBlanks(body.substr(equals + 1)));
}

struct Profile {
  bool has_bom = false;
  std::vector<Line> lines;
};

Profile Parse(std::string_view content) {
  Profile profile;
  if (content.substr(0, kBom.size()) == kBom) {
    profile.has_bom = true;
    content.remove_prefix(kBom.size());
  }
  size_t pos = 0;
  while (pos < content.size()) {
    const size_t newline = content.find('\n', pos);
    Line line;
    if (newline == std::string_view::npos) {
      line.text = std::string(content.substr(pos));
      pos = content.size();
    } else {
      line.text = std::string(content.substr(pos, newline - pos));
      line.end = "\n";
      if (!line.text.empty() && line.text.back() == '\r') {
        line.text.pop_back();
        line.end = "\r\n";
      }
      pos = newline + 1;
    }
    Classify(line);
    profile.lines.push_back(std::move(line));
  }
  return profile;
}

std::string Serialize(const Profile& profile) {
  std::string out;
  if (profile.has_bom) out.append(kBom);
  for (const Line& line : profile.lines) out.append(line.text).append(line.end);
  return out;
}

// The line end for lines we add: the file's own, CRLF for a new file.
std::string NewLineEnd(const Profile& profile) {
  for (const Line& line : profile.lines) {
    if (!line.end.empty()) return line.end;
  }
  return "\r\n";
}

std::optional<std::string> ReadFile(const fs::path& file) {
  std::error_code error;
  if (!fs::is_regular_file(file, error)) return std::nullopt;
  std::ifstream in(file, std::ios::binary);
  if (!in) return std::nullopt;
  std::ostringstream content;
  content << in.rdbuf();
  if (in.bad()) return std::nullopt;
  return std::move(content).str();
}

// Index ranges [header, next header) of every section named `section`.
std::vector<std::pair<size_t, size_t>> SectionRanges(const Profile& profile,
                                                     std::string_view section) {
  std::vector<std::pair<size_t, size_t>> ranges;
  const std::vector<Line>& lines = profile.lines;
  for (size_t i = 0; i < lines.size(); ++i) {
    if (lines[i].kind != LineKind::kSection || !EqualsIgnoreCase(lines[i].name, section)) continue;
    size_t end = i + 1;
    while (end < lines.size() && lines[end].kind != LineKind::kSection) ++end;
    ranges.emplace_back(i, end);
  }
  return ranges;
}

std::string Unquote(std::string_view value) {
  if (value.size() >= 2 && (value.front() == '"' || value.front() == '\'') &&
      value.back() == value.front()) {
    value = value.substr(1, value.size() - 2);
  }
  // Old single-byte text reads as Latin-1 and comes back as UTF-8.
  return EncodeUtf8(DecodeUtf8(value));
}

bool HasLineBreakOrNul(std::string_view text) {
  return text.find_first_of(std::string_view("\r\n\0", 3)) != std::string_view::npos;
}

// A name nobody else in this process uses, in the target's folder so that the
// rename stays on one file system.
fs::path TemporaryPath(const fs::path& target) {
  static std::atomic<uint64_t> counter{0};
  std::string name = "." + target.filename().string() + ".tmp" + std::to_string(::getpid()) +
                     "." + std::to_string(counter.fetch_add(1));
  return target.parent_path() / name;
}

bool WriteAll(int fd, std::string_view data) {
  while (!data.empty()) {
    const ssize_t written = ::write(fd, data.data(), data.size());
    if (written < 0) {
      if (errno == EINTR) continue;
      return false;
    }
    data.remove_prefix(static_cast<size_t>(written));
  }
  return true;
}

// Temporary file, flush to disk, rename over the target: a crash leaves the
// old file or the new one, never half of either.
bool ReplaceFile(const fs::path& target, std::string_view content) {
  fs::path temporary;
  int fd = -1;
  for (int attempt = 0; attempt < 16 && fd < 0; ++attempt) {
    temporary = TemporaryPath(target);
    // A new file is the owner's alone: Vek.ini and the settings store hold
    // the database password from their first write on. A file that is there
    // keeps its mode.
    fd = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (fd < 0 && errno != EEXIST) return false;
  }
  if (fd < 0) return false;
  struct stat original {};
  if (::stat(target.c_str(), &original) == 0) ::fchmod(fd, original.st_mode & 07777);
  bool ok = WriteAll(fd, content) && ::fsync(fd) == 0;
  ok = (::close(fd) == 0) && ok;
  if (ok) ok = ::rename(temporary.c_str(), target.c_str()) == 0;
  if (!ok) {
    ::unlink(temporary.c_str());
    return false;
  }
  // The rename itself reaches the disk only with the folder.
  const fs::path folder = target.parent_path().empty() ? fs::path(".") : target.parent_path();
  const int dir_fd = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (dir_fd >= 0) {
    ::fsync(dir_fd);
    ::close(dir_fd);
  }
  return true;
}

// One writer at a time inside the process, so two threads never lose each
// other's keys in the read-modify-write.
std::mutex& WriteMutex() {
  static std::mutex mutex;
  return mutex;
}

}  // namespace

std::optional<std::string> FindProfileValue(std::string_view section, std::string_view key,
                                             const fs::path& file) {
  try {
    section = TrimBlanks(section);
    key = TrimBlanks(key);
    if (section.empty() || key.empty()) return std::nullopt;
    const std::optional<std::string> content = ReadFile(file);
    if (!content) return std::nullopt;
    const Profile profile = Parse(*content);
    for (const auto& [begin, end] : SectionRanges(profile, section)) {
      for (size_t i = begin + 1; i < end; ++i) {
        const Line& line = profile.lines[i];
        if (line.kind == LineKind::kKey && EqualsIgnoreCase(line.name, key)) {
          return Unquote(line.value);
        }
      }
    }
  } catch (const std::exception&) {
    // An unreadable file reads as one without keys.
  }
  return std::nullopt;
}

uint32_t GetPrivateProfileString(std::string_view section, std::string_view key,
                                 std::string_view default_value, std::string& buffer,
                                 uint32_t size, const fs::path& file) {
  if (size == 0) return 0;
  const std::string value = GetPrivateProfileString(section, key, default_value, file);
  const int32_t room = static_cast<int32_t>(std::min<uint32_t>(size - 1, INT32_MAX - 2));
  std::string written = Left(value, room);
  const int32_t copied = Len(written);
  // The characters past the NUL stay, so the caller can tell the value's own
  // trailing spaces from the buffer's.
  const std::string rest = Mid(buffer, copied + 2);
  written.push_back('\0');
  written.append(rest);
  buffer = std::move(written);
  return static_cast<uint32_t>(copied);
}

std::string GetPrivateProfileString(std::string_view section, std::string_view key,
                                    std::string_view default_value, const fs::path& file) {
  std::optional<std::string> value = FindProfileValue(section, key, file);
  if (value) return std::move(*value);
  return RTrim(default_value);
}

bool WritePrivateProfileString(std::string_view section, std::optional<std::string_view> key,
                               std::optional<std::string_view> value, const fs::path& file) {
  try {
    section = TrimBlanks(section);
    if (section.empty() || HasLineBreakOrNul(section)) return false;
    if (key) {
      key = TrimBlanks(*key);
      if (key->empty() || HasLineBreakOrNul(*key) || key->find('=') != std::string_view::npos) {
        return false;
      }
      if (value && HasLineBreakOrNul(*value)) return false;
    }

    std::error_code error;
    fs::path target = file;
    // Writing through a link keeps the link and changes the file it names.
    if (fs::is_symlink(target, error)) {
      target = fs::weakly_canonical(target, error);
      if (error) return false;
    }
    const fs::path folder = target.parent_path().empty() ? fs::path(".") : target.parent_path();
    if (!fs::is_directory(folder, error)) return false;

    const std::lock_guard<std::mutex> lock(WriteMutex());
    std::string old_content;
    if (fs::exists(target, error)) {
      std::optional<std::string> content = ReadFile(target);
      if (!content) return false;
      old_content = std::move(*content);
    }
    Profile profile = Parse(old_content);
    std::vector<Line>& lines = profile.lines;
    const auto ranges = SectionRanges(profile, section);

    if (!key) {
      for (auto range = ranges.rbegin(); range != ranges.rend(); ++range) {
        lines.erase(lines.begin() + static_cast<ptrdiff_t>(range->first),
                    lines.begin() + static_cast<ptrdiff_t>(range->second));
      }
    } else if (!value) {
      for (auto range = ranges.rbegin(); range != ranges.rend(); ++range) {
        for (size_t i = range->second; i-- > range->first + 1;) {
          if (lines[i].kind == LineKind::kKey && EqualsIgnoreCase(lines[i].name, *key)) {
            lines.erase(lines.begin() + static_cast<ptrdiff_t>(i));
          }
        }
      }
    } else {
      const std::string new_end = NewLineEnd(profile);
      bool done = false;
      for (const auto& [begin, end] : ranges) {
        for (size_t i = begin + 1; i < end && !done; ++i) {
          Line& line = lines[i];
          if (line.kind != LineKind::kKey || !EqualsIgnoreCase(line.name, *key)) continue;
          const size_t indent = line.text.find_first_not_of(" \t");
          line.text = line.text.substr(0, indent) + line.name + "=" + std::string(*value);
          done = true;
        }
        if (done) break;
      }
      if (!done && !ranges.empty()) {
        const auto [begin, end] = ranges.front();
        size_t after = begin;
        for (size_t i = begin + 1; i < end; ++i) {
          if (lines[i].kind == LineKind::kKey) after = i;
        }
        if (lines[after].end.empty()) lines[after].end = new_end;
        Line added;
        added.text = std::string(*key) + "=" + std::string(*value);
        added.end = new_end;
        lines.insert(lines.begin() + static_cast<ptrdiff_t>(after + 1), std::move(added));
        done = true;
      }
      if (!done) {
        if (!lines.empty() && lines.back().end.empty()) lines.back().end = new_end;
        Line header;
        header.text = "[" + std::string(section) + "]";
        header.end = new_end;
        Line added;
        added.text = std::string(*key) + "=" + std::string(*value);
        added.end = new_end;
        lines.push_back(std::move(header));
        lines.push_back(std::move(added));
      }
    }

    const std::string new_content = Serialize(profile);
    if (new_content == old_content && fs::exists(target, error)) return true;
    if (new_content.empty() && !fs::exists(target, error)) return true;
    return ReplaceFile(target, new_content);
  } catch (const std::exception&) {
    return false;
  }
}

bool RestrictToOwner(const fs::path& file) {
  std::error_code error;
  fs::permissions(file, fs::perms::owner_read | fs::perms::owner_write, fs::perm_options::replace, error);
  return !error;
}

}  // namespace vek
