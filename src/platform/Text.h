#pragma once
// Text is UTF-8 throughout; every length and position here counts characters
// (code points), never bytes. Bytes that are not valid UTF-8 read as the
// Latin-1 character of the same code, so old single-byte text still reads.

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>

namespace vek {

// ---- UTF-8 helpers -------------------------------------------------------
// The character at byte `pos`, advancing `pos` past it; an invalid sequence
// yields its first byte as a Latin-1 character.
char32_t NextCodePoint(std::string_view text, size_t& pos);
std::u32string DecodeUtf8(std::string_view text);
std::string EncodeUtf8(std::u32string_view text);
void AppendUtf8(std::string& out, char32_t code_point);

// Case mapping of ASCII and the Latin letters (Latin-1 and Latin Extended-A),
// as the classic runtime did for Western text.
char32_t UpperChar(char32_t c);
char32_t LowerChar(char32_t c);
bool EqualsIgnoreCase(std::string_view a, std::string_view b) noexcept;
// A key for maps that compare names case-insensitively.
std::string FoldCase(std::string_view text);

// Hashing and equality that ignore case, for maps looked up by name without
// folding the name first.
struct CaseInsensitiveHash {
  using is_transparent = void;
  size_t operator()(std::string_view text) const noexcept;
};
struct CaseInsensitiveEqual {
  using is_transparent = void;
  bool operator()(std::string_view a, std::string_view b) const noexcept { return EqualsIgnoreCase(a, b); }
};
template <class Value>
using CaseInsensitiveMap = std::unordered_map<std::string, Value, CaseInsensitiveHash, CaseInsensitiveEqual>;

// ---- the classic runtime's text routines ----------------------------------
// Blanks are spaces only, as in the classic runtime.
std::string LTrim(std::string_view text);
std::string RTrim(std::string_view text);
std::string Trim(std::string_view text);

// 1-based; start < 1 or length < 0 raise error 5. A start past the end gives "".
std::string Mid(std::string_view text, int32_t start);
std::string Mid(std::string_view text, int32_t start, int32_t length);
// length < 0 raises error 5.
std::string Left(std::string_view text, int32_t length);
std::string Right(std::string_view text, int32_t length);

std::string UCase(std::string_view text);
std::string LCase(std::string_view text);
int32_t Len(std::string_view text);

// The code of the first character; an empty text raises error 5.
int32_t Asc(std::string_view text);
// The character of a code; a negative code raises error 5.
std::string Chr(int32_t code);
// Upper-case hexadecimal digits of a value (negative values in two's complement
// of 32 bits, as the runtime shows a Long).
std::string Hex(int64_t value);
// 1-based position of `find` in `text` from `start`, 0 when absent.
int32_t InStr(int32_t start, std::string_view text, std::string_view find);
int32_t InStr(std::string_view text, std::string_view find);
std::string Replace(std::string_view text, std::string_view find, std::string_view with);
std::string String(int32_t count, std::string_view character);
std::string Space(int32_t count);

}  // namespace vek
