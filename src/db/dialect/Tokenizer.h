#pragma once
// The tokenizer that every dialect pass reads SQL Server text with. It never
// fails on an odd character (that becomes a one-character Operator token);
// it fails only where SQL Server itself could not tell where a token ends.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vek::dialect {

// The number that translation errors carry: the ADO family's syntax error.
inline constexpr int32_t kDialectErrorNumber = static_cast<int32_t>(0x80040E14u);

// Raises VekError kDialectErrorNumber with Source "SqliteTranslator" and the
// given description.
[[noreturn]] void RaiseDialectError(std::string description);

enum class TokenKind {
  Word,            // keyword, plain identifier, @variable, #temp name
  BracketedName,   // [name], with ]] standing for ]
  QuotedName,      // "name", with "" standing for "
  String,          // 'text', with '' standing for '
  NationalString,  // N'text'
  Number,          // 12, 12.5, 12., .5, 1e3, 0x1F
  Operator,        // punctuation and operators: <> != >= <= !< !> and any single byte
  Comment,         // -- up to (not including) CR or LF, or /* */ (nested, as SQL Server reads them)
  Whitespace,      // blanks, tabs, CR, LF
  End,             // after the last token; empty text
};

struct Token {
  TokenKind kind = TokenKind::End;
  std::string_view text;  // a view into the tokenized text, quotes included
  size_t offset = 0;      // byte offset of text in the tokenized text
};

// Reads one token at a time. The text must outlive the tokenizer and its
// tokens. An unterminated string, quoted or bracketed name or block comment
// raises kDialectErrorNumber naming the offset where it starts.
class Tokenizer {
 public:
  explicit Tokenizer(std::string_view sql) : sql_(sql) {}

  // The next token; End (repeatedly) once the text is exhausted.
  Token Next();

 private:
  Token Make(TokenKind kind, size_t begin, size_t end) const;
  size_t ScanQuoted(size_t begin, char close, const char* what) const;
  size_t ScanBlockComment(size_t begin) const;
  size_t ScanNumber(size_t begin) const;
  size_t ScanWord(size_t begin) const;

  std::string_view sql_;
  size_t pos_ = 0;
};

// Every token of the text, End excluded.
std::vector<Token> Tokenize(std::string_view sql);

// ASCII case-insensitive equality (SQL keywords and names are ASCII).
inline bool EqualsAsciiNoCase(std::string_view a, std::string_view b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    const char x = a[i] >= 'a' && a[i] <= 'z' ? static_cast<char>(a[i] - 32) : a[i];
    const char y = b[i] >= 'a' && b[i] <= 'z' ? static_cast<char>(b[i] - 32) : b[i];
    if (x != y) return false;
  }
  return true;
}
// True for a Word token equal to `keyword` ignoring ASCII case.
inline bool IsKeyword(const Token& token, std::string_view keyword) {
  return token.kind == TokenKind::Word && EqualsAsciiNoCase(token.text, keyword);
}

// The text of a String or NationalString token without quotes or N prefix,
// with '' turned back into '.
std::string StringValue(const Token& token);

}  // namespace vek::dialect
