#include "vek/db/dialect/Tokenizer.h"

#include <array>
#include <utility>

#include "vek/platform/VekError.h"

namespace vek::dialect {
namespace {

// Character classes by byte, looked up once per character.
enum CharClass : unsigned char { kOther = 0, kDigit = 1, kWordStart = 2, kWordPart = 4, kBlank = 8 };

constexpr std::array<unsigned char, 256> MakeClasses() {
  std::array<unsigned char, 256> classes{};
  for (int c = 0; c < 256; ++c) {
    unsigned char k = kOther;
    const bool letter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
    // Bytes of multi-byte UTF-8 characters count as letters: names may be accented.
    if (letter || c >= 0x80 || c == '_' || c == '@' || c == '#') k |= kWordStart | kWordPart;
    if (c >= '0' && c <= '9') k |= kDigit | kWordPart;
    if (c == '$') k |= kWordPart;
    if (c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\f' || c == '\v') k |= kBlank;
    classes[static_cast<size_t>(c)] = k;
  }
  return classes;
}
constexpr std::array<unsigned char, 256> kClasses = MakeClasses();

bool Is(char c, CharClass k) { return (kClasses[static_cast<unsigned char>(c)] & k) != 0; }
bool IsDigit(char c) { return Is(c, kDigit); }
bool IsHexDigit(char c) { return IsDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F'); }
bool IsWordStart(char c) { return Is(c, kWordStart); }
bool IsWordPart(char c) { return Is(c, kWordPart); }
bool IsBlank(char c) { return Is(c, kBlank); }

}  // namespace

void RaiseDialectError(std::string description) {
  throw VekError(kDialectErrorNumber, "SqliteTranslator", std::move(description));
}

Token Tokenizer::Make(TokenKind kind, size_t begin, size_t end) const {
  return Token{kind, std::string_view(sql_.data() + begin, end - begin), begin};
}

// Returns the offset just past the closing character; a doubled closing
// character stands for itself.
size_t Tokenizer::ScanQuoted(size_t begin, char close, const char* what) const {
  size_t i = begin + 1;
  while (i < sql_.size()) {
    if (sql_[i] == close) {
      if (i + 1 < sql_.size() && sql_[i + 1] == close) {
        i += 2;
        continue;
      }
      return i + 1;
    }
    ++i;
  }
  RaiseDialectError(std::string("Unterminated ") + what + " starting at offset " +
                    std::to_string(begin));
}

// SQL Server nests block comments, so "/* a /* b */ c */" is one comment.
size_t Tokenizer::ScanBlockComment(size_t begin) const {
  size_t depth = 0;
  size_t i = begin;
  while (i + 1 < sql_.size()) {
    if (sql_[i] == '/' && sql_[i + 1] == '*') {
      ++depth;
      i += 2;
    } else if (sql_[i] == '*' && sql_[i + 1] == '/') {
      i += 2;
      if (--depth == 0) return i;
    } else {
      ++i;
    }
  }
  RaiseDialectError("Missing end comment mark '*/' for the comment starting at offset " +
                    std::to_string(begin));
}

size_t Tokenizer::ScanNumber(size_t begin) const {
  size_t i = begin;
  if (sql_[i] == '0' && i + 1 < sql_.size() && (sql_[i + 1] == 'x' || sql_[i + 1] == 'X')) {
    i += 2;
    while (i < sql_.size() && IsHexDigit(sql_[i])) ++i;
    return i;
  }
  while (i < sql_.size() && IsDigit(sql_[i])) ++i;
  if (i < sql_.size() && sql_[i] == '.') {
    ++i;
    while (i < sql_.size() && IsDigit(sql_[i])) ++i;
  }
  if (i < sql_.size() && (sql_[i] == 'e' || sql_[i] == 'E')) {
    size_t j = i + 1;
    if (j < sql_.size() && (sql_[j] == '+' || sql_[j] == '-')) ++j;
    if (j < sql_.size() && IsDigit(sql_[j])) {
      while (j < sql_.size() && IsDigit(sql_[j])) ++j;
      i = j;
    }
  }
  return i;
}

size_t Tokenizer::ScanWord(size_t begin) const {
  size_t i = begin + 1;
  while (i < sql_.size() && IsWordPart(sql_[i])) ++i;
  return i;
}

Token Tokenizer::Next() {
  const size_t size = sql_.size();
  if (pos_ >= size) return Token{TokenKind::End, std::string_view(sql_.data() + size, 0), size};
  const size_t begin = pos_;
  const char c = sql_[begin];
  // Words and blanks are most of any statement: scan them here, at once.
  if (IsWordStart(c) && !((c == 'N' || c == 'n') && begin + 1 < size && sql_[begin + 1] == '\'')) {
    size_t end = begin + 1;
    while (end < size && IsWordPart(sql_[end])) ++end;
    pos_ = end;
    return Token{TokenKind::Word, std::string_view(sql_.data() + begin, end - begin), begin};
  }
  if (IsBlank(c)) {
    size_t end = begin + 1;
    while (end < size && IsBlank(sql_[end])) ++end;
    pos_ = end;
    return Token{TokenKind::Whitespace, std::string_view(sql_.data() + begin, end - begin), begin};
  }
  const char next = begin + 1 < sql_.size() ? sql_[begin + 1] : '\0';
  TokenKind kind = TokenKind::Operator;
  size_t end = begin + 1;

  if (IsBlank(c)) {
    kind = TokenKind::Whitespace;
    while (end < sql_.size() && IsBlank(sql_[end])) ++end;
  } else if (c == '-' && next == '-') {
    // A comment ends at a carriage return as well as at a line feed: the
    // statements are built with bare carriage returns between clauses.
    kind = TokenKind::Comment;
    end = begin + 2;
    while (end < sql_.size() && sql_[end] != '\r' && sql_[end] != '\n') ++end;
  } else if (c == '/' && next == '*') {
    kind = TokenKind::Comment;
    end = ScanBlockComment(begin);
  } else if (c == '\'') {
    kind = TokenKind::String;
    end = ScanQuoted(begin, '\'', "string literal");
  } else if ((c == 'N' || c == 'n') && next == '\'') {
    kind = TokenKind::NationalString;
    end = ScanQuoted(begin + 1, '\'', "string literal");
  } else if (c == '[') {
    kind = TokenKind::BracketedName;
    end = ScanQuoted(begin, ']', "bracketed name");
  } else if (c == '"') {
    kind = TokenKind::QuotedName;
    end = ScanQuoted(begin, '"', "quoted name");
  } else if (IsDigit(c) || (c == '.' && IsDigit(next))) {
    kind = TokenKind::Number;
    end = ScanNumber(begin);
  } else if (IsWordStart(c)) {
    kind = TokenKind::Word;
    end = ScanWord(begin);
  } else if ((c == '<' && (next == '>' || next == '=')) || (c == '>' && next == '=') ||
             (c == '!' && (next == '=' || next == '<' || next == '>'))) {
    end = begin + 2;
  }
  pos_ = end;
  return Make(kind, begin, end);
}

std::vector<Token> Tokenize(std::string_view sql) {
  std::vector<Token> tokens;
  tokens.reserve(sql.size() / 3 + 4);
  Tokenizer tokenizer(sql);
  for (Token token = tokenizer.Next(); token.kind != TokenKind::End; token = tokenizer.Next()) {
    tokens.push_back(token);
  }
  return tokens;
}

std::string StringValue(const Token& token) {
  std::string_view quoted = token.text;
  if (token.kind == TokenKind::NationalString) quoted.remove_prefix(1);
  if (quoted.size() < 2) return std::string();
  quoted = quoted.substr(1, quoted.size() - 2);
  std::string value;
  value.reserve(quoted.size());
  for (size_t i = 0; i < quoted.size(); ++i) {
    value.push_back(quoted[i]);
    if (quoted[i] == '\'' && i + 1 < quoted.size() && quoted[i + 1] == '\'') ++i;
  }
  return value;
}

}  // namespace vek::dialect
