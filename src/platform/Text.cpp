#include "vek/platform/Text.h"

#include "vek/platform/VekError.h"

namespace vek {
namespace {

// Byte offset of the character at 0-based index `chars`, or text.size().
size_t ByteOffset(std::string_view text, int64_t chars) {
  size_t pos = 0;
  while (chars > 0 && pos < text.size()) {
    NextCodePoint(text, pos);
    --chars;
  }
  return pos;
}

bool IsLatinExtendedA(char32_t c) { return c >= 0x100 && c <= 0x17F; }

constexpr unsigned char AsciiLower(unsigned char c) { return c >= 'A' && c <= 'Z' ? c + 0x20 : c; }

std::string MapCase(std::string_view text, char32_t (*map)(char32_t)) {
  std::string out;
  out.reserve(text.size());
  size_t pos = 0;
  while (pos < text.size()) AppendUtf8(out, map(NextCodePoint(text, pos)));
  return out;
}

}  // namespace

char32_t NextCodePoint(std::string_view text, size_t& pos) {
  const auto byte = [&](size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned char lead = byte(pos);
  if (lead < 0x80) {
    ++pos;
    return lead;
  }
  size_t extra = 0;
  char32_t value = 0;
  if ((lead & 0xE0) == 0xC0) {
    extra = 1;
    value = lead & 0x1F;
  } else if ((lead & 0xF0) == 0xE0) {
    extra = 2;
    value = lead & 0x0F;
  } else if ((lead & 0xF8) == 0xF0) {
    extra = 3;
    value = lead & 0x07;
  } else {
    ++pos;
    return lead;
  }
  if (pos + extra >= text.size()) {
    ++pos;
    return lead;
  }
  for (size_t i = 1; i <= extra; ++i) {
    if ((byte(pos + i) & 0xC0) != 0x80) {
      ++pos;
      return lead;
    }
    value = (value << 6) | (byte(pos + i) & 0x3F);
  }
  static constexpr char32_t kMinimum[] = {0, 0x80, 0x800, 0x10000};
  if (value < kMinimum[extra] || value > 0x10FFFF || (value >= 0xD800 && value <= 0xDFFF)) {
    ++pos;
    return lead;
  }
  pos += extra + 1;
  return value;
}

std::u32string DecodeUtf8(std::string_view text) {
  std::u32string out;
  out.reserve(text.size());
  size_t pos = 0;
  while (pos < text.size()) out.push_back(NextCodePoint(text, pos));
  return out;
}

void AppendUtf8(std::string& out, char32_t c) {
  if (c < 0x80) {
    out.push_back(static_cast<char>(c));
  } else if (c < 0x800) {
    out.push_back(static_cast<char>(0xC0 | (c >> 6)));
    out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
  } else if (c < 0x10000) {
    out.push_back(static_cast<char>(0xE0 | (c >> 12)));
    out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
  } else {
    out.push_back(static_cast<char>(0xF0 | (c >> 18)));
    out.push_back(static_cast<char>(0x80 | ((c >> 12) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | ((c >> 6) & 0x3F)));
    out.push_back(static_cast<char>(0x80 | (c & 0x3F)));
  }
}

std::string EncodeUtf8(std::u32string_view text) {
  std::string out;
  out.reserve(text.size());
  for (char32_t c : text) AppendUtf8(out, c);
  return out;
}

char32_t UpperChar(char32_t c) {
  if (c >= 'a' && c <= 'z') return c - 0x20;
  if (c >= 0xE0 && c <= 0xFE && c != 0xF7) return c - 0x20;
  if (c == 0xFF) return 0x178;
  if (IsLatinExtendedA(c)) {
    const bool even_upper = (c <= 0x137) || (c >= 0x14A && c <= 0x177);
    const bool odd_upper = (c >= 0x139 && c <= 0x148) || (c >= 0x179 && c <= 0x17E);
    if (even_upper && (c % 2 == 1)) return c - 1;
    if (odd_upper && (c % 2 == 0)) return c - 1;
  }
  return c;
}

char32_t LowerChar(char32_t c) {
  if (c >= 'A' && c <= 'Z') return c + 0x20;
  if (c >= 0xC0 && c <= 0xDE && c != 0xD7) return c + 0x20;
  if (c == 0x178) return 0xFF;
  if (IsLatinExtendedA(c)) {
    const bool even_upper = (c <= 0x137) || (c >= 0x14A && c <= 0x177);
    const bool odd_upper = (c >= 0x139 && c <= 0x148) || (c >= 0x179 && c <= 0x17E);
    if (even_upper && (c % 2 == 0)) return c + 1;
    if (odd_upper && (c % 2 == 1)) return c + 1;
  }
  return c;
}

bool EqualsIgnoreCase(std::string_view a, std::string_view b) noexcept {
  // Names are nearly always ASCII: compare bytes until a non-ASCII one.
  size_t i = 0;
  for (; i < a.size() && i < b.size(); ++i) {
    const unsigned char x = static_cast<unsigned char>(a[i]);
    const unsigned char y = static_cast<unsigned char>(b[i]);
    if ((x | y) >= 0x80) break;
    if (x != y && AsciiLower(x) != AsciiLower(y)) return false;
  }
  if (i == a.size() || i == b.size()) return a.size() == b.size();
  size_t j = i;
  while (i < a.size() && j < b.size()) {
    if (LowerChar(NextCodePoint(a, i)) != LowerChar(NextCodePoint(b, j))) return false;
  }
  return i == a.size() && j == b.size();
}

std::string FoldCase(std::string_view text) { return MapCase(text, LowerChar); }

size_t CaseInsensitiveHash::operator()(std::string_view text) const noexcept {
  // FNV-1a over the lower-case code points, ASCII ones taken directly.
  uint64_t hash = 14695981039346656037ull;
  size_t pos = 0;
  while (pos < text.size()) {
    const unsigned char byte = static_cast<unsigned char>(text[pos]);
    const char32_t c = byte < 0x80 ? (++pos, AsciiLower(byte)) : LowerChar(NextCodePoint(text, pos));
    hash ^= c;
    hash *= 1099511628211ull;
  }
  return static_cast<size_t>(hash);
}

std::string LTrim(std::string_view text) {
  const size_t first = text.find_first_not_of(' ');
  return first == std::string_view::npos ? std::string() : std::string(text.substr(first));
}

std::string RTrim(std::string_view text) {
  const size_t last = text.find_last_not_of(' ');
  return last == std::string_view::npos ? std::string() : std::string(text.substr(0, last + 1));
}

std::string Trim(std::string_view text) { return LTrim(RTrim(text)); }

std::string Mid(std::string_view text, int32_t start) {
  if (start < 1) RaiseRuntimeError(kInvalidProcedureCall);
  return std::string(text.substr(ByteOffset(text, start - 1)));
}

std::string Mid(std::string_view text, int32_t start, int32_t length) {
  if (start < 1 || length < 0) RaiseRuntimeError(kInvalidProcedureCall);
  const std::string_view rest = text.substr(ByteOffset(text, start - 1));
  return std::string(rest.substr(0, ByteOffset(rest, length)));
}

std::string Left(std::string_view text, int32_t length) {
  if (length < 0) RaiseRuntimeError(kInvalidProcedureCall);
  return std::string(text.substr(0, ByteOffset(text, length)));
}

std::string Right(std::string_view text, int32_t length) {
  if (length < 0) RaiseRuntimeError(kInvalidProcedureCall);
  const int32_t total = Len(text);
  if (length >= total) return std::string(text);
  return std::string(text.substr(ByteOffset(text, total - length)));
}

std::string UCase(std::string_view text) { return MapCase(text, UpperChar); }
std::string LCase(std::string_view text) { return MapCase(text, LowerChar); }

int32_t Len(std::string_view text) {
  int32_t count = 0;
  size_t pos = 0;
  while (pos < text.size()) {
    NextCodePoint(text, pos);
    ++count;
  }
  return count;
}

int32_t Asc(std::string_view text) {
  if (text.empty()) RaiseRuntimeError(kInvalidProcedureCall);
  size_t pos = 0;
  return static_cast<int32_t>(NextCodePoint(text, pos));
}

std::string Chr(int32_t code) {
  if (code < 0 || code > 0x10FFFF) RaiseRuntimeError(kInvalidProcedureCall);
  std::string out;
  AppendUtf8(out, static_cast<char32_t>(code));
  return out;
}

std::string Hex(int64_t value) {
  static constexpr char kDigits[] = "0123456789ABCDEF";
  uint64_t bits = value < 0 && value >= INT32_MIN ? static_cast<uint32_t>(value)
                                                  : static_cast<uint64_t>(value);
  std::string out;
  do {
    out.insert(out.begin(), kDigits[bits & 0xF]);
    bits >>= 4;
  } while (bits != 0);
  return out;
}

int32_t InStr(int32_t start, std::string_view text, std::string_view find) {
  if (start < 1) RaiseRuntimeError(kInvalidProcedureCall);
  if (start > Len(text)) return 0;
  if (find.empty()) return start;
  const size_t from = ByteOffset(text, start - 1);
  const size_t hit = text.find(find, from);
  if (hit == std::string_view::npos) return 0;
  return Len(text.substr(0, hit)) + 1;
}

int32_t InStr(std::string_view text, std::string_view find) { return InStr(1, text, find); }

std::string Replace(std::string_view text, std::string_view find, std::string_view with) {
  if (find.empty()) return std::string(text);
  std::string out;
  size_t pos = 0;
  for (size_t hit; (hit = text.find(find, pos)) != std::string_view::npos; pos = hit + find.size()) {
    out.append(text.substr(pos, hit - pos)).append(with);
  }
  out.append(text.substr(pos));
  return out;
}

std::string String(int32_t count, std::string_view character) {
  if (count < 0 || character.empty()) RaiseRuntimeError(kInvalidProcedureCall);
  const std::string one = Left(character, 1);
  std::string out;
  for (int32_t i = 0; i < count; ++i) out += one;
  return out;
}

std::string Space(int32_t count) { return String(count, " "); }

}  // namespace vek
